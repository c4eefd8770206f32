// The loop that starts one run after the other, with real threads.
#include "core/supervisor.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace skl {
namespace {

TEST(Supervisor, ThreadsOfRunsFollowEachOtherUntilTheEnd) {
    std::atomic<int> runs{0}, alive{0}, idles{0};
    gf_postStartRun();
    gf_superviseRuns(
        [&] {
            EXPECT_EQ(++alive, 1) << "the run before has been joined";
            // The last thing that a run does is to ask for what comes next.
            if (++runs < 3)
                gf_postStartRun();
            else
                gf_postEndProcess();
            --alive;
        },
        [&] { ++idles; });
    EXPECT_EQ(runs, 3);
    EXPECT_EQ(alive, 0);
    EXPECT_GE(idles, 3);
}

TEST(Supervisor, ThreadsNoRunStartsAfterTheEndWasAskedFor) {
    gf_postStartRun();
    gf_postEndProcess();
    std::atomic<bool> ran{false};
    gf_superviseRuns([&] { ran = true; }, {});
    EXPECT_FALSE(ran);
}

TEST(Supervisor, ThreadsTheEndOfARunIsWaitedForFromWithin) {
    using std::chrono::milliseconds;
    std::atomic<bool> mayEnd{false}, ended{false};
    int pumps = 0;
    gf_postStartRun();
    gf_superviseRuns(
        [&] {
            while (!mayEnd) std::this_thread::yield();
            ended = true;
            gf_postEndProcess();
        },
        {},
        [&](milliseconds) {
            if (++pumps != 2) return;  // the first pump comes before the run
            EXPECT_FALSE(gf_waitForRunEnd(milliseconds(1)));
            mayEnd = true;
            EXPECT_TRUE(gf_waitForRunEnd(milliseconds(10000)));
            EXPECT_TRUE(ended);
        });
    EXPECT_EQ(pumps, 2);
}

}  // namespace
}  // namespace skl
