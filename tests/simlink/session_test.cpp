// A session from its thread's start to its end: setup, dispatch, what ends it and how.
#include "simlink/session.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "core/folders.h"
#include "core/locks.h"
#include "core/run_state.h"
#include "engine/engine_state.h"
#include "panel/panel_state.h"
#include "simlink/dispatch.h"
#include "simlink/sim_queues.h"
#include "tests/support/fake_simconnect.h"
#include "tests/support/stepped_world.h"
#include "tests/support/temp_folder.h"

namespace skl::test {

namespace {

class SessionTest : public TempFolderTest {
  protected:
    void SetUp() override {
        TempFolderTest::SetUp();
        sim2020 = true;
        gf_resetSimLink();
        gf_resetEngine();
        gf_resetPanel();
    }
    void TearDown() override {
        if (thread) {
            *stop = true;
            thread->join();
        }
        gf_resetSimLink();
        TempFolderTest::TearDown();
    }
    void start() { thread = world.start("SimConnect", gf_simTask(stop)); }
    void pass(double seconds = 0.1) {
        world.waitUntil(world.steadyNow() + Nanos(int64_t(seconds * 1e9)), {});
    }
    void deliver(const SimMessage& message) {
        sim.post(message);
        pass(0.01);
    }
    void end() {
        *stop = true;
        thread->join();
        thread.reset();
    }

