// The life of a reader: its socket is opened by the first step, each further step takes one datagram, and a
// stop or a failure closes it. Only a failure that no stop explains ends the run.
#include "feed/udp_reader.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "core/log.h"
#include "core/messages.h"
#include "core/run_state.h"
#include "core/text.h"
#include "feed/winsock_text.h"
#include "panel/panel_state.h"

namespace skl {

UdpReader::UdpReader(std::string_view name, Lamps startLamps, FeedCounters* counters)
    : name_(name), startLamps_(std::move(startLamps)), counters_(counters) {}

std::optional<Nanos> UdpReader::step(uint16_t port, std::chrono::milliseconds mayBlock) {
    try {
        if (!socket_) open(port);
        if (!stopFlag) receiveOne(std::min<net::Millis>(mayBlock, std::chrono::seconds(1)));
        if (!stopFlag) return Nanos(0);
        close();
        onStopped();
    } catch (const std::exception& error) {
        fail(error.what());
    } catch (...) {
        fail("Unknown exception");
    }
    gf_log(fmt::format("{} disconnected", name_));
    return std::nullopt;
}

void UdpReader::open(uint16_t port) {
    net::NetError error;
    socket_ = net::network().openUdp(port, g_realTrafficHere, error);
    if (!socket_) {
        if (error.step == "startup")
            throw std::runtime_error(fmt::format("WSA startup error: {}", error.code));
        if (error.step == "bind")
            throw std::runtime_error(
                fmt::format("bind to stream socket failed, error: {}", gf_wsaText(error.code)));
        throw std::runtime_error(
            fmt::format("failed to create the socket, error: {}", gf_wsaText(error.code)));
    }
    // What the run before has seen last must not hide the first datagram of this one.
    lastPacket_.clear();
    boundPort = socket_->port();
    for (auto* lamp : startLamps_) *lamp = readerRunning;
    gf_invalidate(Band::status);
    gf_logIndented(fmt::format("{} connected", name_));
}

void UdpReader::receiveOne(net::Millis timeout) {
    const int ready = socket_->waitReadable(timeout);
    const int count = ready > 0 ? socket_->receive(buffer_) : ready;
    if (count < 0)
        throw std::runtime_error(fmt::format("receive error: {}", gf_wsaText(socket_->lastError())));
    if (count == 0) return;
    if (counters_) counters_->datagrams.fetch_add(1, std::memory_order_relaxed);
    packetLength_ = static_cast<size_t>(count);
    if (packetLength_ < buffer_.size()) {
        handlePacket();
        return;
    }
    if (counters_) counters_->oversized.fetch_add(1, std::memory_order_relaxed);
    gf_logRunning(fmt::format("buffer overrun: {} bytes", count));
}

void UdpReader::handlePacket() {
    buffer_[packetLength_] = '\0';
    packetCount.fetch_add(1, std::memory_order_relaxed);
    // On another PC the stream comes as broadcasts, which a host with two networks receives twice.
    if (!g_realTrafficHere) {
        if (packet() == lastPacket_) {
            if (counters_) counters_->duplicates.fetch_add(1, std::memory_order_relaxed);
            return;
        }
        lastPacket_ = packet();
    }
    processPacket();
}

void UdpReader::close() {
    socket_.reset();
    boundPort = 0;
}

void UdpReader::fail(std::string_view text) {
    close();
    gf_showMessage(fmt::format("The {} has stopped with error: {}", name_, text), true);
    if (!stopFlag.exchange(true)) gf_requestStop(ExitReason::readerError, 15);
}

std::string lf_printable(std::string_view text) {
    std::string shown(text);
    std::replace_if(shown.begin(), shown.end(), gf_isControl, '.');
    return shown;
}

}  // namespace skl
