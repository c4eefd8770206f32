// See the header. The index is kept in step by the functions of the header; a record that it does not find
// where it says, or a table of another size, means that somebody changed the table by hand, and it is built
// anew.
#include "engine/live_table.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

#include "core/fnv.h"
#include "engine/engine.h"
#include "engine/engine_state.h"
#include "engine/spawning.h"

namespace skl {

namespace {

using CallsignIndex = std::unordered_multimap<std::string, uint32_t, FnvHash, std::equal_to<>>;

std::unordered_map<uint32_t, size_t> placeOf;  // hexid to place in liveAcs
std::unordered_map<uint32_t, uint32_t> hexidOfObject;
CallsignIndex hexidsOfCallsign;
size_t indexed = 0;  // records that the index knows of

void index(const LiveAc& record, size_t place) {
    placeOf.emplace(record.hexid, place);
    if (record.objectId != 0) hexidOfObject.emplace(record.objectId, record.hexid);
    if (!record.callsign.empty()) hexidsOfCallsign.emplace(record.callsign, record.hexid);
}

void rebuild() {
    placeOf.clear();
    hexidOfObject.clear();
    hexidsOfCallsign.clear();
    indexed = liveAcs.size();
    for (size_t i = 0; i < liveAcs.size(); ++i) index(liveAcs[i], i);
}

void dropObject(const LiveAc& record) {
    const auto found = hexidOfObject.find(record.objectId);
    if (found != hexidOfObject.end() && found->second == record.hexid) hexidOfObject.erase(found);
}

void dropCallsign(const LiveAc& record) {
    auto [from, to] = hexidsOfCallsign.equal_range(record.callsign);
    for (auto it = from; it != to; ++it) {
        if (it->second != record.hexid) continue;
        hexidsOfCallsign.erase(it);
        return;
    }
}

/// All that other tables hold of a record which leaves.
void forget(const LiveAc& record) {
    placeOf.erase(record.hexid);
    dropObject(record);
    dropCallsign(record);
    std::erase(newAcList, record.hexid);
    lf_forgetWatched(record.objectId);
    if (record.simState == SimObjectState::adding2sim) lf_withdrawCreation(record.hexid);
}

/// The record that `look` finds; one look more behind a new index if the table was changed by hand.
template <class Look>
LiveAc* find(const Look& look) {
    if (indexed != liveAcs.size()) rebuild();
    bool stale = false;
    LiveAc* record = look(stale);
    if (!stale) return record;
    rebuild();
    return look(stale);
}

}  // namespace

LiveAc* lf_findLive(uint32_t hexid) {
    return find([hexid](bool& stale) -> LiveAc* {
        const auto found = placeOf.find(hexid);
        if (found == placeOf.end()) return nullptr;
        LiveAc& record = liveAcs[found->second];
        stale = record.hexid != hexid;
        return stale ? nullptr : &record;
    });
}

LiveAc* lf_findLiveByObject(uint32_t objectId) {
    if (objectId == 0) return nullptr;
    return find([objectId](bool& stale) -> LiveAc* {
        const auto found = hexidOfObject.find(objectId);
        if (found == hexidOfObject.end()) return nullptr;
        LiveAc* record = lf_findLive(found->second);
        stale = !record || record->objectId != objectId;
        return stale ? nullptr : record;
    });
}

LiveAc* lf_findLiveByCallsign(std::string_view callsign) {
    // Two aircraft may share a callsign: the first in table order counts.
    return find([callsign](bool& stale) {
        LiveAc* first = nullptr;
        auto [from, to] = hexidsOfCallsign.equal_range(callsign);
        for (auto it = from; it != to; ++it) {
            const auto place = placeOf.find(it->second);
            LiveAc* record = place == placeOf.end() ? nullptr : &liveAcs[place->second];
            if (!record || record->callsign != callsign) {
                stale = true;
                return static_cast<LiveAc*>(nullptr);
            }
            if (!first || record < first) first = record;
        }
        return first;
    });
}

bool lf_liveFlightExists(std::string_view callsign, std::string_view model) {
    if (!lf_findLiveByCallsign(callsign)) return false;
    auto [from, to] = hexidsOfCallsign.equal_range(callsign);
    return std::any_of(
        from, to, [model](const auto& entry) { return liveAcs[placeOf.at(entry.second)].model == model; });
}

LiveAc& lf_addLive(LiveAc record) {
    if (indexed != liveAcs.size()) rebuild();
    LiveAc& added = liveAcs.emplace_back(std::move(record));
    index(added, liveAcs.size() - 1);
    indexed = liveAcs.size();
    return added;
}

void lf_eraseLive(LiveAc& record) {
    if (indexed != liveAcs.size()) rebuild();
    forget(record);
    const size_t place = static_cast<size_t>(&record - liveAcs.data());
    if (place + 1 != liveAcs.size()) {
        record = std::move(liveAcs.back());
        placeOf[record.hexid] = place;
    }
    liveAcs.pop_back();
    indexed = liveAcs.size();
}

void lf_sweepLive() {
    if (indexed != liveAcs.size()) rebuild();
    size_t kept = 0;
    for (size_t i = 0; i < liveAcs.size(); ++i) {
        if (liveAcs[i].eraseNow || liveAcs[i].eraseFromQueue) {
            forget(liveAcs[i]);
            continue;
        }
        if (kept != i) {
            liveAcs[kept] = std::move(liveAcs[i]);
            placeOf[liveAcs[kept].hexid] = kept;
        }
        ++kept;
    }
    liveAcs.erase(liveAcs.begin() + static_cast<std::ptrdiff_t>(kept), liveAcs.end());
    indexed = liveAcs.size();
}

void lf_clearLive() {
    liveAcs.clear();
    rebuild();
}

void lf_setObjectId(LiveAc& record, uint32_t objectId) {
    dropObject(record);
    record.objectId = objectId;
    if (objectId != 0) hexidOfObject[objectId] = record.hexid;
}

void lf_setCallsign(LiveAc& record, std::string callsign) {
    if (record.callsign == callsign) return;
    dropCallsign(record);
    record.callsign = std::move(callsign);
    if (!record.callsign.empty()) hexidsOfCallsign.emplace(record.callsign, record.hexid);
}

}  // namespace skl
