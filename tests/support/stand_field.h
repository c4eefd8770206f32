// Stands in a field, and aircraft on the ground among them, for the tests of parking.
#pragma once

#include <string>

#include "engine/category_constants.h"
#include "engine/engine_state.h"
#include "parking/stands.h"
#include "tests/support/flown_aircraft.h"

namespace skl::test {

inline constexpr LaLo standHome{51.0, 1.0};
inline constexpr double halfSpanMeters = 17;

/// Without stands, the airport's file being in use.
class StandTest : public MotionTest {
  protected:
    void SetUp() override {
        MotionTest::SetUp();
        anew();
    }
    void TearDown() override {
        gf_resetStands();
        MotionTest::TearDown();
    }
    static void anew() {
        gf_resetStands();
        gf_resetEngine();
        liveAcs.reserve(64);
        g_apfLoaded = true;
    }
    /// A stand with a radius of 25 m, heading north.
    static Stand& addStand(const std::string& id, LaLo place, double radiusMeters = 25) {
        Stand& stand = stands.emplace_back();
        stand.id = id;
        stand.lat = place.lat;
        stand.lon = place.lon;
        stand.radius = radiusMeters / metersPerNm;
        stand.sid = static_cast<uint32_t>(stands.size());
        lf_standsChanged();
        return stand;
    }
    /// A Large aircraft with an object; its stand, if it has one, is the first.
    static LiveAc& onGround(FlightStage stage, LaLo place, double track = 0, uint32_t hexid = flownHexid) {
        LiveAc& it = addFlying(groundReport(place, 8, track), AcCategory::Large, hexid);
        it.onGround = true;
        it.stage = stage;
        it.slowSpeed = gf_categoryConstants(AcCategory::Large).slowSpeed;
        it.halfSpanNm = halfSpanMeters / metersPerNm;
        it.standId = stage == FlightStage::taxi ? 0 : 1;
        it.standPos = standHome;
        return it;
    }
};

}  // namespace skl::test
