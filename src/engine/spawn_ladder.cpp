// The tests that a record in "buffer" has to pass before it gets an object, in their order.
#include <algorithm>

#include "core/parameters.h"
#include "core/text.h"
#include "engine/category_constants.h"
#include "engine/conflicts.h"
#include "engine/engine.h"
#include "engine/engine_state.h"
#include "engine/live_table.h"
#include "engine/spawning.h"
#include "simlink/user_aircraft.h"

namespace skl {

namespace {

constexpr size_t waitingLimit = 11;

bool isLetter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

bool validCallsign(std::string_view callsign) {
    return !callsign.empty() && callsign != "@@@@@@@@" && callsign.size() < 9;
}

bool mixed(const std::deque<LivePos>& stream) {
    return std::any_of(stream.begin(), stream.end(),
                       [&](const LivePos& point) { return point.airborne != stream.front().airborne; });
}

int32_t lead(const LivePos& front) {
    return !front.airborne && front.speed != 0 ? 300 : 100;
}

size_t waiting() {
    return addingStack.size() + creationQueueLive.size();
}

/// Airline, type and cargo as the database has them for the registration.
void identify(LiveAc& record) {
    if (!record.regcode.empty()) {
        if (const auto known = gf_dbaseLookup(record.regcode)) {
            record.airline = known->opr.empty() ? known->airl : known->opr;
            record.cargo = known->cargo;
            if (record.model != known->type) {
                record.model = known->type;
                gf_fillTypeValues(record);
            }
            if (!validCallsign(record.callsign)) lf_setCallsign(record, record.regcode);
        }
    }
    if (record.airline.empty()) record.airline = lf_airlineOfCallsign(record.callsign).value_or("PVT");
}

}  // namespace

std::optional<std::string> lf_airlineOfCallsign(std::string_view callsign) {
    if (callsign.size() < 4 || callsign[3] < '0' || callsign[3] > '9') return std::nullopt;
    const std::string_view letters = callsign.substr(0, 3);
    if (!std::all_of(letters.begin(), letters.end(), isLetter)) return std::nullopt;
    return gf_upper(letters);
}

bool lf_ghostOfKnown(std::string_view callsign) {
    return callsign.ends_with('_') && lf_liveCallsignExists(callsign);
}

std::string lf_unmatchedKey(const AcBase& record) {
    return gf_shortForm(record) + ' ' + record.regcode;
}

void lf_handleBuffer(LiveAc& record) {
    if (record.eraseNow) return;
    if (record.stream().empty()) {
        record.eraseNow = true;
        return;
    }
    const LivePos& front = record.stream().front();
    if (engineTick < front.time - lead(front)) return;
    if (record.stream().size() == 1) {
        record.eraseNow = true;
        return;
    }
    if (record.callsign.ends_with('_') &&
        std::find(ghostList.begin(), ghostList.end(), record.callsign) != ghostList.end()) {
        record.eraseNow = true;
        return;
    }
    if (mixed(record.stream())) {
        record.stream().pop_front();
        return;
    }
    if (lf_nearUser(record)) return;
    // Many that come due at once would all find an empty queue: the stack counts too.
    if (waiting() >= waitingLimit && record.stage == FlightStage::birth) {
        record.stream().pop_front();
        return;
    }
    const int32_t limit = MAX_LIVE_SEL.value;
    if (limit == 0) {
        record.eraseNow = true;
        return;
    }
    if (static_cast<int64_t>(lf_countActive() + waiting()) >= limit &&
        lf_removeFarthest(gf_distanceNm(engineUser.pos(), front.pos()))) {
        record.eraseNow = true;
        return;
    }
    if (!BLOCK_CALLSIGN.empty() && BLOCK_CALLSIGN == record.callsign) {
        record.eraseNow = true;
        return;
    }
    identify(record);
    if (validCallsign(record.callsign) && !unmatchedKeys.contains(lf_unmatchedKey(record)) &&
        !lf_ghostOfKnown(record.callsign))
        spawnLiveAc(record);
    else
        record.eraseNow = true;
}

}  // namespace skl