    SteppedWorld world;
    FakeSimulator sim;
    std::shared_ptr<std::atomic<bool>> stop = std::make_shared<std::atomic<bool>>(false);
    std::unique_ptr<RunningTask> thread;
};

TEST_F(SessionTest, WaitsForTheSimulatorAsLongAsItTakes) {
    sim.state().listening = false;
    start();
    pass(3600);
    EXPECT_EQ(logCount("Waiting for MSFS 2020 ..."), 1);
    EXPECT_EQ(gf_panelText(&PanelState::statusText), "Waiting for MSFS 2020 ...");
    // Settings that allow no connection are named, once for each change.
    sim.state().trouble = "SimConnect.cfg: Port is missing";
    pass(60);
    EXPECT_EQ(logCount("Port is missing"), 1);
    sim.state().listening = true;
    pass(0.2);
    EXPECT_EQ(sim.state().opened, 1);
    EXPECT_TRUE(g_panel.simConnected);
    EXPECT_EQ(gf_panelText(&PanelState::statusText), "");
    end();
    EXPECT_EQ(sim.state().closed, 1);
    EXPECT_FALSE(simHandle);
    EXPECT_FALSE(g_panel.simConnected);
    EXPECT_TRUE(logHas("SimConnect closed ok"));
}

TEST_F(SessionTest, AStopEndsTheWaitWithoutASession) {
    sim.state().listening = false;
    start();
    pass(1);
    gf_requestClose();
    pass(0.2);
    EXPECT_EQ(world.liveTasks(), 0);
    EXPECT_FALSE(logHas("SimConnect closed"));
}

TEST_F(SessionTest, DeclaresEverythingInItsOrder) {
    start();
    pass();
    const auto calls = sim.takeCalls();
    std::vector<std::string> expected{"open Skylantern"};
    for (const char* line :
         {"201 Sim", "202 ObjectAdded", "203 ObjectRemoved", "205 FlightLoaded", "204 Frame"})
        expected.push_back(std::string("subscribe ") + line);
    for (const char* line : {"407 TITLE||11",
                             "408 ATC MODEL||6",
                             "409 SIM ON GROUND|Bool|2",
                             "402 Plane Latitude|degree|4",
                             "402 Plane Longitude|degree|4",
                             "402 Plane Pitch degrees|radians|4",
                             "402 Plane Bank degrees|radians|4",
                             "402 Plane Heading degrees true|radians|4",
                             "402 Plane Altitude|feet|4",
                             "402 Vertical Speed|feet per second|4",
                             "402 Airspeed True|knots|4",
                             "403 Plane Latitude|degree|4",
                             "403 Plane Longitude|degree|4",
                             "403 Plane Pitch degrees|radians|4",
                             "403 Plane Bank degrees|radians|4",
                             "403 Plane Heading degrees true|radians|4",
                             "403 Plane Altitude|feet|4",
                             "403 Plane Alt Above Ground|feet|4",
                             "403 Ground Velocity|knots|4",
                             "403 ZULU TIME|Seconds|2",
                             "403 ZULU DAY OF YEAR|Number|2",
                             "403 ZULU YEAR|Number|2",
                             "403 LIGHT STATES|Mask|2",
                             "405 Static CG to Ground|feet|4",
                             "405 Static Pitch|radians|4",
                             "406 Light On States|Mask|2",
                             "404 Plane Alt Above Ground|feet|4",
                             "404 Ground Altitude|feet|4",
                             "404 SIM ON GROUND|Bool|2",
                             "404 ATC ID||6",
                             "401 SPOILERS HANDLE POSITION|percent|4",
                             "401 GENERAL ENG THROTTLE LEVER POSITION:1|percent|4",
                             "401 GENERAL ENG THROTTLE LEVER POSITION:2|percent|4"})
        expected.push_back(std::string("define ") + line);
    for (const char* line :
         {"219 GEAR_SET", "220 ENGINE_AUTO_START", "221 ENGINE_AUTO_SHUTDOWN", "222 THROTTLE_SET",
          "217 FLAPS_SET", "218 SPOILERS_SET", "207 NAV_LIGHTS_SET", "206 BEACON_LIGHTS_SET",
          "210 LANDING_LIGHTS_SET", "208 TAXI_LIGHTS_SET", "209 STROBES_SET", "212 LOGO_LIGHTS_SET",
          "211 CABIN_LIGHTS_SET", "213 ALL_LIGHTS_TOGGLE", "214 FREEZE_LATITUDE_LONGITUDE_SET",
          "215 FREEZE_ALTITUDE_SET", "216 FREEZE_ATTITUDE_SET"})
        expected.push_back(std::string("map ") + line);
    for (int event : {207, 206, 210, 208, 209, 212, 211, 213, 217, 218, 219, 221, 222, 214, 215, 216})
        expected.push_back("group 301 " + std::to_string(event));
    expected.push_back("priority 301 1");
    EXPECT_EQ(calls, expected);
}

TEST_F(SessionTest, TheWrongSimulatorEndsTheRunWithItsName) {
    struct Case {
        bool want2020;
        const char* name;
        const char* error;  // empty: right
        const char* simText;
    };
    const Case cases[] = {
        {true, "KittyHawk", "", "MSFS 2020 (11.0.282174.999)"},
        {false, "SunRise", "", "MSFS 2024"},
        {true, "Kitty\x01-Hawk", "", "MSFS 2020 (11.0.282174.999)"},
        {false, "KittyHawk",
         "71: MSFS 2020 is running ..., switch Simulator, or select the right sim in the drop down list "
         "above",
         ""},
        {true, "SunRise",
         "71: MSFS 2024 is running ..., switch Simulator, or select the right sim in the drop down list "
         "above",
         ""},
        {true, "Prepar3D v5", "77: 'Prepar3D v5' not being MSFS 2020 or MSFS 2024 connects ... ?", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        gf_resetRunState();
        gf_resetPanel();
        *stop = false;
        sim2020 = c.want2020;
        sim.state().name = c.name;
        start();
        pass();
        EXPECT_EQ(gf_panelText(&PanelState::errorText), c.error);
        EXPECT_EQ(gf_panelText(&PanelState::simText), c.simText);
        EXPECT_EQ(g_stopRequested, *c.error != '\0');
        if (*c.error) {
            EXPECT_EQ(g_exitReason, ExitReason::systemError);
            EXPECT_EQ(world.liveTasks(), 0);
        }
        end();
        EXPECT_FALSE(simHandle);
    }
    EXPECT_EQ(sim.state().closed, static_cast<int>(std::size(cases)));
}

TEST_F(SessionTest, AnEmptyNameIsNoSimulator) {
    sim.state().name.clear();
    start();
    deliver(openMessage(""));
    EXPECT_TRUE(logHas("! Simulator name empty?"));
    EXPECT_FALSE(g_panel.simConnected);
}

TEST_F(SessionTest, FlightEvents) {
    start();
    deliver(eventMessage(ev::sim, 1));
    EXPECT_TRUE(g_flightRunning);
    EXPECT_TRUE(g_panel.simRunning);
    deliver(eventMessage(ev::sim, 0));
    EXPECT_FALSE(g_flightRunning);
    // A flight that loads before the cycle is the one waited for.
    deliver(eventMessage(ev::flightLoaded, 0));
    deliver(filenameMessage());
    EXPECT_TRUE(logHas("SimConnect: flight loaded event"));
    EXPECT_TRUE(logHas("===> SimConnect: New file event"));
    EXPECT_FALSE(g_stopRequested);
    for (const auto& message : {eventMessage(ev::flightLoaded, 0), filenameMessage()}) {
        gf_resetRunState();
        g_cycleRunning = true;
        deliver(message);
        EXPECT_TRUE(g_stopRequested);
        EXPECT_EQ(g_exitReason, ExitReason::newFlight);
        EXPECT_EQ(g_restartSeconds, 45);
    }
}

TEST_F(SessionTest, QuitLeavesTheRunWaiting) {
    start();
    deliver(eventMessage(ev::sim, 1));
    sim.state().health = SimConnect::Dispatch::quit;
    deliver(quitMessage());
    pass(60);
    EXPECT_FALSE(g_flightRunning);
    EXPECT_FALSE(g_panel.simRunning);
    EXPECT_FALSE(g_stopRequested);
    end();
    EXPECT_TRUE(logHas("SimConnect closed ok"));
}

TEST_F(SessionTest, ALostSimulatorEndsTheRunForARestart) {
    start();
    deliver(eventMessage(ev::sim, 1));
    sim.state().health = SimConnect::Dispatch::lost;
    sim.state().closesWell = false;
    pass(60);
    EXPECT_TRUE(g_simError);
    EXPECT_FALSE(g_flightRunning);
    EXPECT_EQ(g_exitReason, ExitReason::simConnectError);
    EXPECT_EQ(g_restartSeconds, 9);
    EXPECT_EQ(logCount("SimConnect request error"), 1);
    EXPECT_EQ(logCount("SimConnect: connection lost"), 1);
    end();
    EXPECT_TRUE(logHas("===> Closing SimConnect failed?!"));
}

TEST_F(SessionTest, ASessionIsServedUntilItsOwnStop) {
    start();
    pass();
    gf_requestStop(ExitReason::newSettings, 0);
    simRemove(1001);
    deliver(frameMessage());
    const auto calls = sim.takeCalls();
    ASSERT_FALSE(calls.empty());
    EXPECT_EQ(calls.back(), "remove 1001 105");
}

TEST_F(SessionTest, AnythingThrownClosesTheSession) {
    start();
    pass();
    deliver(exceptionMessage(5, 0));
    EXPECT_EQ(gf_panelText(&PanelState::errorText), "95: SimConnect Version Mismatch, dwIndex: 4294967295");
    EXPECT_EQ(g_exitReason, ExitReason::systemError);
    EXPECT_TRUE(logHas("Flight Simulator no longer connected, Skylantern will stop ..."));
    EXPECT_EQ(sim.state().closed, 1);
}

TEST_F(SessionTest, SimulatorExceptions) {
    struct Case {
        uint32_t code;
        const char* line;
    };
    const Case cases[] = {
        {11, "SimConnect: too many objects (max 1000)"},
        {19, "SIMCONNECT_EXCEPTION_INVALID_DATA_SIZE"},
        {23, "===> SimConnect exception: load flight plan failed"},
        {24, "SIMCONNECT_EXCEPTION_OPERATION_INVALID_FOR_OBJECT_TYPE"},
        {7, "===> SIMCONNECT_EXCEPTION #7"},
    };
    start();
    for (const Case& c : cases) {
        deliver(exceptionMessage(c.code, 1));
        EXPECT_TRUE(logHas(c.line)) << c.line;
    }
    // An unknown id means nothing before the user's place is known.
    deliver(exceptionMessage(3, 1));
    EXPECT_FALSE(logHas("UNRECOGNIZED_ID"));
    deliver(userMessage(1, {.lat = 50, .lon = 8}));
    deliver(exceptionMessage(3, 1));
    EXPECT_TRUE(logHas("===> SIMCONNECT_EXCEPTION_UNRECOGNIZED_ID"));
    EXPECT_FALSE(g_stopRequested);
}

TEST_F(SessionTest, MessagesThatLackFieldsAreDropped) {
    start();
    pass();
    struct Case {
        SimMessage message;
        size_t cut;
    };
    const Case cases[] = {
        {openMessage("KittyHawk"), 28},
        {eventMessage(ev::sim, 1), 1},
        {objectMessage(202, 1001), 1},
        {frameMessage(), 5},
        {exceptionMessage(22, 1), 1},
        {userMessage(1, {.lat = 50}), 1},
        {onGroundMessage(true), 1},
        {modelMessage("A320"), 1},
        {rangeMessage(1001, 1, 2, 0, "BAW1"), 1},
        {replyMessage(102, 405, 1001), 8},
    };
    for (Case c : cases) {
        const int before = logCount("is not whole, dropped");
        deliver(c.message.cut(c.cut));
        EXPECT_EQ(logCount("is not whole, dropped"), before + 1);
    }
    deliver(SimMessage(77));
    EXPECT_TRUE(logHas("! Unknown Dispatch dwID 77"));
    EXPECT_FALSE(g_flightRunning);
    EXPECT_FALSE(g_secondTick);
    EXPECT_EQ(world.liveTasks(), 1);
}

TEST_F(SessionTest, TheFrameRateIsSampledEachThirtyFrames) {
    start();
    for (int frame = 1; frame < 30; ++frame) deliver(frameMessage(60));
    EXPECT_EQ(frameRate, 0);
    deliver(frameMessage(25));
    EXPECT_EQ(frameRate, 25);
}

TEST_F(SessionTest, RequestsAndTheirFailures) {
    struct Case {
        std::function<void()> request;
        const char* call;
        const char* failure;
    };
    UserRecord record;
    const Case cases[] = {
        {[] { gf_requestUserOnGround(); }, "request 108 409 0 4", "SimConnect request ac gnd/air fails"},
        {[] { gf_requestAircraftInRange(5000.7); }, "range 101 404 5000 2",
         "SimConnect request ac within range fails"},
        {[] { gf_requestAircraftInRange(1e9); }, "range 101 404 200000 2",
         "SimConnect request ac within range fails"},
        {[] { gf_requestStaticData(1001); }, "request 102 405 1001 1", "SimConnect request StaticCG fails"},
        {[] { gf_allLightsToggle(1001); }, "event 1001 213 0 301", "SimConnect gf_allLightsToggle fails"},
        {[&] { gf_requestUser(record); }, "request 109 403 0 1", "SimConnect request user ac position fails"},
        {[] { gf_requestUserNames(); }, "request 106 407 0 1", "SimConnect request user ac title fails"},
    };
    for (const Case& c : cases) c.request();  // without a session: nothing
    sim.connect();
    for (const Case& c : cases) {
        SCOPED_TRACE(c.call);
        gf_resetRunState();
        sim.state().failing.clear();
        sim.takeCalls();
        c.request();
        EXPECT_EQ(sim.takeCalls().at(0), c.call);
        EXPECT_FALSE(g_stopRequested);
        sim.state().failing = c.call;
        c.request();
        EXPECT_TRUE(logHas(std::string("===> ") + c.failure));
        EXPECT_EQ(g_exitReason, ExitReason::simConnectError);
        sim.takeCalls();
        c.request();  // behind an error no request goes out
        EXPECT_TRUE(sim.takeCalls().empty());
    }
}

}  // namespace

}  // namespace skl::test
