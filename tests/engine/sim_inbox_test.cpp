// What the simulator side tells the engine: heights, static data, identified and refused objects, activation.
#include <limits>

#include "core/errors.h"
#include "core/parameters.h"
#include "core/run_state.h"
#include "engine/engine.h"
#include "engine/engine_state.h"
#include "engine/live_table.h"
#include "engine/spawning.h"
#include "liveries/catalogue.h"
#include "panel/panel_state.h"
#include "simlink/sim_queues.h"
#include "tests/support/engine_world.h"
#include "tests/support/fake_simconnect.h"

namespace skl {
namespace {

using test::anyHexid;
using test::EngineTest;
using Words = std::vector<std::string>;

class SimInbox : public EngineTest {
  protected:
    void post(const SimMsg& message) {
        gf_postSimMsg(message);
        lf_processSimInbox();
    }
    /// A record whose creation request has gone out.
    LiveAc& asked(uint32_t hexid = anyHexid, const std::string& callsign = "BAW12") {
        LiveAc& added = buffered(hexid, callsign);
        added.simState = SimObjectState::adding2sim;
        added.stage = FlightStage::flying;
        added.addingSince = 1;
        added.title = "A320 BAW";
        added.airline = "BAW";
        return added;
    }
    void identify(uint32_t objectId, uint32_t hexid = anyHexid) {
        post({.objectId = objectId, .hexid = hexid, .kind = msgLiveIdentified, .b = 1900});
    }
};

TEST_F(SimInbox, HeightReports) {
    struct Case {
        const char* what;
        uint32_t saysGround;
        bool onGround;
        int32_t groundCount;
        SimObjectState state;
        FlightStage stage;
        bool lands;
        double simAlt;
    };
    constexpr auto moved = SimObjectState::active;
    constexpr auto flying = FlightStage::flying;
    const Case cases[] = {
        {"in the air", 0, false, 1, moved, flying, false, 777},
        {"touches", 1, false, 1, moved, flying, true, 410},
        {"touches while it rotates", 1, false, 2, moved, flying, false, 410},
        {"touches at take-off", 1, false, 1, moved, FlightStage::take_off, false, 777},
        {"touches while it is being removed", 1, false, 1, SimObjectState::removingfromsim, flying, false,
         777},
        {"stands", 1, true, 1, moved, FlightStage::taxi, false, 410},
        {"hops", 0, true, 1, moved, FlightStage::taxi, false, 410},
        {"a flag of another value", 2, false, 1, moved, flying, false, 777},
    };
    for (const Case& c : cases) {
        lf_clearLive();
        LiveAc& it = active(anyHexid, "BAW12", 1001);
        it.simState = c.state;
        it.stage = c.stage;
        it.onGround = c.onGround;
        it.groundCount = c.groundCount;
        it.simAlt = 777;
        it.dAlt = -0.1;
        it.staticCgFt = 10;
        post({.objectId = 1001, .hexid = c.saysGround, .kind = msgHeight, .a = 400, .b = 12});
        EXPECT_EQ(it.onGround, c.onGround || c.lands) << c.what;
        EXPECT_EQ(it.dAlt, c.lands ? 0 : -0.1) << c.what;
        EXPECT_EQ(it.groundCount, c.lands ? 1 : c.groundCount) << c.what;
        EXPECT_EQ(it.simAlt, c.simAlt) << c.what;
        EXPECT_EQ(it.agl, 12) << c.what;
    }
}

TEST_F(SimInbox, StaticDataKeepsToWhatAnAircraftCanHave) {
    constexpr double usual = 0.012217304763960306;
    const struct {
        double height, pitch, wantHeight, wantPitch;
    } cases[] = {
        {1, 0, 1, 0},
        {35, 0.0436, 35, 0.0436},
        {0.99, 0.0437, 0, usual},
        {35.01, -0.0174, 0, -0.0174},
        {10, -0.0175, 10, usual},
    };
    for (const auto& c : cases) {
        lf_clearLive();
        LiveAc& it = active(anyHexid, "BAW12", 1001);
        post({.objectId = 1001, .kind = msgStaticData, .a = c.height, .b = c.pitch});
        EXPECT_EQ(it.staticCgFt, c.wantHeight) << c.height;
        EXPECT_EQ(it.staticPitch, c.wantPitch) << c.pitch;
        post({.objectId = 1001,
              .kind = msgStaticData,
              .a = std::numeric_limits<double>::quiet_NaN(),
              .b = 0.001});
        EXPECT_EQ(it.staticPitch, c.wantPitch);
    }
}

// An object that no record waits for would stay in the simulator for ever.
TEST_F(SimInbox, AnObjectThatNobodyWaitsForGoes) {
    identify(1001);  // no such record
    buffered(20001, "A");
    identify(1002, 20001);  // heard again, not asked for again
    asked(20002, "B");
    identify(1003, 20002);
    identify(1004, 20002);  // has one
    asked(20003, "C");
    identify(2, 20003);  // an id of the user's or the simulator's own
    asked(20004, "D").addingSince = 0;
    identify(1005, 20004);  // of a former record: this one's request is still in the queue
    EXPECT_EQ(removalQueue, (std::deque<uint32_t>{1001, 1002, 1004, 2, 1005}));
    EXPECT_EQ(record(20002).objectId, 1003u);
    EXPECT_FALSE(exists(20003));
    EXPECT_EQ(record(20004).objectId, 0u);
    EXPECT_EQ(pendingObjects.size(), 1u);
}

TEST_F(SimInbox, AnObjectSettlesForTwoSeconds) {
    test::FakeSimulator simulator;
    simulator.connect();
    asked();
    identify(1001);
    EXPECT_EQ(record(anyHexid).agl, 1900);
    EXPECT_EQ(simulator.takeCalls(), (Words{"request 102 405 1001 1"}));
    for (int i = 1; i < 200; ++i) {
        lf_processSimInbox();
        EXPECT_EQ(simulator.takeCalls(), (i == 49 || i == 99 ? Words{"event 1001 213 0 301"} : Words{})) << i;
    }
    EXPECT_EQ(record(anyHexid).simState, SimObjectState::adding2sim);
    lf_processSimInbox();
    EXPECT_EQ(record(anyHexid).simState, SimObjectState::active);
    EXPECT_TRUE(pendingObjects.empty());
    // No static data has come: asked for once more.
    EXPECT_EQ(simulator.takeCalls(), (Words{"request 102 405 1001 1"}));
    asked(20002, "B");
    identify(1002, 20002);
    post({.objectId = 1002, .kind = msgStaticData, .a = 8, .b = 0.01});
    simulator.takeCalls();
    for (int i = 0; i < 200; ++i) lf_processSimInbox();
    EXPECT_EQ(simulator.takeCalls().size(), 2u);  // the two toggles
}

// A number that the simulator gives again must not wake the record of the object that had it before.
TEST_F(SimInbox, AnObjectThatGoesWhileItSettlesTakesItsRecordAlong) {
    asked();
    identify(1001);
    lf_queueRemoval(1001);
    post({.objectId = 1001, .kind = msgObjectRemoved});
    EXPECT_FALSE(exists(anyHexid));
    EXPECT_TRUE(pendingObjects.empty());
    EXPECT_TRUE(removalQueue.empty());
}

TEST_F(SimInbox, FirstConfiguration) {
    const auto lights = [](const char* seven) {
        static constexpr const char* ids[] = {"207", "206", "210", "208", "209", "212", "211"};
        Words words;
        for (int i = 0; i < 7; ++i) words.push_back(std::string(ids[i]) + '=' + seven[i]);
        return words;
    };
    const struct {
        const char* what;
        const char* type;
        FlightStage stage;
        double alt, agl;
        Words before;
        const char* lights;
        Words after;
    } cases[] = {
        {"low", "A320", FlightStage::flying, 10000, 1999, {"220=0", "218=0"}, "1110110", {}},
        {"high", "A320", FlightStage::flying, 10001, 2000, {"220=0", "218=0"}, "1100101", {}},
        {"taxi", "A320", FlightStage::taxi, 0, 0, {"218=0", "220=0"}, "1101011", {"222=0", "217=3072"}},
        {"parked", "A320", FlightStage::parked, 0, 0, {"218=0", "221=0"}, "1000011", {"222=0", "217=0"}},
        {"helicopter", "EC35", FlightStage::taxi, 0, 0, {"220=0"}, "1101011", {"222=16383"}},
    };
    NAV_LIGHTS_WHILE_PARKED.value = true;
    for (const auto& c : cases) {
        lf_clearLive();
        LiveAc& it = asked();
        it.category = gf_category(c.type);
        it.stage = c.stage;
        it.simAlt = c.alt;
        it.stream().front().airborne = c.stage == FlightStage::flying;
        identify(1001);
        Words want = c.before;
        const bool gear = !it.stream().front().airborne && it.category != AcCategory::Rotorcraft;
        EXPECT_EQ(events(), (gear ? Words{"219=1"} : Words{})) << c.what;
        eventQueue.clear();
        it.agl = c.agl;
        for (int i = 0; i < 200; ++i) lf_processSimInbox();
        for (const auto& each : lights(c.lights)) want.push_back(each);
        for (const auto& each : c.after) want.push_back(each);
        EXPECT_EQ(events(), want) << c.what;
        eventQueue.clear();
    }
}

TEST_F(SimInbox, ARefusedTitleIsNotTriedAgainAndTheTwentiethEndsTheRun) {
    asked();
    post({.hexid = anyHexid, .kind = msgNotCreated});
    EXPECT_FALSE(exists(anyHexid));
    EXPECT_TRUE(uncreatableTitles.empty());
    std::vector<std::string> titles;
    for (int i = 0; i < 20; ++i) titles.push_back("title " + std::to_string(i));
    for (uint32_t i = 0; i < 19; ++i) {
        asked(20000 + i, "C" + std::to_string(i)).title = titles[i];
        post({.hexid = 20000 + i, .kind = msgRefused});
        EXPECT_FALSE(exists(20000 + i));
    }
    EXPECT_EQ(gf_panelText(&PanelState::statusText), "C18 'title 18' could not be created by your Sim!");
    EXPECT_TRUE(uncreatableKeys.contains("A320 BAW"));
    asked().title = titles[19];
    try {
        post({.hexid = anyHexid, .kind = msgRefused});
        ADD_FAILURE() << "no exception";
    } catch (const UserErrorException& error) {
        EXPECT_STREQ(error.what(),
                     "81: There are too many liveries that could not be created by MSFS!, see Log.txt");
    }
    EXPECT_TRUE(
        test::logHas("===> Error 81, There are too many liveries that could not be created by MSFS!"));
}

}  // namespace
}  // namespace skl
