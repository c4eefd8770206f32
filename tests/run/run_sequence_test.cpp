// Whole runs on the stepped clock, with the simulator stand-in behind its wire.
#include "core/run_sequence.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>

#include "core/folders.h"
#include "core/locks.h"
#include "core/parameter_store.h"
#include "core/parameters.h"
#include "core/run_state.h"
#include "engine/engine_state.h"
#include "feed/feed.h"
#include "panel/panel_state.h"
#include "tests/run/run_world.h"

namespace skl::test {
namespace {

TEST_F(RunTest, TrafficAppearsFliesAndGoes) {
    startSimulator();
    startRealTraffic();
    sendTraffic(8, 110, 6);
    closeAt(120);
    lf_run();
    // The simulator sees the end of the stream at its next look.
    world->waitUntil(world->steadyNow() + std::chrono::seconds(1), {});
    const auto report = simulatorReport();
    EXPECT_EQ(report["created"], 6);
    EXPECT_EQ(report["alive"], 0);
    EXPECT_GT(report["posesReceived"], 6 * 30 * 30);
    EXPECT_EQ(report["posesNotFrozen"], 0);
    EXPECT_EQ(report["motion"]["step"]["breaches"], 0) << report["motion"].dump(1);
    EXPECT_EQ(report["exceptions"].size(), 0u) << report["exceptions"].dump();
    EXPECT_TRUE(logHas("Exiting: USER CLOSED SIM"));
    EXPECT_FALSE(logHas("xception"));
    EXPECT_FALSE(g_restartPending);
    EXPECT_EQ(world->liveTasks(), 0);
    EXPECT_TRUE(network->listenPort.empty());
    EXPECT_NE(realTraffic->sent.find("exit\r\n"), std::string::npos);
    EXPECT_FALSE(std::filesystem::exists("input/dbase.xml"));
}

TEST_F(RunTest, StopAtAnyMomentEndsTheRun) {
    // The moments: scan, wait for the simulator, for the flight, for RealTraffic, readers' start, first
    // record, cycle.
    for (const double moment : {0.01, 1.0, 2.5, 4.5, 6.0, 9.0, 20.0, 47.0}) {
        SCOPED_TRACE(moment);
        gf_resetRunState();
        TearDown();
        SetUp();
        if (moment > 2) startSimulator();
        if (moment > 5) startRealTraffic();
        sendTraffic(8, 60, 2);
        closeAt(moment);
        lf_run();
        EXPECT_LT(world->seconds(), moment + 3);
        EXPECT_EQ(g_exitReason, ExitReason::userClosedSim);
        EXPECT_FALSE(g_restartPending);
        EXPECT_EQ(world->liveTasks(), 0);
        EXPECT_FALSE(network->udpOpen(trafficPort));
    }
}

TEST_F(RunTest, CutConnectionRestartsWithoutAnotherScan) {
    startSimulator("60 cut\n");
    startRealTraffic();
    sendTraffic(8, 300, 3);
    lf_run();
    EXPECT_TRUE(logHas("Exiting: SIMCONNECT ERROR"));
    EXPECT_TRUE(logHas("Restarting after 9 seconds"));
    ASSERT_TRUE(g_restartPending);
    EXPECT_FALSE(g_stopRequested);
    EXPECT_EQ(engineTick, 0);
    EXPECT_TRUE(liveAcs.empty());
    EXPECT_FALSE(SCAN_LIVERIES.value);
    closeAt(world->seconds() + 90);
    lf_run();
    EXPECT_EQ(logCount("liveries scan automatic starts"), 1);
    EXPECT_EQ(logCount("RealTraffic connected"), 2);
    EXPECT_EQ(simulatorReport()["created"], 6);
    EXPECT_EQ(simulatorReport()["motion"]["step"]["breaches"], 0);
    EXPECT_FALSE(g_restartPending);
}

TEST_F(RunTest, PauseStopsTimeAndResumeMakesNoJump) {
    startSimulator("70 pause\n130 resume\n");
    startRealTraffic();
    sendTraffic(8, 300, 3);
    int32_t pausedAt = 0, resumedAt = 0;
    uint64_t posesPaused = 0, posesResumed = 0;
    size_t reportsPaused = 0;
    world->at(72, [&] {
        pausedAt = engineTick;
        posesPaused = simulatorReport()["posesReceived"];
        reportsPaused = realTraffic->sent.size();
        LockGuard guard(g_trafficLock);
        EXPECT_FALSE(g_acceptTraffic);
    });
    world->at(129, [&] {
        resumedAt = engineTick;
        posesResumed = simulatorReport()["posesReceived"];
        EXPECT_GT(realTraffic->sent.size(), reportsPaused + 50 * 30)
            << "one position report a second goes on";
    });
    closeAt(230);
    lf_run();
    EXPECT_EQ(pausedAt, resumedAt);
    EXPECT_EQ(posesPaused, posesResumed);
    EXPECT_EQ(logCount("Flight not running"), 1);
    EXPECT_EQ(logCount("Flight resumed"), 1);
    const auto motion = simulatorReport()["motion"];
    EXPECT_EQ(motion["step"]["breaches"], 0) << motion["step"].dump();
}

TEST_F(RunTest, AClockThatIsSetMovesNoAircraft) {
    startSimulator();
    startRealTraffic();
    sendTraffic(8, 300, 3);
    // RealTraffic's stamps go on: it is the system's clock alone that jumps.
    for (const auto& [moment, jump] : {std::pair{60.0, 3600.0}, {80.0, -7200.0}, {100.0, 86400.0 * 30}})
        world->at(moment, [this, by = jump] {
            world->jumpUtc(by);
            feedShift -= by;
        });
    closeAt(160);
    lf_run();
    const auto report = simulatorReport();
    EXPECT_EQ(report["created"], 3);
    EXPECT_EQ(report["motion"]["step"]["breaches"], 0) << report["motion"]["step"].dump();
    EXPECT_GT(report["posesReceived"], 3 * 30 * 100);
    EXPECT_FALSE(logHas("xception"));
    EXPECT_EQ(logCount("Flight not running"), 0);
}

TEST_F(RunTest, QuitIdlesUntilTheUserCloses) {
    startSimulator("40 quit\n");
    startRealTraffic();
    sendTraffic(8, 100, 2);
    closeAt(100);
    lf_run();
    EXPECT_GE(world->seconds(), 100);
    EXPECT_TRUE(logHas("Exiting: USER CLOSED SIM"));
    EXPECT_FALSE(logHas("SimConnect request error"));
}

TEST_F(RunTest, WrongSimulatorIsHeldUntilClosedOrChanged) {
    options.sim = 2024;
    startSimulator();
    std::string shown;
    world->at(30, [&] { shown = gf_panelText(&PanelState::errorText); });
    closeAt(60);
    lf_run();
    EXPECT_NE(shown.find("71: MSFS 2024 is running ..."), std::string::npos) << shown;
    EXPECT_GE(world->seconds(), 60);
    EXPECT_TRUE(logHas("User closed Skylantern"));
    EXPECT_FALSE(g_restartPending);

    gf_resetRunState();
    world->at(world->seconds() + 30, [] { gf_requestStop(ExitReason::newSettings, 3); });
    lf_run();
    EXPECT_TRUE(g_restartPending);
    EXPECT_TRUE(gf_panelText(&PanelState::errorText).empty());
}

/// What the panel does when the user types the packages folder: it stores the path and asks for a new run.
void typePath(const std::string& path) {
    MSFS_INSTALL_PATH.set(path);
    gf_saveParameter(MSFS_INSTALL_PATH);
    gf_requestStop(ExitReason::newSettings, 3);
}

TEST_F(RunTest, APathTypedUnderTheHeldErrorStartsARunWithIt) {
    const std::string packages = (root.parent_path() / "packages").string();
    writeFile(gf_programDataPath() / "parameters.xml",
              "<parameters><parameter name=\"PROGRAM_VERSION\" value=\"11.0.3\"/>"
              "<parameter name=\"BLOCK_CALLSIGN\" value=\"DLH100\"/></parameters>");
    startSimulator();
    world->at(30, [&] {
        EXPECT_EQ(
            gf_panelText(&PanelState::errorText),
            "150: No install path detected, type full path to your Community folder above, and press Enter");
        EXPECT_TRUE(ALL_INSTALL_PATH.enabled);
        typePath(packages + "/Community/");
    });
    lf_run();
    EXPECT_GE(world->seconds(), 33) << "the countdown of 3 seconds";
    ASSERT_TRUE(g_restartPending);
    EXPECT_TRUE(SCAN_LIVERIES.value) << "new settings do not cancel a scan";
    EXPECT_FALSE(logHas("User closed"));
    EXPECT_TRUE(gf_panelText(&PanelState::errorText).empty());
    EXPECT_EQ(g_exitReason, ExitReason::notYetSet);

    startRealTraffic();
    closeAt(world->seconds() + 20);
    lf_run();
    EXPECT_EQ(MSFS_INSTALL_PATH.get(), packages) << "the last component is cut off";
    EXPECT_EQ(logCount("BLOCK_CALLSIGN=DLH100"), 1) << "it does not outlive its run";
    EXPECT_TRUE(logHas("RealTraffic connected"));
    EXPECT_EQ(logCount("Error "), 1);
}

TEST_F(RunTest, NewSettingsBeforeTheScanKeepBothSwitchesAndRestart) {
    gf_requestStop(ExitReason::newSettings, 2);
    lf_run();
    EXPECT_TRUE(logHas("Exiting: NEW SETTINGS"));
    EXPECT_FALSE(g_userClosing);
    EXPECT_TRUE(g_restartPending);
    EXPECT_TRUE(SCAN_LIVERIES.value);
    closeAt(world->seconds() + 5);
    lf_run();
    EXPECT_TRUE(logHas("Exiting: USER CLOSED SIM"));
    EXPECT_FALSE(SCAN_LIVERIES.value) << "the second run has scanned";
    EXPECT_TRUE(std::filesystem::exists(paths::liveriesScanned));
}

TEST_F(RunTest, AReaderThatFailsRestartsWithoutAScan) {
    startSimulator();
    startRealTraffic();
    world->at(30, [&] {
        SCAN_LIVERIES.value = true;
        network->breakUdp(qnhPort, 10054);
    });
    lf_run();
    EXPECT_TRUE(logHas("The QNH Reader has stopped with error: receive error: "));
    EXPECT_TRUE(logHas("Exiting: READER ERROR"));
    EXPECT_TRUE(logHas("Restarting after 15 seconds"));
    EXPECT_GE(world->seconds(), 45);
    EXPECT_TRUE(g_restartPending);
    EXPECT_FALSE(SCAN_LIVERIES.value);
}

TEST_F(RunTest, AnExceptionWhileClosingWaitsForTheUser) {
    std::filesystem::remove_all("docs");
    world->at(0.2, [] { throw std::runtime_error("disk gone"); });
    closeAt(30);
    lf_run();
    EXPECT_TRUE(logHas("lf_closingDown exception disk gone"));
    EXPECT_GE(world->seconds(), 30);
    EXPECT_FALSE(g_restartPending);
}

TEST_F(RunTest, ASimulatorThatHangsDoesNotHoldUpTheClose) {
    world->setLimit(200);
    startSimulator();
    startRealTraffic();
    sendTraffic(8, 60, 2);
    world->at(60, [&] { simulatorHangs = true; });
    closeAt(62);
    lf_run();
    EXPECT_LT(world->seconds(), 64);
    EXPECT_EQ(world->liveTasks(), 0);
}

TEST_F(RunTest, AStallIsDroppedNotCaughtUp) {
    startSimulator();
    startRealTraffic();
    sendTraffic(8, 60, 1);
    int32_t before = 0, after = 0;
    world->at(50, [&] {
        before = engineTick;
        world->waitUntil(world->steadyNow() + std::chrono::milliseconds(2500), {});
    });
    world->at(60, [&] { after = engineTick; });
    closeAt(61);
    lf_run();
    EXPECT_NEAR(after - before, 750, 15);
}

TEST_F(RunTest, NoTrafficIsToldOnceAndTheCycleGoesOn) {
    startSimulator();
    startRealTraffic();
    closeAt(60);
    lf_run();
    EXPECT_EQ(logCount("No traffic in this region?"), 1);
    EXPECT_GT(g_seconds, 20);

    gf_resetRunState();
    lf_resetForRestart();
    closeAt(world->seconds() + 10);
    lf_run();
    EXPECT_EQ(logCount("RealTraffic connected"), 2);
    EXPECT_EQ(logCount("No traffic in this region?"), 1) << "a stop is no answer";
}

TEST_F(RunTest, AShiftedFeedSetsTheWeekSlotAndIsToldTheSimulatorsTime) {
    feedLevel = 2;
    feedShift = 3 * 86400;
    startSimulator();
    startRealTraffic();
    sendTraffic(8, 40, 1);
    const auto slotIn = [this](double shift) {
        return gf_weekSlotOf(std::chrono::duration_cast<std::chrono::seconds>(world->utcNow()).count() +
                             static_cast<int64_t>(shift));
    };
    world->at(40, [&] {
        EXPECT_EQ(gf_weekSlotNow(), slotIn(3 * 86400));
        EXPECT_NE(realTraffic->sent.find("Qs123="), std::string::npos);
    });
    // A stamp outside any calendar, behind the last good one.
    world->at(55, [&] {
        feedShift = 1e300;
        report(5000009, 51.5, -0.5, 12000, 0, 300, "DLH9");
    });
    world->at(58, [&] { EXPECT_EQ(gf_weekSlotNow(), slotIn(0)); });
    closeAt(60);
    lf_run();
}

TEST_F(RunTest, CloseDuringTheCountdownEndsTheProcess) {
    startSimulator("40 cut\n");
    startRealTraffic();
    watchLog("Restarting after 9 seconds");
    bool asked = false;
    world->every(0.5, [&] {
        if (!asked && logHas("Restarting after")) {
            asked = true;
            gf_requestClose();
        }
    });
    lf_run();
    EXPECT_GE(whenLogged("Restarting after 9 seconds"), 0);
    EXPECT_FALSE(g_restartPending);
    EXPECT_TRUE(g_userClosing);
}

TEST_F(RunTest, NewFlightEndsTheProgramOnlyOnceTheCycleRuns) {
    startSimulator("3 flight-loaded\n30 flight-loaded\n");
    startRealTraffic();
    lf_run();
    EXPECT_TRUE(logHas("Exiting: NEW FLIGHT"));
    EXPECT_TRUE(logHas("New flight detected, Skylantern will close, please restart manually ..."));
    EXPECT_GE(world->seconds(), 40);
    EXPECT_FALSE(g_restartPending);
}

TEST_F(RunTest, TeleportEndsTheRunAsANewFlight) {
    startSimulator("30 teleport 52.0 1.0\n");
    startRealTraffic();
    lf_run();
    EXPECT_TRUE(logHas("Teleport"));
    EXPECT_TRUE(logHas("Exiting: NEW FLIGHT"));
}

TEST_F(RunTest, LostLinkClearsTheSkyAndTrafficComesBack) {
    startSimulator();
    startRealTraffic();
    sendTraffic(8, 300, 4);
    world->at(70, [&] {
        EXPECT_EQ(g_panel.liveCount, 4u);
        realTraffic->leave();
    });
    world->at(85, [&] {
        EXPECT_EQ(simulatorReport()["alive"], 0);
        LockGuard guard(g_trafficLock);
        EXPECT_TRUE(trafficInbox.empty());
        EXPECT_FALSE(g_acceptTraffic);
    });
    world->at(90, [&] { realTraffic = network->connectClient(); });
    world->at(150, [&] { EXPECT_EQ(g_panel.liveCount, 4u); });
    closeAt(151);
    lf_run();
    EXPECT_EQ(logCount("RealTraffic gone? Wait for RealTraffic to re-connect"), 1);
    EXPECT_EQ(logCount("RealTraffic re-connected"), 1);
    EXPECT_EQ(simulatorReport()["created"], 8);
}

TEST_F(RunTest, StartWaveShowsAllWithoutRushing) {
    startSimulator();
    startRealTraffic();
    sendTraffic(10, 110, 60);
    size_t most = 0;
    double allShown = -1;
    world->every(0.1, [&] {
        most = std::max(most, addingStack.size() + creationQueueLive.size());
        if (allShown < 0 && g_panel.liveCount == 60) allShown = world->seconds();
    });
    closeAt(115);
    lf_run();
    EXPECT_GT(allShown, 0);
    EXPECT_LT(allShown, 10 + 30 + 70);
    EXPECT_LE(most, 12u);
    EXPECT_EQ(simulatorReport()["motion"]["step"]["breaches"], 0);
    EXPECT_EQ(simulatorReport()["posesNotFrozen"], 0);
}

TEST_F(RunTest, NoDocumentsNoRun) {
    std::filesystem::remove_all("docs");
    closeAt(5);
    lf_run();
    EXPECT_TRUE(logHas("Error 41: Skylantern must be run from the Skylantern folder!"));
    EXPECT_GE(world->seconds(), 5);
}

TEST_F(RunTest, DayOfHeartbeatsWrapsAndSummarises) {
    startSimulator();
    startRealTraffic();
    sendTraffic(8, 100, 1);
    world->at(60, [] { g_seconds = 86390; });
    int32_t wrapped = -1;
    world->at(75, [&] { wrapped = g_seconds; });
    closeAt(80);
    lf_run();
    EXPECT_GE(wrapped, 0);
    EXPECT_LT(wrapped, 20);
    EXPECT_GE(logCount("live traffic livery matching summary"), 2) << "once a day and at the end of the run";
}

}  // namespace
}  // namespace skl::test
