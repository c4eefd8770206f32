// Commands to AI objects: the queues of a frame, and the way of a creation to its object.
#include "simlink/ai_commands.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <thread>

#include "core/clock.h"
#include "core/locks.h"
#include "core/run_state.h"
#include "engine/engine_state.h"
#include "simlink/session.h"
#include "simlink/sim_queues.h"
#include "simlink/user_aircraft.h"
#include "tests/support/fake_simconnect.h"
#include "tests/support/temp_folder.h"

namespace skl::test {

namespace {

using Lines = std::vector<std::string>;

CreateRequest creation(uint32_t hexid, std::string callsign) {
    return {.position = {50, 8, 1000, 0, 0, 90, 0, 0},
            .callsign = std::move(callsign),
            .title = "Title",
            .hexid = hexid};
}

PosEntry pose(uint32_t objectId, double lat) {
    return {lat, 2, 3, 4, 5, 6, 7, 8, objectId};
}

/// A message as text: kind, object, hexid, a, b.
std::string text(const SimMsg& m) {
    return std::to_string(m.kind) + " " + std::to_string(m.objectId) + " " + std::to_string(m.hexid) + " " +
           std::to_string(int(m.a)) + " " + std::to_string(int(m.b));
}

class AiCommandsTest : public TempFolderTest {
  protected:
    void SetUp() override {
        TempFolderTest::SetUp();
        gf_resetSimLink();
        gf_resetEngine();
        sim.connect();
        gf_reserveSimQueues();
    }
    void TearDown() override {
        gf_resetSimLink();
        TempFolderTest::TearDown();
    }
    void handOver(std::vector<PosEntry> poses) { gf_handOverPoses(poses); }
    Lines inbox() {
        Lines lines;
        for (const SimMsg& message : simInbox) lines.push_back(text(message));
        simInbox.clear();
        return lines;
    }
    /// A creation as far as its request; gives its send id.
    uint32_t create(uint32_t hexid, const std::string& callsign) {
        simCreate(creation(hexid, callsign));
        sim.deliver(frameMessage());
        return sim.state().lastSendId;
    }
    void show(uint32_t objectId, std::string_view atcId, double agl = 1500) {
        sim.deliver(rangeMessage(objectId, agl, 300, 0, atcId));
    }
    void add(uint32_t objectId) { sim.deliver(objectMessage(ev::objectAdded, objectId)); }

