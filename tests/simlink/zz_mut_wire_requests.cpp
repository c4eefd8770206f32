// The requests, each as its bytes: the fields behind the header in their order on the wire.
#include <fmt/format.h>

#include "core/log.h"
#include "platform/simconnect/wire_client.h"

namespace skl::wire {

namespace {

constexpr uint32_t none = 0xFFFFFFFF;
constexpr size_t nameWidth = 256, tailWidth = 12, pathWidth = 260;

}  // namespace

/// Appends one request. Nothing goes out behind a QUIT, and nothing is kept for a simulator that no longer
/// reads.
template <class Fill>
bool WireClient::send(Packet packet, Fill fill) {
    
    if (dead_) return false;
    std::lock_guard guard(outputLock_);
    if (output_.size() - sent_ >= outputLimit) {
        gf_logError(fmt::format("SimConnect: {} bytes of output wait", output_.size() - sent_));
        dead_ = true;
        return false;
    }
    if (output_.empty()) lastProgress_ = gf_steadyNow();
    MessageWriter writer(output_, packet, ++sendId_);
    fill(writer);
    return true;
}

bool WireClient::subscribeToSystemEvent(uint32_t event, std::string_view name) {
    return send(Packet::subscribeToSystemEvent,
                [&](MessageWriter& m) { m.u32(event).text(name, nameWidth); });
}

bool WireClient::addToDataDefinition(uint32_t definition, std::string_view variable, std::string_view unit,
                                     uint32_t type) {
    return send(Packet::addToDataDefinition, [&](MessageWriter& m) {
        m.u32(definition).text(variable, nameWidth).text(unit, nameWidth).u32(type).f32(0).u32(none);
    });
}

bool WireClient::mapClientEventToSimEvent(uint32_t event, std::string_view name) {
    return send(Packet::mapClientEvent, [&](MessageWriter& m) { m.u32(event).text(name, nameWidth); });
}

bool WireClient::addClientEventToNotificationGroup(uint32_t group, uint32_t event) {
    return send(Packet::addToNotificationGroup, [&](MessageWriter& m) { m.u32(group).u32(event).u32(0); });
}

bool WireClient::setNotificationGroupPriority(uint32_t group, uint32_t priority) {
    return send(Packet::setGroupPriority, [&](MessageWriter& m) { m.u32(group).u32(priority); });
}

bool WireClient::requestDataOnSimObject(uint32_t request, uint32_t definition, uint32_t object,
                                        uint32_t period) {
    return send(Packet::requestDataOnObject, [&](MessageWriter& m) {
        // No flags, no periods passed over, none left out, no limit.
        m.u32(request).u32(definition).u32(object).u32(period).u32(0).u32(0).u32(0).u32(0);
    });
}

bool WireClient::requestDataOnSimObjectType(uint32_t request, uint32_t definition, uint32_t radiusMeters,
                                            uint32_t type) {
    return send(Packet::requestDataOnObjectType,
                [&](MessageWriter& m) { m.u32(request).u32(definition).u32(radiusMeters).u32(type); });
}

bool WireClient::setDataOnSimObject(uint32_t definition, uint32_t object, std::span<const std::byte> data) {
    return send(Packet::setDataOnObject, [&](MessageWriter& m) {
        m.u32(definition).u32(object).u32(0).u32(1).u32(static_cast<uint32_t>(data.size())).bytes(data);
    });
}

bool WireClient::transmitClientEvent(uint32_t object, uint32_t event, uint32_t data, uint32_t group) {
    return send(Packet::transmitClientEvent,
                [&](MessageWriter& m) { m.u32(object).u32(event).u32(data).u32(group).u32(0); });
}

bool WireClient::aiCreateNonAtcAircraft(std::string_view title, std::string_view tail,
                                        const SimInitPosition& at, uint32_t request) {
    return send(Packet::aiCreateNonAtc, [&](MessageWriter& m) {
        m.text(title, nameWidth).text(tail, tailWidth);
        m.f64(at.lat).f64(at.lon).f64(at.alt).f64(at.pitch).f64(at.bank).f64(at.heading);
        m.u32(at.onGround).u32(at.airspeed).u32(request);
    });
}

bool WireClient::aiReleaseControl(uint32_t object, uint32_t request) {
    return send(Packet::aiReleaseControl, [&](MessageWriter& m) { m.u32(object).u32(request); });
}

bool WireClient::aiRemoveObject(uint32_t object, uint32_t request) {
    return send(Packet::aiRemoveObject, [&](MessageWriter& m) { m.u32(object).u32(request); });
}

bool WireClient::aiSetAircraftFlightPlan(uint32_t object, std::string_view path, uint32_t request) {
    return send(Packet::aiSetFlightPlan,
                [&](MessageWriter& m) { m.u32(object).text(path, pathWidth).u32(request); });
}

bool WireClient::getLastSentPacketId(uint32_t& id) {
    std::lock_guard guard(outputLock_);
    id = sendId_;
    return !dead_;
}

}  // namespace skl::wire
