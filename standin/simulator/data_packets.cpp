// Data definitions, requests for data with their periods, and data that clients write.
#include <algorithm>

#include "standin/simulator/geo.h"
#include "standin/simulator/simulator.h"

namespace simulator {

namespace {

constexpr std::uint32_t kLargestRadius = 200000;  // metres

enum ObjectType : std::uint32_t { kUserType = 0, kAllTypes = 1, kGroundType = 5, kUserCurrent = 9 };

void appendValue(Writer& writer, const Datum& datum, const std::string& value, bool tagged) {
    if (tagged) {
        writer.u32(datum.id);
    }
    writer.bytes(value);
}

}  // namespace

Exception Simulator::addToDefinition(Client& client, Reader& reader) {
    const auto definition = reader.u32();
    const auto variable = reader.text(256);
    const auto unit = reader.text(256);
    const auto type = reader.u32();
    Datum datum;
    datum.epsilon = reader.f32();
    datum.id = reader.u32();
    const auto exception = makeDatum(variable, unit, type, datum);
    if (exception == kNone) {
        client.definitions[definition].push_back(datum);
    }
    return exception;
}

Exception Simulator::requestData(int connection, Client& client, Reader& reader) {
    DataRequest request;
    request.id = reader.u32();
    request.definition = reader.u32();
    request.object = reader.u32();
    request.period = reader.u32();
    request.flags = reader.u32();
    request.skip = reader.u32();
    request.interval = reader.u32();
    request.limit = reader.u32();
    if (request.period > kSecond) {
        return kInvalidEnum;
    }
    const auto definition = client.definitions.find(request.definition);
    const SimObject* object = world_.find(request.object);
    if (request.period != kNever && (definition == client.definitions.end() || object == nullptr)) {
        return kUnrecognizedId;
    }
    std::erase_if(client.requests, [&request](const DataRequest& old) { return old.id == request.id; });
    if (request.period == kOnce) {
        answer(connection, client, request, definition->second, *object);
    } else if (request.period != kNever) {
        request.nextSecond = now_;
        client.requests.push_back(std::move(request));
    }
    return kNone;
}

void Simulator::serveRequests(int connection, Client& client, bool simFrame) {
    std::erase_if(client.requests, [&](DataRequest& request) {
        if (request.period == kSimFrame && !simFrame) {
            return false;
        }
        if (request.period == kSecond) {
            if (now_ < request.nextSecond) {
                return false;
            }
            request.nextSecond = std::max(request.nextSecond + 1, now_);
        }
        const SimObject* object = world_.find(request.object);
        if (object == nullptr) {
            return true;
        }
        if (request.skip > 0) {
            --request.skip;
            return false;
        }
        const auto definition = client.definitions.find(request.definition);
        if (definition != client.definitions.end() &&
            answer(connection, client, request, definition->second, *object)) {
            request.skip = request.interval;
            ++request.sent;
        }
        return request.limit > 0 && request.sent >= request.limit;
    });
}

bool Simulator::answer(int connection, Client& client, DataRequest& request, const Definition& definition,
                       const SimObject& object) {
    const bool tagged = (request.flags & kTagged) != 0;
    const bool onlyChanged = (request.flags & kOnlyChanged) != 0;
    const bool first = request.last.size() != definition.size();
    request.last.resize(definition.size());
    std::vector<bool> wanted(definition.size(), true);
    bool any = first || !onlyChanged;
    for (std::size_t i = 0; i < definition.size(); ++i) {
        auto value = readDatum(definition[i], world_, object);
        if (onlyChanged) {
            const bool changed = first || differs(definition[i], request.last[i], value);
            any = any || changed;
            wanted[i] = !tagged || changed;
            value = changed ? value : request.last[i];
        }
        request.last[i] = std::move(value);
    }
    if (!any) {
        return false;
    }
    Writer values;
    std::uint32_t count = 0;
    for (std::size_t i = 0; i < definition.size(); ++i) {
        if (wanted[i]) {
            appendValue(values, definition[i], request.last[i], tagged);
            ++count;
        }
    }
    reply(connection, client,
          message(client.version, kRecvData)
              .u32(request.id)
              .u32(object.id)
              .u32(request.definition)
              .u32(request.flags)
              .u32(1)
              .u32(1)
              .u32(count)
              .bytes(values.take())
              .finish());
    return true;
}

Exception Simulator::requestByType(int connection, Client& client, Reader& reader) {
    const auto request = reader.u32();
    const auto definitionId = reader.u32();
    const auto radius = reader.u32();
    const auto type = reader.u32();
    const auto definition = client.definitions.find(definitionId);
    if (type > (options_.sim == 2024 ? kUserCurrent : kGroundType)) {
        return kInvalidEnum;
    }
    if (radius > kLargestRadius) {
        return kOutOfBounds;
    }
    if (definition == client.definitions.end()) {
        return kUnrecognizedId;
    }
    std::vector<const SimObject*> found;
    const bool userOnly = type == kUserType || type == kUserCurrent;
    if (userOnly || type == kAllTypes || type == kAircraftType) {
        found.push_back(&world_.user);
        for (const auto& [id, object] : world_.objects) {
            if (!userOnly && radius > 0 &&
                distanceMetres(world_.user.lat, world_.user.lon, object.lat, object.lon) <= radius) {
                found.push_back(&object);
            }
        }
    }
    std::uint32_t entry = 0;
    const auto all = static_cast<std::uint32_t>(found.size());
    for (const auto* object : found) {
        auto data = message(client.version, kRecvDataByType);
        data.u32(request).u32(object->id).u32(definitionId).u32(0).u32(++entry).u32(all);
        data.u32(static_cast<std::uint32_t>(definition->second.size()));
        for (const auto& datum : definition->second) {
            data.bytes(readDatum(datum, world_, *object));
        }
        reply(connection, client, data.finish());
    }
    if (found.empty()) {
        auto none = message(client.version, kRecvDataByType);
        none.u32(request).u32(0).u32(definitionId).u32(0).u32(0).u32(0).u32(0);
        reply(connection, client, none.finish());
    }
    return kNone;
}

Exception Simulator::setData(Client& client, Reader& reader) {
    const auto definition = client.definitions.find(reader.u32());
    SimObject* object = world_.find(reader.u32());
    const auto flags = reader.u32();
    const auto count = reader.u32();
    const auto unitSize = reader.u32();
    if (definition == client.definitions.end() || object == nullptr) {
        return kUnrecognizedId;
    }
    return setValues(definition->second, *object, flags, count, unitSize, reader.rest());
}

Exception Simulator::setValues(const Definition& definition, SimObject& object, std::uint32_t flags,
                               std::uint32_t count, std::uint32_t unitSize, std::string_view bytes) {
    // The object's data is written only if the whole of the message fits.
    const bool tagged = (flags & 1U) != 0;
    const std::size_t elements = std::max(1U, count);
    const auto expected = sizeOf(definition);
    if (elements > bytes.size() || bytes.size() != elements * std::size_t{unitSize} ||
        (!tagged && expected != 0 && unitSize != expected)) {
        return kInvalidDataSize;
    }
    WriteResult result;
    for (std::size_t i = 0; i < elements; ++i) {
        const auto one = writeData(definition, bytes.substr(i * unitSize, unitSize), tagged, world_, object);
        result.exception = one.exception != kNone ? one.exception : result.exception;
        result.moved = result.moved || one.moved;
    }
    if (result.moved) {
        posed(object);
    }
    return result.exception;
}

}  // namespace simulator
