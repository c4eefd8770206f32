// Which aircraft are held back because they would appear before the user.
#include <gtest/gtest.h>

#include "core/parameters.h"
#include "engine/spawning.h"
#include "simlink/user_aircraft.h"
#include "tests/support/engine_world.h"

namespace skl {
namespace {

using test::EngineTest;
using NearUser = EngineTest;

struct Case {
    const char* what;
    bool userDown, held;  // the user is on the ground; the spawn was held back before
    double userSpeed, userAgl;
    bool airborne;
    double north, east;  // nautical miles from the user to the front point
    double track, speed, alt;
    bool drops, heldAfter;
};

// The user stands or flies at 100 ft, heading north.
TEST_F(NearUser, HoldsBackWhatWouldAppearBeforeTheUser) {
    const Case cases[] = {
        {"ground, 140 m away", true, false, 0, 0, false, 0.0756, 0, 0, 5, 0, true, false},
        {"ground, 160 m away", true, false, 0, 0, false, 0.0864, 0, 0, 5, 0, false, false},
        {"airborne over a user on the ground", true, false, 0, 0, true, 0.05, 0, 0, 200, 500, false, false},
        {"held, the user rolls", true, true, 9, 0, true, 20, 0, 0, 200, 500, true, true},
        {"held, it rolls", true, true, 0, 0, false, 2, 0, 0, 9, 0, true, true},
        {"held, stands within 500 m", true, true, 0, 0, false, 0.26, 0, 0, 0, 0, true, true},
        {"held, stands beyond 500 m", true, true, 0, 0, false, 0.28, 0, 0, 0, 0, false, true},
        {"flies straight at the user", false, false, 200, 2000, true, 5, 0, 180, 300, 2000, true, true},
        {"passes 1 nm beside", false, false, 200, 2000, true, 5, 1, 180, 300, 2000, false, false},
        {"passes 1 nm beside, held before", false, true, 200, 2000, true, 5, 1, 180, 300, 2000, true, true},
        {"abeam, crossing the user's nose", false, false, 200, 2000, true, 0.01, 5, 270, 300, 2000, true,
         true},
        {"6.1 nm away", false, true, 200, 2000, true, 6.1, 0, 180, 300, 2000, false, true},
        {"3,000 ft above", false, false, 200, 2000, true, 5, 0, 180, 300, 3100, false, false},
        {"on the runway ahead", false, false, 140, 900, false, 1.4, 0, 0, 0, 0, true, true},
        {"beside the runway ahead, 100 m", false, false, 140, 900, false, 1.2, 0.054, 0, 0, 0, true, true},
        {"beside the runway ahead, 170 m", false, false, 140, 900, false, 1.2, 0.092, 0, 0, 0, false, false},
        {"on the runway, the user at 1,000 ft", false, false, 140, 1000, false, 1.4, 0, 0, 0, 0, false,
         false},
    };
    COLLISION_USER_GND.value = COLLISION_USER_AIR.value = true;
    for (const Case& c : cases) {
        userOnGround = c.userDown;
        engineUser.groundSpeed = c.userSpeed;
        engineUser.agl = c.userAgl;
        LiveAc record;
        record.nearUser = c.held;
        const LaLo place{51 + c.north / 60.0405, c.east / 60.0405 / 0.62932};
        LivePos front = c.airborne ? test::airPoint(place) : test::groundPoint(place, c.speed);
        front.track = c.track;
        front.alt = c.alt;
        record.stream() = {front, front};
        EXPECT_EQ(lf_nearUser(record), c.drops) << c.what;
        EXPECT_EQ(record.stream().size(), c.drops ? 1u : 2u) << c.what;
        EXPECT_EQ(record.nearUser, c.heldAfter) << c.what;
    }
}

TEST_F(NearUser, SwitchedOffItHoldsNothingBack) {
    COLLISION_USER_GND.value = COLLISION_USER_AIR.value = false;
    LiveAc record;
    for (const bool down : {true, false}) {
        userOnGround = down;
        record.stream() = {test::groundPoint({51, 0}, 0), test::groundPoint({51, 0}, 0)};
        EXPECT_FALSE(lf_nearUser(record)) << down;
    }
}

}  // namespace
}  // namespace skl
