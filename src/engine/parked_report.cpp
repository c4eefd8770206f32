// Reports of an aircraft on its stand: they jitter round the true place for hours, and only some of them mean
// that it leaves.
#include "engine/engine.h"
#include "engine/live_parking.h"
#include "engine/slack.h"
#include "parking/learning.h"
#include "parking/stands.h"

namespace skl {

namespace {

constexpr double nearNm = 85 / metersPerNm;
constexpr double nearAfterDriveNm =
    170 / metersPerNm;  // what the feed calls the stand may be a neighbour of it
constexpr double lostNm = 200 / metersPerNm;
constexpr double stepNm = 3 / metersPerNm;  // less is jitter
constexpr uint32_t stepsToLeave = 3;

double limitNm(const LiveAc& record) {
    return record.prevStage == FlightStage::parking ? nearAfterDriveNm : nearNm;
}

/// Whether a report near the stand is one of a row that leads away from it.
bool leadsAway(LiveAc& record, double nm) {
    if (record.standDistLast == 0) {
        record.standDistFirst = record.standDistLast = nm;
        record.awayCount = 0;
        return false;
    }
    if (nm >= record.standDistLast + stepNm) {
        ++record.awayCount;
        record.standDistLast = nm;
        const double gone = nm - record.standDistFirst;
        return gone > record.halfSpanNm ||
               (record.awayCount >= stepsToLeave && gone >= record.halfSpanNm / 2);
    }
    if (nm <= record.standDistLast - stepNm) record.awayCount = 0;
    return false;
}

/// How long after its landing an aircraft that leaves its stand is under tow, not on its next flight.
int32_t towTicks(AcCategory category) {
    switch (category) {
        case AcCategory::Heavy:
            return 60 * 60 * ticksPerSecond;
        case AcCategory::Large:
            return 25 * 60 * ticksPerSecond;
        case AcCategory::Buzjets:
            return 15 * 60 * ticksPerSecond;
        default:
            return 0;
    }
}

}  // namespace

bool lf_parkedReport(LiveAc& record, LivePos& pos) {
    record.parkedMoving = true;
    const double nm = gf_distanceNm(record.standPos, pos.pos());
    if (nm <= limitNm(record)) {
        record.parkedSince = lf_parkClock();
        if (!leadsAway(record, nm)) {
            record.leaveStand = false;
            return false;
        }
    } else if (record.stage == FlightStage::parking) {
        gf_setStage(record, FlightStage::taxi);
        pos.stopped = false;
        return true;
    } else if (nm > lostNm) {
        removeAircraftFromSim(record);
        return false;
    }
    pos.stopped = false;
    record.leaveStand = true;
    if (record.prevStage != FlightStage::parked) {
        lf_leavingStand(record);
        // Outright: the stage may hold already, and the stay must not end a second time.
        record.stage = record.prevStage = FlightStage::parked;
    }
    return true;
}

void lf_leavingStand(LiveAc& record) {
    if (record.predictLeft >= 1) {
        if (record.stage == FlightStage::parked && record.landed && !record.stream().empty()) {
            const int64_t stoodFor =
                int64_t{engineTick} - (int64_t{record.stream().front().time} - ticksOfAWeek);
            record.towed = stoodFor < towTicks(record.category);
        }
        record.landed = false;
        if (!record.stream().empty()) record.stream().front().time = engineTick + 1;
        record.predictLeft = 0;
        lf_widenSlack(record);
    }
    if (lf_teachesStay(record)) lf_learnStay(record, gf_weekSlotNow(), true);
    if (Stand* stand = lf_findStand(record.standId)) stand->occupied = false;
}

}  // namespace skl
