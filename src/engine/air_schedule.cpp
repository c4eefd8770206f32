// See the header. What depends on height above ground uses the simulator's word, which ends at 2,500 ft.
#include "engine/air_schedule.h"

#include "engine/engine_state.h"
#include "engine/landing.h"
#include "engine/levels.h"
#include "engine/slack.h"
#include "parking/park_airport.h"
#include "simlink/ai_commands.h"
#include "simlink/sim_ids.h"

namespace skl {

namespace {

constexpr double highAltitude = 10000;                            // feet
constexpr double lowConfigJets = 2050, lowConfigOthers = 625;     // feet above ground
constexpr double cleanAgl = 2400, flapsAgl = 2000;                // feet above ground
constexpr double descending = -250, climbing = 400, level = 100;  // feet per minute
constexpr double approachRadiusNm = 10;

bool isRotorcraft(const LiveAc& record) {
    return record.category == AcCategory::Rotorcraft;
}

void setGear(const LiveAc& record, uint32_t down) {
    if (!isRotorcraft(record)) simEvent(record.objectId, ev::gearSet, down);
}

/// Helicopters keep their rotor at full speed.
void setThrottle(LiveAc& record, uint32_t setting) {
    gf_setThrottle(record, isRotorcraft(record) ? 4 : setting);
}

double lowConfigBelow(AcCategory category) {
    const bool jet =
        category == AcCategory::Buzjets || category == AcCategory::Large || category == AcCategory::Heavy;
    return jet ? lowConfigJets : lowConfigOthers;
}

bool nearAirport(const LiveAc& record) {
    return gf_airportInSight() && gf_distanceNm(record.simPos(), parkAirport.pos()) <= approachRadiusNm;
}

void beginApproach(LiveAc& record) {
    setThrottle(record, 1);
    gf_setFlaps(record, 3);
    setGear(record, 1);
    lf_noteNewAc(record.hexid);
    record.landing = true;
    record.climbCleaned = false;
    record.standPos = {};
    record.standHeading = 0;
    record.standId = 0;
    record.standCargo = false;
    record.groundCount = 1;
    lf_widenSlack(record);
}

/// A climb-out, or an approach that has been given up.
void cleanUp(LiveAc& record) {
    lf_decaySlack(record);
    gf_setThrottle(record, 4);
    setGear(record, 0);
    gf_setFlaps(record, 0);
    record.climbCleaned = true;
    record.flareState = 0;
    record.landing = false;
}

}  // namespace

void lf_airSchedule(LiveAc& record) {
    if (record.stream().front().alt >= highAltitude) {
        if (record.lightsHigh) return;
        record.lightsHigh = true;
        record.lightsLow = false;
        simLights(record.objectId, true, true, false, false, false, false, true);
        setThrottle(record, 3);
        setGear(record, 0);
        gf_setFlaps(record, 0);
        return;
    }
    if (!record.lightsLow) {
        record.lightsLow = true;
        record.lightsHigh = false;
        simLights(record.objectId, true, true, true, true, true, true, true);
    }
    if (record.agl > lowConfigBelow(record.category))
        lf_highConfig(record);
    else
        lf_lowConfig(record);
}

void lf_highConfig(LiveAc& record) {
    lf_decaySlack(record);
    simCabinLight(record.objectId, true);
    record.departing = record.landing = false;
    const double vs = record.stream().front().vs;
    if (vs <= descending && record.throttleIdx == 3)
        setThrottle(record, 2);
    else if (vs > climbing && record.throttleIdx == 4)
        setThrottle(record, 3);
    if (record.agl >= cleanAgl) {
        setGear(record, 0);
        gf_setFlaps(record, 0);
        return;
    }
    if (vs > level) return;
    if (record.flapsIdx == 0)
        gf_setFlaps(record, 1);
    else if (record.flapsIdx == 1 && record.agl < flapsAgl)
        gf_setFlaps(record, 2);
}

void lf_lowConfig(LiveAc& record) {
    simCabinLight(record.objectId, false);
    const double vs = record.stream().front().vs;
    const bool near = nearAirport(record);
    if (vs <= descending) {
        // One descending report just after lift-off is no approach.
        if (!record.landing && near && record.stage != FlightStage::take_off) beginApproach(record);
    } else if ((vs > goAroundFpm || (record.landing && !near)) && !record.climbCleaned) {
        cleanUp(record);
    }
}

}  // namespace skl
