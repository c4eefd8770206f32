// Gear, flaps, lights and throttle in flight.
#include "engine/air_schedule.h"

#include <gtest/gtest.h>

#include "engine/engine_state.h"
#include "tests/support/runway_world.h"

namespace skl::test {
namespace {

class AirSchedule : public RunwayTest {};

TEST_F(AirSchedule, ApproachAndClimbOutByHeightAndSink) {
    struct Case {
        const char* what;
        AcCategory category;
        double alt, agl, vs, airportNm;
        bool landing, cleaned;
        uint32_t flaps;
        bool landsAfter;
        uint32_t flapsAfter;
    };
    const Case cases[] = {
        {"high", AcCategory::Large, 10000, 2500, 0, 5, false, false, 1, false, 0},
        {"well above the ground: an approach is over", AcCategory::Large, 9000, 2051, -900, 5, true, false, 0,
         false, 1},
        {"low and down near the airport", AcCategory::Large, 2000, 2050, -250, 10, false, false, 1, true, 3},
        {"beyond ten miles", AcCategory::Large, 2000, 2050, -250, 10.1, false, false, 1, false, 1},
        {"not quite down", AcCategory::Large, 2000, 2050, -249, 5, false, false, 1, false, 1},
        {"light aircraft begin lower", AcCategory::Light, 2000, 626, -500, 5, false, false, 0, false, 2},
        {"and there they do", AcCategory::Light, 2000, 625, -500, 5, false, false, 0, true, 3},
        {"exactly 600 is no climb-out", AcCategory::Large, 2000, 500, 600, 5, true, false, 3, true, 3},
        {"a climb-out cleans up", AcCategory::Large, 2000, 500, 601, 5, true, false, 3, false, 0},
        {"once", AcCategory::Large, 2000, 500, 601, 5, true, true, 3, true, 3},
        {"an approach lost", AcCategory::Large, 2000, 500, 0, 12, true, false, 3, false, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        gf_resetEngine();
        const LaLo at = away(aimPoint, 270, c.airportNm * metersPerNm);
        LiveAc& record = appear(airReport(at, 140, 90, c.alt), c.category);
        record.stream().front().vs = c.vs;
        record.agl = c.agl;
        record.landing = c.landing;
        record.climbCleaned = c.cleaned;
        record.flapsIdx = c.flaps;
        record.standId = 7;
        lf_airSchedule(record);
        EXPECT_EQ(record.landing, c.landsAfter);
        // Flaps of light aircraft go a step at a time.
        EXPECT_EQ(record.flapsIdx, c.flaps == 0 && c.flapsAfter == 2 ? 1 : c.flapsAfter);
        EXPECT_EQ(record.standId, c.landsAfter && !c.landing ? 0u : 7u);
        record.stage = FlightStage::take_off;
        record.landing = false;
        lf_airSchedule(record);
        EXPECT_FALSE(record.landing) << "no approach before the climb is over";
    }
}

TEST_F(AirSchedule, ThrottleAndFlapsWellAboveTheGround) {
    const struct {
        const char* what;
        AcCategory category;
        double agl, vs;
        uint32_t throttle, flaps, throttleAfter, flapsAfter;
        int gearUp;
    } cases[] = {
        {"down: less throttle, the first flaps", AcCategory::Large, 2399, -250, 3, 0, 2, 1, 0},
        {"second flaps not yet", AcCategory::Light, 2000, -250, 2, 1, 2, 1, 0},
        {"second flaps", AcCategory::Light, 1999, -250, 2, 1, 2, 2, 0},
        {"approach flaps stay", AcCategory::Light, 1999, -250, 1, 3, 1, 3, 0},
        {"just level", AcCategory::Large, 2399, 100, 3, 0, 3, 1, 0},
        {"climbing", AcCategory::Large, 2399, 101, 4, 2, 4, 2, 0},
        {"climbing faster: less than full", AcCategory::Large, 2399, 401, 4, 2, 3, 2, 0},
        {"high: clean", AcCategory::Large, 2400, 401, 3, 2, 3, 0, 1},
        {"a helicopter keeps its rotor", AcCategory::Rotorcraft, 2400, -300, 3, 0, 4, 0, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        gf_resetEngine();
        eventQueue.clear();
        LiveAc& record = appear(airReport(aimPoint, 180, 90, 5000), c.category);
        record.stream().front().vs = c.vs;
        record.agl = c.agl;
        record.throttleIdx = c.throttle;
        record.flapsIdx = c.flaps;
        record.departing = record.landing = true;
        lf_airSchedule(record);
        EXPECT_FALSE(record.departing || record.landing);
        EXPECT_EQ(record.throttleIdx, c.throttleAfter);
        EXPECT_EQ(record.flapsIdx, c.flapsAfter);
        EXPECT_EQ(sent(ev::gearSet, 0), c.gearUp);
    }
}

TEST_F(AirSchedule, LightsChangeOnceAtTenThousandFeet) {
    LiveAc& record = appear(airReport(aimPoint, 250, 90, 9999));
    record.agl = 2500;
    const auto landingLights = [&](double alt) {
        eventQueue.clear();
        record.stream().front().alt = alt;
        lf_airSchedule(record);
        return std::pair{sent(ev::landingLights, 1), sent(ev::landingLights, 0)};
    };
    EXPECT_EQ(landingLights(9999), (std::pair{1, 0}));
    EXPECT_EQ(landingLights(9999), (std::pair{0, 0}));
    EXPECT_EQ(landingLights(10000), (std::pair{0, 1}));
    EXPECT_EQ(landingLights(30000), (std::pair{0, 0}));
    EXPECT_EQ(landingLights(9999), (std::pair{1, 0}));
}

}  // namespace
}  // namespace skl::test
