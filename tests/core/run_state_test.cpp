#include "core/run_state.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace skl {
namespace {

class RunState : public ::testing::Test {
  protected:
    void SetUp() override { gf_resetRunState(); }
};

TEST_F(RunState, FirstStopDecidesReasonAndDelay) {
    gf_requestStop(ExitReason::readerError, 15);
    gf_requestStop(ExitReason::simConnectError, 9);
    EXPECT_TRUE(g_stopRequested);
    EXPECT_EQ(g_exitReason, ExitReason::readerError);
    EXPECT_EQ(g_restartSeconds, 15);
}

TEST_F(RunState, CloseButtonKeepsAnEarlierReason) {
    gf_requestStop(ExitReason::newFlight, 45);
    gf_requestClose();
    EXPECT_EQ(g_exitReason, ExitReason::newFlight);
    gf_resetRunState();
    gf_requestClose();
    EXPECT_EQ(g_exitReason, ExitReason::userClosedSim);
    EXPECT_TRUE(g_stopRequested && g_userClosing);
    gf_requestStop(ExitReason::newSettings, 3);
    EXPECT_EQ(g_exitReason, ExitReason::userClosedSim);
}

TEST_F(RunState, NewSettingsReplaceAnErrorOnly) {
    gf_requestStop(ExitReason::readerError, 15);
    gf_requestStop(ExitReason::newSettings, 3);
    EXPECT_EQ(g_exitReason, ExitReason::readerError);
    gf_resetRunState();
    gf_requestStop(ExitReason::systemError, 0);
    gf_requestStop(ExitReason::simConnectError, 9);
    EXPECT_EQ(g_exitReason, ExitReason::systemError);
    gf_requestStop(ExitReason::newSettings, 3);
    EXPECT_EQ(g_exitReason, ExitReason::newSettings);
    EXPECT_EQ(g_restartSeconds, 3);
}

TEST_F(RunState, ResetLosesNoCloseOfTheUser) {
    gf_requestClose();
    EXPECT_FALSE(gf_resetRunState(true));
    EXPECT_TRUE(g_userClosing);
    EXPECT_TRUE(gf_resetRunState());
    EXPECT_TRUE(gf_resetRunState(true));
}

TEST_F(RunState, ThreadsThatStopAtOnceAgreeOnOne) {
    for (int round = 0; round < 200; ++round) {
        gf_resetRunState();
        std::vector<std::thread> threads;
        for (int i = 1; i <= 4; ++i)
            threads.emplace_back([i] { gf_requestStop(static_cast<ExitReason>(i + 1), i); });
        while (!g_stopRequested) std::this_thread::yield();
        // Whoever was first: once the flag is seen, reason and delay belong together and stay.
        const int reason = static_cast<int>(g_exitReason.load());
        EXPECT_EQ(reason, g_restartSeconds + 1);
        for (auto& thread : threads) thread.join();
        EXPECT_EQ(reason, static_cast<int>(g_exitReason.load()));
    }
}

TEST(WeekSlots, HalfHourTurnsThirtySecondsEarly) {
    struct Case {
        int64_t seconds;
        WeekSlot slot;
    };
    constexpr int64_t monday = 4 * 86400;  // January 5, 1970
    for (const auto& [seconds, slot] : std::vector<Case>{
             {0, {4, 0}},  // a Thursday
             {monday, {1, 0}},
             {monday - 1, {7, 47}},  // the last second of Sunday
             {monday + 29 * 60 + 29, {1, 0}},
             {monday + 29 * 60 + 30, {1, 1}},
             {monday + 30 * 60, {1, 1}},
             {monday + 23 * 3600 + 59 * 60 + 59, {1, 47}},
             {1764000000, {1, 32}},  // Mon Nov 24 16:00:00 2025
         })
        EXPECT_EQ(gf_weekSlotOf(seconds), slot) << seconds;
    gf_storeNow({7, 47});
    EXPECT_EQ(gf_weekSlotNow(), (WeekSlot{7, 47}));
}

}  // namespace
}  // namespace skl
