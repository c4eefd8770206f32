// Reports of an aircraft on its stand: jitter, or the beginning of a departure.
#include "engine/live_parking.h"
#include "engine/slack.h"
#include "tests/support/stand_field.h"

namespace skl {
namespace {

using test::standHome;
using Stage = FlightStage;
using ParkedReports = test::StandTest;

bool reportAt(LiveAc& record, double meters) {
    LivePos pos = test::groundReport(test::away(standHome, 200, meters), 3);
    pos.stopped = true;
    const bool joins = lf_parkedReport(record, pos);
    EXPECT_EQ(pos.stopped, !joins);
    return joins;
}

TEST_F(ParkedReports, RowsOfReports) {
    constexpr Stage parked = Stage::parked, parking = Stage::parking, birth = Stage::birth,
                    taxi = Stage::taxi;
    const struct {
        Stage stage, before;
        std::vector<double> meters;
        bool joins;  // the last report; those before it never do
        Stage after;
    } cases[] = {
        {parked, parking, {3, 5.9, 1, 4, 0.5, 5}, false, parked},  // jitter
        {parked, birth, {1, 4.1, 7.2, 10.3}, true, parked},        // three steps and half a span
        {parked, birth, {0.5, 3.51, 6.52, 8.9}, false, parked},    // two steps and a part
        {parked, birth, {1, 4.1, 7.2, 9.4}, false, parked},        // less than half a span
        {parked, birth, {1, 9, 17.9}, false, parked},              // two steps
        {parked, birth, {1, 18.1}, true, parked},                  // more than a span
        {parked, birth, {1, 5, 9, 5.9, 12.1}, false, parked},      // back between
        {parked, birth, {1, 5, 9, 6.1, 12.1}, true, parked},       // not quite back
        {parked, birth, {84.9}, false, parked},
        {parked, birth, {85.1}, true, parked},
        {parked, parking, {169.9}, false, parked},  // the drive may have ended at a neighbour
        {parked, parking, {170.1}, true, parked},
        {parked, parking, {199.9}, true, parked},
        {parking, taxi, {85.1}, true, taxi},
        {parking, taxi, {300}, true, taxi},
        {parking, taxi, {1, 18.1}, true, parked},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "case " << &c - cases);
        anew();
        LiveAc& it = onGround(c.stage, standHome);
        it.prevStage = c.before;
        it.leaveStand = c.after != taxi;
        for (size_t i = 0; i < c.meters.size(); ++i)
            EXPECT_EQ(reportAt(it, c.meters[i]), c.joins && i + 1 == c.meters.size()) << i;
        EXPECT_EQ(it.stage, c.after);
        EXPECT_EQ(it.prevStage, !c.joins ? c.before : c.after == taxi ? parking : parked);
        EXPECT_EQ(it.leaveStand, c.joins && c.after == parked);
        EXPECT_EQ(it.parkedSince != 0, c.meters[0] < (c.before == parking ? 170 : 85));
        EXPECT_TRUE(it.parkedMoving);
    }
    anew();
    LiveAc& it = onGround(parked, standHome);
    it.prevStage = parking;
    EXPECT_FALSE(reportAt(it, 200.1));
    EXPECT_EQ(it.simState, SimObjectState::removingfromsim);
}

// Once, whatever reports follow; and soon after the landing under tow, by category.
TEST_F(ParkedReports, TheEndOfAStay) {
    const struct {
        AcCategory category;
        int32_t ticks;
        bool landed, towed;
    } cases[] = {{AcCategory::Heavy, 359999, true, true},  {AcCategory::Heavy, 360000, true, false},
                 {AcCategory::Large, 149999, true, true},  {AcCategory::Large, 150000, true, false},
                 {AcCategory::Buzjets, 89999, true, true}, {AcCategory::Buzjets, 90000, true, false},
                 {AcCategory::Light, 1000, true, false},   {AcCategory::Large, 1000, false, false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "case " << &c - cases);
        anew();
        Stand& stand = addStand("A1", standHome);
        LiveAc& it = onGround(Stage::parked, standHome);
        it.prevStage = Stage::parking;
        it.category = c.category;
        it.landed = c.landed;
        it.predictLeft = 1;
        it.stream().front().time = 700 + ticksOfAWeek;
        engineTick = 700 + c.ticks;
        stand.occupied = true;
        EXPECT_TRUE(reportAt(it, 175));
        EXPECT_TRUE(it.towed == c.towed && !it.landed && !stand.occupied);
        EXPECT_TRUE(it.predictLeft == 0 && it.stream().front().time == engineTick + 1 && it.maxEarly == 3000);
        stand.occupied = true;  // by the next one
        EXPECT_TRUE(reportAt(it, 175));
        EXPECT_TRUE(stand.occupied);
    }
}

}  // namespace
}  // namespace skl
