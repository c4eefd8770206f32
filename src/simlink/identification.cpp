// The simulator names its new objects by numbers of its own. A reply about one of them carries its tail
// number, which was the callsign of the request.
#include "simlink/identification.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <utility>

#include "core/byte_reader.h"
#include "core/locks.h"
#include "core/log.h"
#include "core/run_state.h"
#include "engine/engine.h"
#include "simlink/session.h"
#include "simlink/sim_queues.h"
#include "simlink/user_aircraft.h"

namespace skl {

namespace {

// Ticks of a running flight: a pause does not count.
constexpr int32_t patience = 60 * ticksPerSecond;
// How long the object of a request that was given up is still looked out for.
constexpr int32_t lookOut = 600 * ticksPerSecond;
// The simulator knows the height above ground of an object only near it.
constexpr double highestReport = 2500;

struct ObjectData {
    uint32_t objectId;
    double agl, groundAltitude;  // feet
    int64_t onGround;
    std::string atcId;
};

/// The place of the last entry is taken by nobody, its content moves into the place that falls free.
template <class T>
void eraseBySwap(std::vector<T>& list, typename std::vector<T>::iterator at) {
    if (at != list.end() - 1) *at = std::move(list.back());
    list.pop_back();
}

std::vector<PendingCreate>::iterator findPending(std::string_view callsign, bool givenUp) {
    return std::find_if(pendingCreates.begin(), pendingCreates.end(), [&](const PendingCreate& entry) {
        return entry.givenUp == givenUp && entry.callsign == callsign;
    });
}

bool takeNewObject(uint32_t objectId) {
    const auto it = std::find(newObjects.begin(), newObjects.end(), objectId);
    if (it == newObjects.end()) return false;
    eraseBySwap(newObjects, it);
    return true;
}

/// The transponder id whose request made this object; nothing for an object of somebody else.
std::optional<uint32_t> takePending(const std::string& atcId) {
    if (atcId.empty()) return std::nullopt;
    const auto it = findPending(atcId, false);
    if (it == pendingCreates.end()) return std::nullopt;
    const uint32_t hexid = it->hexid;
    eraseBySwap(pendingCreates, it);
    return hexid;
}

/// True when the object belongs to a request that was given up: it came too late and goes.
bool removeLateObject(const ObjectData& object) {
    if (object.atcId.empty()) return false;
    const auto it = findPending(object.atcId, true);
    if (it == pendingCreates.end()) return false;
    eraseBySwap(pendingCreates, it);
    gf_log(fmt::format("'{}' has come too late and is removed, oid: {}", object.atcId, object.objectId));
    simRemove(object.objectId);
    return true;
}

/// Takes the object out of the simulator's hands.
void freeze(uint32_t objectId) {
    LockGuard guard(g_simLock);
    if (g_simError || !simHandle) return;
    simHandle->aiReleaseControl(objectId, req::releaseControl);
    for (const uint32_t event : {ev::freezeLatLon, ev::freezeAltitude, ev::freezeAttitude})
        simEvent(objectId, event, 1);
}

void identify(const ObjectData& object) {
    const std::optional<uint32_t> hexid = takePending(object.atcId);
    if (!hexid) {
        if (removeLateObject(object)) return;
        gf_log(fmt::format(
            "just spawned, but not by {}, oid: {}, callsign '{}', altaboveGnd:{:.0f} ft, onground:{}, "
            "gnd_alt:{:.0f} ft",
            programName, object.objectId, object.atcId, object.agl, object.onGround, object.groundAltitude));
        return;
    }
    freeze(object.objectId);
    const bool live = *hexid > highestStaticId;
    gf_postSimMsg({.objectId = object.objectId,
                   .hexid = *hexid,
                   .kind = live ? msgLiveIdentified : msgStaticIdentified,
                   .b = live ? object.agl : 0});
}

}  // namespace

void lf_rememberCreate(uint32_t packetId, uint32_t hexid, std::string_view callsign) {
    pendingCreates.push_back(
        {packetId, hexid, std::string(callsign.substr(0, sc::tailNumberBytes)), engineTick});
}

void lf_createFailed(uint32_t packetId, bool titleIsToBlame) {
    const auto it = std::find_if(pendingCreates.begin(), pendingCreates.end(),
                                 [&](const PendingCreate& entry) { return entry.packetId == packetId; });
    if (it == pendingCreates.end()) return;
    const PendingCreate entry = *it;
    eraseBySwap(pendingCreates, it);
    if (entry.givenUp) return;
    gf_postSimMsg({.hexid = entry.hexid, .kind = titleIsToBlame ? msgRefused : msgNotCreated});
}

void lf_expirePending() {
    const int32_t now = engineTick;
    for (PendingCreate& entry : pendingCreates) {
        if (entry.givenUp || now - entry.since <= patience) continue;
        entry.givenUp = true;
        gf_log(fmt::format("no answer to the creation of '{}', hexid: {}", entry.callsign, entry.hexid));
        gf_postSimMsg({.hexid = entry.hexid, .kind = msgNotCreated});
    }
    std::erase_if(pendingCreates, [&](const PendingCreate& entry) { return now - entry.since > lookOut; });
}

void lf_objectAdded(uint32_t objectId) {
    if (objectId > userObjectId) newObjects.push_back(objectId);
}

void lf_objectGone(uint32_t objectId) {
    takeNewObject(objectId);
    gf_postSimMsg({.objectId = objectId, .kind = msgObjectRemoved});
}

void lf_objectReply(const SimRecv& message) {
    ByteReader reader(message.bytes);
    reader.seek(12);
    const uint32_t request = reader.u32();
    ObjectData object{.objectId = reader.u32()};
    reader.skip(12);  // definition, flags, number of this object
    // With no aircraft in range one message says so, and what stands behind it means nothing.
    if (reader.u32() == 0 || request != req::aircraftInRange || object.objectId <= userObjectId) return;
    reader.skip(4);  // count of values
    object.agl = reader.f64();
    object.groundAltitude = reader.f64();
    object.onGround = reader.read<int64_t>();
    object.atcId = reader.fixedText(32);
    if (!std::isfinite(object.agl) || !std::isfinite(object.groundAltitude)) return;
    if (takeNewObject(object.objectId)) {
        identify(object);
        return;
    }
    if (object.agl > highestReport || object.atcId.empty() || object.atcId.ends_with('*')) return;
    gf_postSimMsg({.objectId = object.objectId,
                   .hexid = object.onGround != 0 ? 1u : 0u,
                   .kind = msgHeight,
                   .a = object.groundAltitude,
                   .b = object.agl});
}

}  // namespace skl
