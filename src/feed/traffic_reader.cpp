// What other threads set, ask and take of the traffic reader. The decoding itself is in traffic_decoder.cpp.
#include "feed/traffic_reader.h"

#include <utility>

#include "core/locks.h"
#include "core/log.h"
#include "panel/panel_state.h"

namespace skl {

TrafficReader::TrafficReader()
    : UdpReader("Traffic Reader", {&g_panel.trafficState, &g_panel.weatherState}, &feedCounters) {
    fields_.reserve(64);
}

void TrafficReader::processPacket() {
    processText(packet());
}

void TrafficReader::onStopped() {
    g_panel.trafficState = readerStopped;
    gf_invalidate(Band::status);
    gf_log("Traffic Reader has stopped");
}

void TrafficReader::setFilterPos(LaLo position) {
    const std::lock_guard guard(surroundingsLock_);
    wantedSurroundings_.filterPos = position;
    surroundingsVersion_.fetch_add(1, std::memory_order_release);
}

void TrafficReader::setGroundReference(std::optional<GroundReference> reference) {
    const std::lock_guard guard(surroundingsLock_);
    wantedSurroundings_.ground = reference;
    surroundingsVersion_.fetch_add(1, std::memory_order_release);
}

void TrafficReader::refreshSurroundings() {
    if (surroundingsVersion_.load(std::memory_order_acquire) == seenVersion_) return;
    const std::lock_guard guard(surroundingsLock_);
    surroundings_ = wantedSurroundings_;
    seenVersion_ = surroundingsVersion_.load(std::memory_order_relaxed);
}

void TrafficReader::collectCallsigns(bool on) {
    const LockGuard guard(g_trafficLock);
    collectCallsigns_ = on;
}

void TrafficReader::collectCallsign(std::string_view callsign) {
    if (!collectCallsigns_) return;
    if (callsign.empty() || callsign == "null" || callsign.find('@') != std::string_view::npos) return;
    const LockGuard guard(g_trafficLock);
    // Whoever switched the collecting off may have emptied the set since the look above.
    if (collectCallsigns_ && !callsigns_.contains(callsign)) callsigns_.emplace(callsign);
}

StringSet TrafficReader::takeCallsigns() {
    const LockGuard guard(g_trafficLock);
    return std::exchange(callsigns_, {});
}

void TrafficReader::resetValues() {
    qnhCopy = 1013;
    feedTimestamp_ = 0;
    const LockGuard guard(g_trafficLock);
    callsigns_.clear();
}

}  // namespace skl
