// How aircraft go, in every state, and what is told about objects: the callsign question, the object list.
#include <fmt/format.h>

#include "core/folders.h"
#include "core/parameters.h"
#include "core/run_state.h"
#include "engine/engine.h"
#include "engine/engine_state.h"
#include "engine/live_table.h"
#include "engine/spawning.h"
#include "panel/panel_state.h"
#include "panel/requests.h"
#include "tests/support/engine_world.h"

namespace skl {
namespace {

using test::anyHexid;
using test::EngineTest;
using Removal = EngineTest;
using State = SimObjectState;

TEST_F(Removal, ByState) {
    buffered(20001, "A");
    buffered(20002, "B").simState = State::adding2sim;  // on the stack
    buffered(20003, "C").simState = State::adding2sim;  // in the queue, and so is one with the same callsign
    buffered(20004, "C").simState = State::adding2sim;
    buffered(20005, "E").simState = State::adding2sim;  // asked for
    active(20006, "F", 1006);
    active(20007, "G", 1007).simState = State::liveryrespawn;
    active(20008, "H", 0);
    addingStack = {20002};
    creationQueueLive = {{{}, "C", "t", 20004}, {{}, "C", "t", 20003}};
    for (int twice = 0; twice < 2; ++twice)
        for (uint32_t id : {20001, 20002, 20003, 20005, 20006, 20007, 20008})
            removeAircraftFromSim(record(id));
    EXPECT_TRUE(record(20001).eraseNow);
    EXPECT_TRUE(record(20002).eraseFromQueue);
    EXPECT_TRUE(record(20003).eraseFromQueue);
    EXPECT_TRUE(addingStack.empty());
    ASSERT_EQ(creationQueueLive.size(), 1u);
    EXPECT_EQ(creationQueueLive.front().hexid, 20004u);
    EXPECT_TRUE(record(20005).removeWhenCreated);
    EXPECT_EQ(record(20006).simState, State::removingfromsim);
    EXPECT_EQ(record(20007).simState, State::removingfromsim);
    EXPECT_EQ(removalQueue, (std::deque<uint32_t>{1006}));
    EXPECT_TRUE(record(20008).eraseNow);
    EXPECT_EQ(test::logCount("removeAircraftFromSim removing act H"), 1);
    EXPECT_TRUE(test::logHas(", with objectid=0 ?"));
}

// Whatever an aircraft is doing when its removal is asked for, its object leaves once and its record with it.
TEST_F(Removal, LeavesNoObjectAndNoRecordBehind) {
    for (int askedAt = 0; askedAt < 600; askedAt += 7) {
        gf_resetEngine();
        test::QueueSimulator simulator;
        buffered(anyHexid, "BAW12");
        bool respawned = false;
        simulator.run(askedAt, [&](int) {
            if (!exists(anyHexid) || respawned || record(anyHexid).simState != State::active) return;
            respawned = true;
            liveryRespawn(record(anyHexid));
        });
        if (exists(anyHexid)) removeAircraftFromSim(record(anyHexid));
        simulator.run(400);
        EXPECT_FALSE(exists(anyHexid)) << askedAt;
        EXPECT_TRUE(simulator.objects.empty()) << askedAt;
        EXPECT_EQ(simulator.removals.size(), static_cast<size_t>(simulator.created)) << askedAt;
        EXPECT_TRUE(pendingObjects.empty() && addingStack.empty() && creationQueueLive.empty()) << askedAt;
    }
}

TEST_F(Removal, ALostFeedClearsTheSky) {
    test::QueueSimulator simulator;
    buffered(20001, "A").stream().front().time = 100000;
    active(20002, "B", 900);
    buffered(20003, "BAW3");
    simulator.objects[900] = {20002, "B", 0, true};
    simulator.run(20);
    ASSERT_EQ(record(20003).simState, State::adding2sim);
    trafficInbox.push_back(test::firstReport());
    gf_clearSky();
    EXPECT_FALSE(exists(20001));
    EXPECT_TRUE(trafficInbox.empty());
    simulator.run(400);
    EXPECT_TRUE(liveAcs.empty());
    EXPECT_TRUE(simulator.objects.empty());
}

TEST_F(Removal, TheCallsignQuestion) {
    const auto ask = [](const char* callsign) {
        CALLSIGN_2_OBJECTID.set(callsign);
        g_callsignQuery = true;
        gf_answerCallsignQuery();
    };
    const auto answer = [] { return gf_panelText(&PanelState::objectIdText); };
    active(anyHexid, "BAW12", 1001);
    buffered(20002, "KLM4");
    ask("KLM4");
    EXPECT_EQ(answer(), "");
    EXPECT_EQ(gf_panelText(&PanelState::statusText), "callsign 'KLM4' is unknown");
    ask("BAW12");
    EXPECT_EQ(answer(), "= 1001");
    EXPECT_FALSE(g_callsignQuery);
    // A new object is on its way: the question waits for it.
    liveryRespawn(record(anyHexid));
    EXPECT_EQ(answer(), "");
    gf_answerCallsignQuery();
    EXPECT_TRUE(g_callsignQuery);
    lf_objectRemoved(1001);
    record(anyHexid).simState = State::active;
    lf_setObjectId(record(anyHexid), 1002);
    gf_answerCallsignQuery();
    EXPECT_EQ(answer(), "= 1002");
    removeAircraftFromSim(record(anyHexid));
    EXPECT_EQ(answer(), "");
    EXPECT_EQ(CALLSIGN_2_OBJECTID.get(), "");
}

TEST_F(Removal, TheObjectListIsSortedAndReplaced) {
    active(20001, "KLM4", 1001).onGround = true;
    active(20002, "BAW12", 1002);
    active(20003, "AFR8", 1003);
    buffered(20004, "DLH5");
    lf_writeObjectList();
    EXPECT_EQ(
        test::readFile("Callsign2ObjectId.txt"),
        "Air AFR8      BAW A320: 1003 \nAir BAW12     BAW A320: 1002 \nGnd KLM4      BAW A320: 1001 \n");
    lf_clearLive();
    lf_writeObjectList();
    EXPECT_EQ(test::readFile("Callsign2ObjectId.txt"), "");
    gf_deleteObjectList();
    EXPECT_FALSE(fs::exists("Callsign2ObjectId.txt"));
}

}  // namespace
}  // namespace skl
