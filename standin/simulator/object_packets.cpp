// Objects that clients create, release, remove and send on flight plans.
#include <array>
#include <cmath>
#include <filesystem>
#include <system_error>

#include "standin/simulator/geo.h"
#include "standin/simulator/simulator.h"

namespace simulator {

namespace {

constexpr std::size_t kMostObjects = 1000;
constexpr double kForeignDistance = 0.01;  // degrees of latitude north of the user

bool isFlightPlan(const std::string& path) {
    for (const auto* extension : {".PLN", ".pln", ""}) {
        std::error_code error;
        const auto size = std::filesystem::file_size(path + extension, error);
        if (!error && size > 0) {
            return true;
        }
    }
    return false;
}

}  // namespace

Exception Simulator::create(int connection, Client& client, Reader& reader, bool ex1) {
    SimObject object;
    object.owner = connection;
    object.title = reader.text(256);
    if (ex1) {
        object.livery = reader.text(256);
    }
    object.tail = reader.text(12);
    bool good = !object.title.empty();
    for (double* value :
         {&object.lat, &object.lon, &object.alt, &object.pitch, &object.bank, &object.heading}) {
        *value = reader.f64();
        good = good && std::isfinite(*value);
    }
    good = good && std::abs(object.lat) <= 90 && std::abs(object.lon) <= 180;
    const bool standing = reader.u32() != 0;
    const auto speed = static_cast<std::int32_t>(reader.u32());
    object.airspeed = speed > 0 ? speed : 0;
    const auto request = reader.u32();

    if (!good || (!options_.refuse.empty() && object.title.find(options_.refuse) != std::string::npos)) {
        ++counts_.refused;
        return kCreateFailed;
    }
    if (world_.objects.size() >= kMostObjects) {
        ++counts_.refused;
        except(connection, client, kTooManyObjects);
        return kCreateFailed;
    }
    const auto& added = world_.add(std::move(object), standing);
    ++counts_.created;
    motion_.created(added);
    trace_.create(flightTime(), world_.utc, added);
    reply(connection, client, message(client.version, kRecvAssignedId).u32(request).u32(added.id).finish());
    objectEvent("objectadded", added);
    return kNone;
}

Exception Simulator::release(Reader& reader) {
    const auto id = reader.u32();
    if (world_.find(id) == nullptr) {
        return kUnrecognizedId;
    }
    return id <= kUserId ? kInvalidForType : kNone;
}

Exception Simulator::remove(int connection, Reader& reader) {
    const auto id = reader.u32();
    const SimObject* object = world_.find(id);
    if (object == nullptr) {
        return kUnrecognizedId;
    }
    if (object == &world_.user) {
        return kInvalidForType;
    }
    if (object->owner != connection) {
        return kIllegalOperation;
    }
    removeObject(id);
    return kNone;
}

void Simulator::removeObject(std::uint32_t id) {
    const auto object = world_.objects.at(id);
    ++counts_.removed;
    world_.remove(id);
    motion_.removed(id);
    trace_.remove(flightTime(), world_.utc, object);
    objectEvent("objectremoved", object);
}

Exception Simulator::setFlightPlan(Reader& reader) {
    const SimObject* object = world_.find(reader.u32());
    const auto path = reader.text(260);
    if (object == nullptr) {
        return kUnrecognizedId;
    }
    if (!isFlightPlan(path)) {
        return kLoadPlanFailed;
    }
    ++counts_.plans;
    trace_.plan(flightTime(), world_.utc, *object, path);
    return kNone;
}

void Simulator::foreignObject() {
    SimObject object;
    object.title = "Cessna 152 of another program";
    object.tail = "OTHER1";
    object.lat = world_.user.lat + kForeignDistance;
    object.lon = world_.user.lon;
    object.freezeAltitude = true;
    const auto& added = world_.add(std::move(object), true);
    objectEvent("objectadded", added);
}

void Simulator::posed(const SimObject& object) {
    if (object.id == kUserId) {
        return;
    }
    ++counts_.poses;
    counts_.posesNotFrozen += object.freezeAltitude ? 0 : 1;
    trace_.pose(flightTime(), world_.utc, object);
    motion_.pose(object.id, {flightTime(), object.lat, object.lon, object.pitch, object.heading,
                             object.airspeed, world_.wheelHeight(object)});
}

}  // namespace simulator
