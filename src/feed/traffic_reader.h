// The reader of traffic records: one datagram, one line of comma-separated text, one TrafficUpdate in the
// traffic inbox or none. Decoding runs on the reader's thread; what other threads set or ask is named below.
#pragma once

#include <atomic>
#include <mutex>
#include <optional>
#include <string_view>
#include <vector>

#include "core/fnv.h"
#include "feed/traffic_update.h"
#include "feed/udp_reader.h"

namespace skl {

class TrafficReader : public UdpReader {
  public:
    TrafficReader();

    /// Decodes one line and queues its record, or drops it. Logs a bad record, throws nothing.
    void processText(std::string_view line);

    // Any thread.
    void setFilterPos(LaLo position);
    void setGroundReference(std::optional<GroundReference> reference);
    double feedTimestamp() const { return feedTimestamp_; }
    /// While on, the callsigns of all records in range are kept in a set.
    void collectCallsigns(bool on);
    /// Gives the set and empties it.
    StringSet takeCallsigns();
    /// QNH copy, time stamp and callsign set to their start.
    void resetValues();

    std::atomic<int32_t> qnhCopy{1013};

  protected:
    void processPacket() override;
    void onStopped() override;

  private:
    struct Surroundings {
        LaLo filterPos;
        std::optional<GroundReference> ground;
    };

    /// A record on its way: the texts are still those of the line.
    struct Decoded {
        std::string_view model, origin, destination, callsign, regcode;
        LivePos pos;
        double feedTime = 0;
        uint32_t hexid = 0;
    };

    void processLineSub();
    // The steps of decoding, in their order; false: the record is dropped.
    bool decodePlace(Decoded& record);
    bool decodeKind(Decoded& record);
    bool decodeHeight(Decoded& record);
    bool decodeIdentity(Decoded& record);
    void decodeMotion(Decoded& record);
    void decodeTrueHeading(LivePos& pos);
    static void requirePlainTexts(const Decoded& record);
    void queueRecord(Decoded& record);
    void collectCallsign(std::string_view callsign);
    double number(size_t field, std::string_view label) const;
    void refreshSurroundings();

    std::string_view line_;
    std::vector<std::string_view> fields_;
    std::atomic<double> feedTimestamp_{0};

    // Written under the lock, then the version is raised; the reader copies only when that has changed.
    std::mutex surroundingsLock_;
    Surroundings wantedSurroundings_;
    std::atomic<uint32_t> surroundingsVersion_{0};
    Surroundings surroundings_;
    uint32_t seenVersion_ = 0;

    std::atomic<bool> collectCallsigns_{false};  ///< written under g_trafficLock
    StringSet callsigns_;                        ///< under g_trafficLock
};

/// The one reader of the process.
TrafficReader& lf_trafficReader();

}  // namespace skl
