// The table of live aircraft against a plain walk over it.
#include "engine/live_table.h"

#include <fmt/format.h>

#include <map>

#include "core/random.h"
#include "engine/engine.h"
#include "engine/engine_state.h"
#include "tests/support/engine_world.h"

namespace skl {
namespace {

using test::EngineTest;
using LiveTable = EngineTest;

/// What a table without an index would find.
template <class Test>
const LiveAc* scan(const Test& test) {
    for (const LiveAc& record : liveAcs)
        if (test(record)) return &record;
    return nullptr;
}

// Records come, go, change their callsign and their object in any order: the index has to agree with a walk.
TEST_F(LiveTable, FindsWhatAWalkWouldFind) {
    std::mt19937 random{7};
    const auto below = [&](uint32_t n) { return random() % n; };
    for (int step = 0; step < 3000; ++step) {
        const uint32_t hexid = 20000 + below(40);
        const std::string callsign = fmt::format("C{}", below(15));
        LiveAc* record = lf_findLive(hexid);
        switch (below(6)) {
            case 0:
            case 1:
                if (!record) {
                    LiveAc added;
                    added.hexid = hexid;
                    added.callsign = callsign;
                    lf_addLive(added);
                }
                break;
            case 2:
                if (record) lf_eraseLive(*record);
                break;
            case 3:
                if (record) lf_setCallsign(*record, callsign);
                break;
            case 4:
                if (record) lf_setObjectId(*record, below(3) == 0 ? 0 : 100000 + hexid);
                break;
            default:
                for (LiveAc& each : liveAcs) each.eraseNow = below(8) == 0;
                lf_sweepLive();
        }
        for (uint32_t id = 20000; id < 20040; ++id) {
            ASSERT_EQ(lf_findLive(id), scan([&](const LiveAc& r) { return r.hexid == id; })) << step;
            ASSERT_EQ(lf_findLiveByObject(100000 + id),
                      scan([&](const LiveAc& r) { return r.objectId == 100000 + id; }))
                << step;
        }
        for (int c = 0; c < 15; ++c) {
            const std::string name = fmt::format("C{}", c);
            ASSERT_EQ(lf_findLiveByCallsign(name), scan([&](const LiveAc& r) { return r.callsign == name; }))
                << step;
        }
    }
}

TEST_F(LiveTable, SweepKeepsOrderAndForgetsWhatOthersHold) {
    for (uint32_t id = 1; id <= 6; ++id) buffered(20000 + id, fmt::format("C{}", id));
    record(20002).eraseNow = record(20005).eraseFromQueue = true;
    record(20002).simState = SimObjectState::adding2sim;
    addingStack = {20001, 20002};
    newAcList = {20005, 20006};
    lf_sweepLive();
    std::vector<uint32_t> left;
    for (const LiveAc& each : liveAcs) left.push_back(each.hexid);
    EXPECT_EQ(left, (std::vector<uint32_t>{20001, 20003, 20004, 20006}));
    EXPECT_EQ(addingStack, (std::vector<uint32_t>{20001}));
    EXPECT_EQ(newAcList, (std::deque<uint32_t>{20006}));
}

TEST_F(LiveTable, TwoTypesMayShareACallsign) {
    buffered(20001, "DLH5");
    buffered(20002, "DLH5").model = "B738";
    EXPECT_TRUE(lf_liveFlightExists("DLH5", "B738"));
    EXPECT_TRUE(lf_liveFlightExists("DLH5", "A320"));
    EXPECT_FALSE(lf_liveFlightExists("DLH5", "B744"));
    lf_eraseLive(record(20001));
    EXPECT_EQ(lf_findLiveByCallsign("DLH5"), &record(20002));
    EXPECT_FALSE(lf_liveFlightExists("DLH5", "A320"));
}

}  // namespace
}  // namespace skl
