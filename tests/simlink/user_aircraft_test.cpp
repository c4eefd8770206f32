// The user's aircraft: place, heartbeat, title, type and span.
#include "simlink/user_aircraft.h"

#include <gtest/gtest.h>

#include "core/run_state.h"
#include "engine/engine_state.h"
#include "feed/feed.h"
#include "panel/panel_state.h"
#include "simlink/dispatch.h"
#include "simlink/session.h"
#include "simlink/sim_ids.h"
#include "simlink/user_model.h"
#include "tests/support/fake_simconnect.h"
#include "tests/support/temp_folder.h"

namespace skl::test {

namespace {

class UserAircraftTest : public TempFolderTest {
  protected:
    void SetUp() override {
        TempFolderTest::SetUp();
        gf_resetSimLink();
        gf_resetEngine();
        gf_resetPanel();
        gf_clearDbase();
        wingspanHalfNm = {{"A320", 0.0097}, {"A388", 0.0215}, {"B738", 0.0096},
                          {"CRJ7", 0.0063}, {"DA40", 0.0032}, {"E190", 0.0078},
                          {"M20", 0.003},   {"A359", 0.0175}, {"A319", 0.0092}};
        maxHalfSpanNm = 0.0215;
        largeTypes = {"A320", "B738", "E190", "A319"};
        heavyTypes = {"A388", "A359"};
        sim.connect();
    }
    void TearDown() override {
        gf_resetSimLink();
        gf_clearDbase();
        TempFolderTest::TearDown();
    }
    FakeSimulator sim;
};

TEST_F(UserAircraftTest, ThePositionOfAReply) {
    UserRecord seen;
    gf_requestUser(seen);
    EXPECT_EQ(seen.lat, 0);
    sim.deliver(userMessage(7, {50, 8, 0.1, 0.2, 0.3, -12, 4, 5, 6, 7, 8, 9}));
    gf_requestUser(seen);
    EXPECT_EQ(seen.lat, 50);
    EXPECT_EQ(seen.heading, 0.3);
    EXPECT_EQ(seen.altitude, 0);
    EXPECT_EQ(seen.groundSpeed, 5);
    EXPECT_EQ(seen.lightStates, 9);
    EXPECT_EQ(userObjectId, 7u);
    sim.deliver(userMessage(8, {.lat = std::numeric_limits<double>::quiet_NaN()}));
    EXPECT_EQ(simUser.lat, 50);
    EXPECT_EQ(userObjectId, 7u);
}

TEST_F(UserAircraftTest, AJumpEndsTheRun) {
    struct Case {
        LaLo from, to;
        bool ends;
    };
    const Case cases[] = {
        {{0, 0}, {50, 8}, false},  // the first place of a run
        {{50, 8}, {0, 0}, false},  // a place that is not known
        {{50, 8}, {50 + 9 / 60.0, 8}, false},
        {{50, 8}, {50 + 11 / 60.0, 8}, true},
        {{50, 179.99}, {50, -179.99}, false},
    };
    for (const Case& c : cases) {
        gf_resetRunState();
        gf_resetSimLink();
        sim.connect();
        sim.deliver(userMessage(1, {.lat = c.from.lat, .lon = c.from.lon}));
        sim.deliver(userMessage(1, {.lat = c.to.lat, .lon = c.to.lon}));
        EXPECT_EQ(g_stopRequested, c.ends) << c.to.lat;
        EXPECT_EQ(g_exitReason, c.ends ? ExitReason::newFlight : ExitReason::notYetSet);
    }
    EXPECT_EQ(logCount("Teleport"), 1);
}

TEST_F(UserAircraftTest, TheHeartbeatBeatsEvenBeforeThePlaceIsKnown) {
    sim.deliver(onGroundMessage(true));
    EXPECT_TRUE(g_secondTick.exchange(false));
    EXPECT_FALSE(userOnGroundKnown);
    sim.deliver(userMessage(1, {.lat = 50, .lon = 8}));
    sim.deliver(onGroundMessage(true));
    EXPECT_TRUE(userOnGround);
    sim.deliver(onGroundMessage(false));
    EXPECT_FALSE(userOnGround);
    EXPECT_TRUE(userOnGroundKnown);
}

TEST_F(UserAircraftTest, TheSimulatorsTime) {
    EXPECT_EQ(lf_epochOf(1970, 1, 0), 0);
    EXPECT_EQ(lf_epochOf(1969, 365, 86399), -1);
    EXPECT_EQ(lf_epochOf(2000, 60, 0), 951782400);    // February 29
    EXPECT_EQ(lf_epochOf(2024, 366, 1), 1735603201);  // December 31
    EXPECT_EQ(lf_epochOf(2100, 60, 0), 4107542400);   // March 1: no leap year
    EXPECT_EQ(lf_epochOf(1, 1, 0), -62135596800);
    EXPECT_EQ(lf_epochOf(int64_t{1} << 62, 1, 0), std::nullopt);
    const UserRecord user{.lat = 50, .zuluSeconds = 5, .zuluDayOfYear = 2, .zuluYear = 1970};
    sim.deliver(userMessage(1, user));
    EXPECT_EQ(simEpoch, 0);
    rtLevel2 = true;
    sim.deliver(userMessage(1, user));
    rtLevel2 = false;
    EXPECT_EQ(simEpoch, 86405);
}

TEST_F(UserAircraftTest, StaticDataGoesToTheEngine) {
    sim.deliver(replyMessage(req::staticData, def::staticData, 1001).f64(9.5).f64(0.02));
    ASSERT_EQ(simInbox.size(), 1u);
    EXPECT_EQ(simInbox[0].kind, msgStaticData);
    EXPECT_EQ(simInbox[0].objectId, 1001u);
    EXPECT_EQ(simInbox[0].a, 9.5);
    EXPECT_EQ(simInbox[0].b, 0.02);
}

TEST_F(UserAircraftTest, TitlesAsThePanelShowsThem) {
    const std::string sixty(60, 't');
    const struct {
        std::string title, shown;
    } cases[] = {
        {"Airbus A320 Neo Asobo", "Airbus A320 Neo Asobo"},
        {sixty, sixty.substr(0, 48)},
        {"A\xC3\xA9ro", "A\xC3\xA9ro"},
        {"A\xE9ro", "A\xC3\xA9ro"},                               // Latin-1
        {sixty.substr(0, 47) + "\xC3\xA9", sixty.substr(0, 47)},  // no half characters
        {sixty.substr(0, 46) + "\xE9x", sixty.substr(0, 46) + "\xC3\xA9"},
    };
    for (const auto& c : cases) {
        sim.deliver(titleMessage(c.title));
        EXPECT_EQ(gf_panelText(&PanelState::userAircraftText), c.shown);
    }
    sim.deliver(titleMessage(cases[0].title));
    sim.deliver(titleMessage(cases[0].title));
    EXPECT_EQ(logCount("SimConnect: User aircraft title: Airbus A320 Neo Asobo"), 2);
    sim.deliver(titleMessage(""));
    EXPECT_TRUE(logHas("! Title of your aircraft is empty?"));
}

TEST_F(UserAircraftTest, TypeAndSpanOfAModel) {
    using From = UserModel::From;
    struct Case {
        const char* model;
        const char* title;
        const char* type;
        double half;
        From from;
    };
    const Case cases[] = {
        {"A320", "", "A320", 0.0097, From::model},
        {"A388", "", "A388", 0.0215, From::model},  // the widest of all is not taken for unknown
        {"A350-900", "", "A359", 0.0175, From::model},
        {"777", "", "772", 0.0215, From::nothing},
        {"TT:ATCCOM.AC_MODEL A320.0.text", "", "A320", 0.0097, From::model},
        {"ATCCOM.AC_MODEL_M20.0.text", "", "M20", 0.003, From::model},
        {"TT:ATCCOM.AC_MODEL ZZZZ.0.text", "", "", 0.0215, From::nothing},
        {"M20.0.text", "", "M20", 0.003, From::model},
        {"0.0.text", "", "", 0.0215, From::nothing},
        {"$$:DA40", "", "DA40", 0.0032, From::model},
        {"$$:A", "", "$$:A", 0.0215, From::nothing},
        {"737", "DG 737-800 Ryanair", "B738", 0.0096, From::model},
        {"737", "PMDG", "737", 0.0215, From::nothing},
        {"My camerapod", "", "My camerapod", 0.0078, From::vehicle},
        {"Crew Vessel 1", "", "Crew Vessel 1", 0.0078, From::vehicle},
        {"Airbus", "", "Airbus", 0.0215, From::nothing},
        {"Airbus", "Aerosoft A319 CFM", "A319", 0.0092, From::title},
        {"Airbus", "Aerosoft A321 CFM", "Airbus", 0.0215, From::nothing},  // a type without a span
        {"", "", "CRJ7", 0.0063, From::encrypted},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.model);
        const UserModel found = lf_userModel(c.model, c.title);
        EXPECT_EQ(found.model, c.type);
        EXPECT_DOUBLE_EQ(found.halfSpanNm, c.half);
        EXPECT_EQ(found.from, c.from);
    }
    EXPECT_EQ(lf_userModel("A320", "").category, AcCategory::Large);
    EXPECT_EQ(lf_userModel("My camerapod", "").category, AcCategory::Light);
}

TEST_F(UserAircraftTest, WhatAModelChanges) {
    sim.deliver(modelMessage("Airbus"));
    EXPECT_FALSE(g_panel.userSpanKnown);
    EXPECT_TRUE(logHas("User aircraft wing span unknown, max is taken instead, please report in my Forum!"));
    sim.deliver(modelMessage("A320"));
    EXPECT_TRUE(g_panel.userSpanKnown);
    EXPECT_DOUBLE_EQ(userHalfSpanNm, 0.0097);
    EXPECT_EQ(userCategory, AcCategory::Large);
    EXPECT_TRUE(logHas(
        "          SimConnect: User aircraft model: A320, half wing span: 18.0 meter, category: Large"));
    sim.deliver(titleMessage("Aerosoft A319 CFM"));
    sim.deliver(modelMessage("Airbus"));
    EXPECT_TRUE(logHas("SimConnect: User aircraft model deduced from title: A319"));
    sim.deliver(modelMessage(""));
    EXPECT_EQ(gf_panelText(&PanelState::userAircraftText), "Unknown (encrypted?) aircraft");
    EXPECT_TRUE(
        logHas("171: No model info from your user aircraft received in SimConnect, CRJ7 is taken instead"));
    EXPECT_DOUBLE_EQ(userHalfSpanNm, 0.0063);
}

}  // namespace

}  // namespace skl::test