    FakeSimulator sim;
};

TEST_F(AiCommandsTest, AFrameSendsEverythingInItsOrder) {
    userObjectId = 5;
    simRemove(1001);
    simRemove(5);
    simCreate(creation(20001, "BAW1"));
    simLights(1002, true, false, true, false, true, false, true);
    simEvent(1002, ev::flapsSet, 8191);
    simCabinLight(1003, false);
    handOver({pose(0, 1), pose(5, 1), pose(6, 1.5)});
    EXPECT_TRUE(sim.takeCalls().empty());
    sim.deliver(frameMessage());
    const auto sets = sim.takeSets();
    ASSERT_EQ(sets.size(), 1u);
    EXPECT_EQ(sets[0].definition, def::aiPose);
    EXPECT_EQ(sets[0].object, 6u);
    EXPECT_EQ(sets[0].values, (std::vector<double>{1.5, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_EQ(sim.takeCalls(), (Lines{"event 1002 207 1 301", "event 1002 206 0 301", "event 1002 210 1 301",
                                      "event 1002 208 0 301", "event 1002 209 1 301", "event 1002 212 0 301",
                                      "event 1002 211 1 301", "release 1002 103", "event 1002 217 8191 301",
                                      "release 1002 103", "event 1003 211 0 301",
                                      "create Title|BAW1|50 8 1000 90 0|104", "remove 1001 105"}));
    EXPECT_TRUE(logHas("===> SimConnect call to remove ac with objectid 5"));
    sim.deliver(frameMessage());
    EXPECT_TRUE(sim.takeCalls().empty());
    EXPECT_TRUE(sim.takeSets().empty());
}

TEST_F(AiCommandsTest, ABusyLockPostponesTheFrame) {
    simRemove(1001);
    std::thread([&] {
        LockGuard guard(g_simLock);
        std::thread([&] { sim.deliver(frameMessage()); }).join();
        EXPECT_TRUE(sim.takeCalls().empty());
    }).join();
    sim.deliver(frameMessage());
    EXPECT_EQ(sim.takeCalls(), Lines{"remove 1001 105"});
}

TEST_F(AiCommandsTest, AfterAnErrorTheQueuesAreEmptiedWithoutACall) {
    g_simError = true;
    simRemove(1001);
    simCreate(creation(20001, "BAW1"));
    simEvent(1001, ev::gearSet, 1);
    handOver({pose(1001, 1)});
    sim.deliver(frameMessage());
    g_simError = false;
    sim.deliver(frameMessage());
    EXPECT_TRUE(sim.takeCalls().empty());
    EXPECT_TRUE(sim.takeSets().empty());
}

TEST_F(AiCommandsTest, FailedRequestsOfAFrame) {
    struct Case {
        const char* failing;
        const char* line;
        bool ends;
    };
    const Case cases[] = {
        {"set", "", false},
        {"event", "SimConnect TransmitClientEvent: 219 fails", false},
        {"create",
         "===> ! Simcon call to create ac in sim failed, hexid:20001, liv: 'Title', callsign: BAW1)", true},
        {"remove", " !SimConnect call to remove AI ac from sim failed, id 1001?", true},
        {"packetid", "===> GetLastSentPacketID", false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.failing);
        gf_resetRunState();
        sim.state().failing = c.failing;
        handOver({pose(1001, 1)});
        simEvent(1001, ev::gearSet, 1);
        simCreate(creation(20001, "BAW1"));
        simRemove(1001);
        sim.deliver(frameMessage());
        EXPECT_TRUE(logHas(c.line));
        EXPECT_EQ(g_simError, c.ends);
        EXPECT_EQ(g_exitReason == ExitReason::simConnectError, c.ends);
    }
}

TEST_F(AiCommandsTest, PosesOfAnOlderTickNeverStandBesideNewerOnes) {
    std::vector<PosEntry> writeSide;
    for (double tick : {1.0, 2.0, 3.0}) {
        writeSide.push_back(pose(1001, tick));
        gf_handOverPoses(writeSide);
        EXPECT_TRUE(writeSide.empty());
    }
    sim.deliver(frameMessage());
    auto sets = sim.takeSets();
    ASSERT_EQ(sets.size(), 1u);
    EXPECT_EQ(sets[0].values[0], 3);
    // While the lock is busy at an ordinary frame rate the tick's poses are thrown away.
    gf_handOverPoses(writeSide = {pose(1001, 4)});
    std::thread([&] {
        LockGuard guard(g_simLock);
        std::thread([&] { gf_handOverPoses(writeSide = {pose(1001, 5)}); }).join();
        EXPECT_TRUE(writeSide.empty());
    }).join();
    sim.deliver(frameMessage());
    sets = sim.takeSets();
    ASSERT_EQ(sets.size(), 1u);
    EXPECT_EQ(sets[0].values[0], 4);
    // Above it they are worth waiting for.
    frameRate = 60;
    std::thread waiting;
    std::atomic<bool> done{false};
    {
        LockGuard guard(g_simLock);
        waiting = std::thread([&] {
            gf_handOverPoses(writeSide = {pose(1001, 6)});
            done = true;
        });
        EXPECT_FALSE(
            gf_waitUntil(gf_steadyNow() + std::chrono::milliseconds(50), [&] { return done.load(); }));
    }
    waiting.join();
    sim.deliver(frameMessage());
    sets = sim.takeSets();
    ASSERT_EQ(sets.size(), 1u);
    EXPECT_EQ(sets[0].values[0], 6);
}

TEST_F(AiCommandsTest, PosesAreSkippedWhileOutputWaitsOrThePauseDropsThem) {
    sim.state().backlogged = true;
    handOver({pose(1001, 1)});
    sim.deliver(frameMessage());
    sim.state().backlogged = false;
    sim.deliver(frameMessage());
    EXPECT_TRUE(sim.takeSets().empty());
    handOver({pose(1001, 2)});
    gf_dropPoses();
    sim.deliver(frameMessage());
    EXPECT_TRUE(sim.takeSets().empty());
}

TEST_F(AiCommandsTest, ReverseGoesOutAtOnce) {
    simReverse(1001, false, true);
    simReverse(1001, true, false);
    simReverse(1001, true, true);
    const auto sets = sim.takeSets();
    ASSERT_EQ(sets.size(), 3u);
    EXPECT_EQ(sets[0].definition, def::throttleData);
    EXPECT_EQ(sets[0].values, (std::vector<double>{0, 0, 0}));
    EXPECT_EQ(sets[1].values, (std::vector<double>{100, 100, 100}));
    EXPECT_EQ(sets[2].values, (std::vector<double>{100, -100, -100}));
}

TEST_F(AiCommandsTest, AnObjectIsFoundByItsTailNumberAndFrozen) {
    create(20001, "BAW1");
    create(0, "DLH2*");  // the number that follows 9999
    sim.takeCalls();
    add(1001);
    add(1002);
    show(1002, "DLH2*");
    show(1001, "BAW1");
    EXPECT_EQ(inbox(), (Lines{"1 1002 0 0 0", "0 1001 20001 0 1500"}));
    EXPECT_EQ(sim.takeCalls(), (Lines{"release 1002 103", "release 1001 103"}));
    sim.deliver(frameMessage());
    EXPECT_EQ(sim.takeCalls(),
              (Lines{"event 1002 214 1 301", "event 1002 215 1 301", "event 1002 216 1 301",
                     "event 1001 214 1 301", "event 1001 215 1 301", "event 1001 216 1 301"}));
    EXPECT_TRUE(pendingCreates.empty());
}

TEST_F(AiCommandsTest, TwoRequestsWithOneCallsignAreServedInOrder) {
    create(20001, "BAW1");
    create(20002, "BAW1");
    add(1001);
    add(1002);
    show(1001, "BAW1");
    show(1002, "BAW1");
    EXPECT_EQ(inbox(), (Lines{"0 1001 20001 0 1500", "0 1002 20002 0 1500"}));
}

TEST_F(AiCommandsTest, ATailNumberComesBackAsLongAsItWentOut) {
    create(20001, "LONGCALLSIGN1");
    add(1001);
    show(1001, "LONGCALLSIG");
    EXPECT_EQ(inbox(), Lines{"0 1001 20001 0 1500"});
}

TEST_F(AiCommandsTest, ObjectsOfOthersAreLeftAlone) {
    create(20001, "BAW1");
    sim.takeCalls();
    add(1001);
    add(1002);
    add(1003);
    sim.deliver(objectMessage(ev::objectAdded, 1004, 4));  // a boat
    add(2);                                                // the user's
    show(1001, "ASXGSA");
    show(1002, "");
    EXPECT_EQ(newObjects, std::vector<uint32_t>{1003});
    sim.deliver(objectMessage(ev::objectRemoved, 1003));
    EXPECT_TRUE(newObjects.empty());
    sim.deliver(objectMessage(ev::objectRemoved, 1004, 4));
    EXPECT_EQ(inbox(), Lines{"2 1003 0 0 0"});
    EXPECT_TRUE(
        logHas("just spawned, but not by Skylantern, oid: 1001, callsign 'ASXGSA', altaboveGnd:1500 ft, "
               "onground:0, gnd_alt:300 ft"));
    EXPECT_TRUE(sim.takeCalls().empty());
    EXPECT_EQ(pendingCreates.size(), 1u);
}

TEST_F(AiCommandsTest, HeightsAreReportedWhereTheSimulatorKnowsThem) {
    struct Case {
        uint32_t object;
        double agl;
        int64_t onGround;
        const char* atcId;
        const char* message;
    };
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const Case cases[] = {
        {1001, 2500, 0, "BAW1", "3 1001 0 300 2500"},
        {1001, 2500.1, 0, "BAW1", ""},
        {1001, 12, 1, "BAW1_", "3 1001 1 300 12"},
        {1001, 12, 1, "BAW1*", ""},
        {1001, 12, 1, "", ""},
        {2, 12, 1, "BAW1", ""},
        {1001, nan, 0, "BAW1", ""},
    };
    for (const Case& c : cases) {
        sim.deliver(rangeMessage(c.object, c.agl, 300, c.onGround, c.atcId));
        EXPECT_EQ(inbox(), *c.message ? Lines{c.message} : Lines{}) << c.atcId << " " << c.agl;
    }
    // Nobody in range: one message without values.
    sim.deliver(SimMessage(9).u32(101).u32(1001).u32(404).u32(0).u32(0).u32(0).u32(0));
    EXPECT_TRUE(inbox().empty());
    EXPECT_FALSE(logHas("not whole"));
}

TEST_F(AiCommandsTest, RefusalsAreFoundByTheirRequest) {
    const uint32_t first = create(20001, "BAW1");
    const uint32_t second = create(20002, "BAW2");
    const uint32_t third = create(20003, "BAW3");
    sim.deliver(exceptionMessage(22, second));
    sim.deliver(exceptionMessage(22, second));
    sim.deliver(exceptionMessage(22, 9999));
    sim.deliver(exceptionMessage(11, first));
    sim.deliver(exceptionMessage(22, first));  // follows an 11
    EXPECT_EQ(inbox(), (Lines{"6 0 20002 0 0", "7 0 20001 0 0"}));
    ASSERT_EQ(pendingCreates.size(), 1u);
    EXPECT_EQ(pendingCreates[0].packetId, third);
}

TEST_F(AiCommandsTest, ACreationWithoutAnswerIsGivenUpAndItsLateObjectRemoved) {
    create(20001, "BAW1");
    engineTick = 6000;
    sim.deliver(frameMessage());
    EXPECT_TRUE(inbox().empty());
    engineTick = 6001;
    sim.deliver(frameMessage());
    sim.deliver(frameMessage());
    EXPECT_EQ(inbox(), Lines{"7 0 20001 0 0"});
    // The same aircraft is created anew: the first object is its, the second one is the late one.
    create(20001, "BAW1");
    sim.takeCalls();
    add(1001);
    add(1002);
    show(1001, "BAW1");
    show(1002, "BAW1");
    EXPECT_EQ(inbox(), Lines{"0 1001 20001 0 1500"});
    sim.deliver(frameMessage());
    const auto calls = sim.takeCalls();
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "remove 1002 105"), 1);
    // Nothing is looked out for for ever.
    const uint32_t late = create(20002, "BAW2");
    create(20003, "BAW3");
    engineTick = 6001 + 6001;
    sim.deliver(frameMessage());
    EXPECT_EQ(inbox().size(), 2u);
    sim.deliver(exceptionMessage(22, late));
    EXPECT_TRUE(inbox().empty());
    engineTick = 6001 + 60001;
    sim.deliver(frameMessage());
    EXPECT_TRUE(pendingCreates.empty());
}

}  // namespace

}  // namespace skl::test
