// The SimConnect client over the wire. Requests, from any thread, are appended to an output buffer under a
// lock of its own; the stream itself is used by the SimConnect thread alone, which sends the buffer before
// and behind each dispatch.
#pragma once

#include <atomic>
#include <mutex>
#include <string>

#include "core/clock.h"
#include "platform/net.h"
#include "platform/simconnect/wire_format.h"
#include "simlink/simconnect.h"

namespace skl::wire {

/// Output that the simulator does not take: more bytes, or no byte taken for this long, and the connection is
/// dead.
inline constexpr size_t outputLimit = 4u << 20;
inline constexpr Nanos outputPatience = std::chrono::seconds(10);
inline constexpr Nanos openPatience = std::chrono::seconds(5);

class WireClient : public SimConnect {
  public:
    /// Begins a connection. Gives nothing, and says why, when the settings allow none.
    using Connector = std::function<std::unique_ptr<net::ByteStream>(std::string& trouble)>;
    explicit WireClient(Connector connector) : connector_(std::move(connector)) {}

    bool open(std::string_view application, const std::function<bool()>& stop) override;
    std::string openTrouble() const override { return trouble_; }
    bool close() override;
    Dispatch callDispatch(const std::function<void(const SimRecv&)>& handler) override;
    bool backlogged() override { return backlogged_; }

    bool subscribeToSystemEvent(uint32_t event, std::string_view name) override;
    bool addToDataDefinition(uint32_t definition, std::string_view variable, std::string_view unit,
                             uint32_t type) override;
    bool mapClientEventToSimEvent(uint32_t event, std::string_view name) override;
    bool addClientEventToNotificationGroup(uint32_t group, uint32_t event) override;
    bool setNotificationGroupPriority(uint32_t group, uint32_t priority) override;
    bool requestDataOnSimObject(uint32_t request, uint32_t definition, uint32_t object,
                                uint32_t period) override;
    bool requestDataOnSimObjectType(uint32_t request, uint32_t definition, uint32_t radiusMeters,
                                    uint32_t type) override;
    bool setDataOnSimObject(uint32_t definition, uint32_t object, std::span<const std::byte> data) override;
    bool transmitClientEvent(uint32_t object, uint32_t event, uint32_t data, uint32_t group) override;
    bool aiCreateNonAtcAircraft(std::string_view title, std::string_view tail, const SimInitPosition& at,
                                uint32_t request) override;
    bool aiReleaseControl(uint32_t object, uint32_t request) override;
    bool aiRemoveObject(uint32_t object, uint32_t request) override;
    bool aiSetAircraftFlightPlan(uint32_t object, std::string_view path, uint32_t request) override;
    bool getLastSentPacketId(uint32_t& id) override;

  private:
    template <class Fill>
    bool send(Packet packet, Fill fill);
    bool flush();
    int64_t receiveSome();
    bool receiveAll(const std::function<void(const SimRecv&)>& handler);
    bool waitForAnswer(const std::function<bool()>& stop, Nanos deadline);
    void deliver(const std::function<void(const SimRecv&)>& handler);

    Connector connector_;
    std::string trouble_;
    std::unique_ptr<net::ByteStream> stream_;
    InputBuffer input_;
    std::vector<std::byte> chunk_;

    std::mutex outputLock_;  // output_, sent_, sendId_, lastProgress_
    std::vector<std::byte> output_;
    size_t sent_ = 0;  // bytes of output_ that the system has taken
    uint32_t sendId_ = 0;
    Nanos lastProgress_{0};

    std::atomic<bool> dead_{false}, quit_{false}, backlogged_{false};
};

/// To the address in force, see config.h.
std::unique_ptr<SimConnect> makeClient();

}  // namespace skl::wire
