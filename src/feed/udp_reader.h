// A reader of datagrams as a task: each step is one wait and one receive. One object a stream for the whole
// process; a run gives it a thread, which alone touches the socket, the buffer and the last datagram. The
// flags and counts are atomics, since the worker reads and resets them.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/task.h"
#include "feed/feed.h"
#include "platform/net.h"

namespace skl {

class UdpReader {
  public:
    using Lamps = std::vector<std::atomic<int32_t>*>;

    /// `startLamps` are set to running once the socket is open; `counters` may be nullptr.
    UdpReader(std::string_view name, Lamps startLamps, FeedCounters* counters);
    virtual ~UdpReader() = default;

    /// One pass: opens the socket first; nothing once the reader has ended. Waits 1 s at most.
    std::optional<Nanos> step(uint16_t port, std::chrono::milliseconds mayBlock);

    std::atomic<bool> stopFlag{false};
    std::atomic<uint32_t> packetCount{0};  ///< datagrams received, duplicates too
    std::atomic<uint16_t> boundPort{0};    ///< 0 while the socket is closed
    uint32_t lastCount = 0;                ///< packetCount at the last look of the worker
    bool alive = true;                     ///< whether that look found new datagrams; worker only

  protected:
    virtual void processPacket() = 0;
    virtual void onStopped() = 0;

    const char* packetText() const { return buffer_.data(); }
    size_t packetLength() const { return packetLength_; }
    std::string_view packet() const { return {packetText(), packetLength()}; }

  private:
    void open(uint16_t port);
    void receiveOne(net::Millis timeout);
    void handlePacket();
    void close();
    void fail(std::string_view text);

    const std::string name_;
    const Lamps startLamps_;
    FeedCounters* const counters_;
    std::unique_ptr<net::UdpSocket> socket_;
    std::array<char, 16384> buffer_{};
    size_t packetLength_ = 0;
    std::string lastPacket_;
};

/// Foreign text for the log: control characters, which would break its lines, become dots.
std::string lf_printable(std::string_view text);

}  // namespace skl
