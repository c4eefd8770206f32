// A flat world whose simulator tells heights as the real one does: five times a second, up to 2,500 ft above
// ground.
#pragma once

#include <algorithm>
#include <functional>
#include <vector>

#include "engine/category_constants.h"
#include "engine/engine.h"
#include "engine/engine_state.h"
#include "feed/feed.h"
#include "parking/park_airport.h"
#include "simlink/sim_ids.h"
#include "simlink/sim_queues.h"
#include "tests/support/flown_aircraft.h"

namespace skl::test {

inline constexpr LaLo aimPoint{51.0, 1.0};
inline constexpr double cgFt = 12;

class RunwayTest : public MotionTest {
  protected:
    void SetUp() override {
        MotionTest::SetUp();
        parkAirport = {"EGXX", "", aimPoint.lat, aimPoint.lon, 0};
    }
    void TearDown() override {
        parkAirport = {};
        qnh = 1013;
        MotionTest::TearDown();
    }
    /// The flown aircraft, as it appears in the air or on the ground.
    static LiveAc& appear(LivePos first, AcCategory category = AcCategory::Large) {
        LiveAc& record = addFlying(first, category);
        const CategoryConstants& kind = gf_categoryConstants(category);
        record.flareTicks = kind.flareTicks;
        record.touchdownTicks = kind.touchdownTicks;
        record.rotateTicks = kind.rotateTicks;
        record.climbPitchTicks = kind.climbPitchTicks;
        record.rotatePitch = kind.rotatePitch;
        record.climbPitch = kind.climbPitch;
        record.groundTurnRate = record.turnRate = kind.groundTurnRate;
        record.maxClimbPerTick = kind.maxClimbPerTick;
        record.slowSpeed = kind.slowSpeed;
        record.staticCgFt = cgFt;
        record.staticPitch = toRad(0.5);
        record.onGround = !first.airborne;
        record.stage = first.airborne ? FlightStage::flying : FlightStage::taxi;
        if (record.onGround) record.simAlt = groundFt + cgFt;
        return record;
    }
    /// Ticks with a report every two seconds; `each` sees the record behind every tick and ends the run by
    /// false.
    static void run(const Path& path, double seconds, const std::function<bool(LiveAc&)>& each) {
        for (int i = 1; i <= seconds * 100; ++i) {
            tick();
            LiveAc* record = lf_findLive(flownHexid);
            if (!record) return;
            const double ground = groundAt(*record), height = record->simAlt - ground;
            if (i % 20 == 0 && height <= 2500) {
                gf_postSimMsg({.objectId = record->objectId,
                               .hexid = height <= cgFt ? 1u : 0u,
                               .kind = msgHeight,
                               .a = ground,
                               .b = height});
                lf_processSimInbox();
            }
            if (!each(*record)) return;
            if (i % 200 == 0) report(path(engineTick / 100.0));
        }
    }
    /// How often an event with this value has been queued since the last call; all are taken.
    static int sent(uint32_t event, uint32_t value) {
        const auto is = [&](const SimEvent& e) { return e.event == event && e.data == value; };
        return static_cast<int>(std::count_if(eventQueue.begin(), eventQueue.end(), is));
    }
    /// The ground rises to the east by `slope`, from the field's height at the aim point.
    static double groundAt(const LiveAc& record) {
        const double east = gf_distanceNm(aimPoint, record.simPos()) * feetPerNm;
        return groundFt + slope * (record.simLon < aimPoint.lon ? -east : east);
    }
    static inline double groundFt = 0, slope = 0;
};

}  // namespace skl::test
