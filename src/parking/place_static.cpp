// One planned aircraft at a time becomes a static one, if its stand is still free when its turn comes.
#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "core/log.h"
#include "core/messages.h"
#include "core/parameters.h"
#include "core/run_state.h"
#include "engine/category_constants.h"
#include "engine/engine_state.h"
#include "feed/feed.h"
#include "liveries/catalogue.h"
#include "panel/controls.h"
#include "panel/panel_state.h"
#include "parking/stands.h"
#include "parking/statics.h"

namespace skl {

std::atomic<bool> staticsLock{false};
int32_t staticCounter = 0;

namespace {

constexpr int32_t numbers = 10000;
constexpr int32_t longestLeaving = 30 * ticksPerSecond;
constexpr int32_t minutesBehindWork = 19;

bool isAt(const AcBase& record, uint32_t sid, const Stand* stand) {
    if (record.standId == sid) return true;
    return stand &&
           std::find(stand->adjacent.begin(), stand->adjacent.end(), record.standId) != stand->adjacent.end();
}

/// The first live aircraft on the stand or beside it.
const LiveAc* liveAt(uint32_t sid, const Stand* stand) {
    const auto found = std::find_if(liveAcs.begin(), liveAcs.end(), [&](const LiveAc& record) {
        return (record.stage == FlightStage::parking || record.stage == FlightStage::parked) &&
               isAt(record, sid, stand);
    });
    return found == liveAcs.end() ? nullptr : &*found;
}

const StaticAc* staticAt(uint32_t sid, const Stand* stand) {
    const auto found = std::find_if(staticAcs.begin(), staticAcs.end(),
                                    [&](const StaticAc& record) { return isAt(record, sid, stand); });
    return found == staticAcs.end() ? nullptr : &*found;
}

/// Whether somebody has come to the stand or beside it since the plan was made.
bool taken(const Candidate& candidate, const Stand* stand) {
    const AcBase* there = nullptr;
    const char* kind = "live";
    if (const LiveAc* live = liveAt(candidate.sid, stand)) {
        if (live->standId == candidate.sid) {
            if (LOG.value)
                gf_log(fmt::format("{:8}: no static parking for {}, live aircraft {} standing here",
                                   lf_standName(candidate.sid), candidate.cs, live->callsign));
            return true;
        }
        there = live;
    } else {
        there = staticAt(candidate.sid, stand);
        kind = "static";
    }
    if (!there) return false;
    if (LOG.value)
        gf_log(fmt::format(
            "{:8}: no static parking for {}, {} aircraft {} is adjacent at {}, possibly colliding",
            lf_standName(candidate.sid), candidate.cs, kind, there->callsign, lf_standName(there->standId)));
    return true;
}

/// One without a callsign of its own is told by its number.
std::string callsignOf(const Candidate& candidate, uint32_t number) {
    std::string callsign;
    if (!candidate.cs.empty()) callsign = lf_detcs(candidate);
    return callsign.empty() ? fmt::format("{}{}*", candidate.airl, number) : callsign;
}

StaticAc newStatic(const Candidate& candidate, const Stand& stand) {
    staticCounter = (staticCounter + 1) % numbers;
    StaticAc record;
    record.hexid = static_cast<uint32_t>(staticCounter);
    record.airline = candidate.airl;
    record.model = candidate.type;
    record.callsign = callsignOf(candidate, record.hexid);
    record.coupledIn = candidate.cs;
    record.coupledOut = candidate.cs2;
    record.regcode = candidate.reg;
    gf_fillTypeValues(record);
    record.standPos = stand.pos();
    record.standHeading = stand.heading;
    record.standCargo = stand.cargo;
    record.standId = stand.sid;
    return record;
}

void requestCreation(const StaticAc& record) {
    CreateRequest request;
    request.position = {.lat = record.standPos.lat,
                        .lon = record.standPos.lon,
                        .heading = toDeg(record.standHeading),
                        .onGround = 1};
    request.callsign = record.callsign;
    request.title = record.title;
    request.hexid = record.hexid;
    creationQueueStatic.push_back(std::move(request));
}

/// Without trailing "_", with one "*"; empty stays empty.
std::string starred(std::string_view text) {
    std::string callsign(lf_bareCallsign(text));
    if (!callsign.empty() && !callsign.ends_with('*')) callsign += '*';
    return callsign;
}

}  // namespace

void lf_lockStatics(bool on) {
    if (staticsLock.exchange(on) == on) return;
    gf_clearMessage();
    const std::array<ControlParameter*, 7> always{&INITIAL_LOAD_ONLY, &PARK_FAKE,  &PARK_SOFT, &MAX_PARK_SEL,
                                                  &MAX_LIVE_SEL,      &MAX_FIT_FL, &WEEK};
    for (ControlParameter* control : always) gf_enableControl(*control, !on);
    gf_enableControl(parking_percentage, !on && g_apfLoaded);
    gf_enableControl(flushStaticButton, !on && g_apfLoaded);
    gf_enableControl(rereadButton, !on && DESTINATION.empty());
    if (!on) g_panel.minutesToRenewal = minutesBehindWork;
    gf_invalidate(Band::options);
}

void lf_announceStatics(bool showMessage) {
    lf_lockStatics(true);
    gf_collectCallsigns();
    if (showMessage) gf_showMessage("Calculating static parked aircraft ...", false);
}

void lf_addNextStatic() {
    if (candidates.empty() || stands.empty()) return;
    if (lf_renewalUnderWay() || lf_staticLeaving(longestLeaving)) return;
    const Candidate candidate = std::move(candidates.back());
    candidates.pop_back();
    const Stand* stand = lf_findStand(candidate.sid);
    if (taken(candidate, stand)) return;
    if (!stand) {
        gf_logError(fmt::format("stand with id {} not found", candidate.sid));
        return;
    }
    StaticAc record = newStatic(candidate, *stand);
    if (!gf_matchStaticLivery(record, stand->cargo, stand->id)) return;
    record.parkedAt = lf_slotBack(gf_weekSlotNow(), candidate.offset);
    record.simState = SimObjectState::adding2sim;
    requestCreation(record);
    staticAcs.push_back(std::move(record));
}

std::string lf_detcs(const Candidate& candidate) {
    std::string own = starred(candidate.cs), next = starred(candidate.cs2);
    if (own.empty() && next.empty()) {
        gf_logError(fmt::format("{} callsign is empty..", "lf_detcs"));
        return {};
    }
    if (candidate.stayFlag) return own.empty() ? next : own;
    return next.empty() ? own : next;
}

}  // namespace skl
