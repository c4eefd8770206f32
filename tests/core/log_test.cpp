// The log file and the message line.
#include "core/log.h"

#include <fmt/format.h>

#include <new>
#include <stdexcept>
#include <thread>

#include "core/messages.h"
#include "core/run_state.h"
#include "panel/panel_state.h"
#include "tests/support/temp_folder.h"

namespace skl {
namespace {

using test::logCount;
using test::logHas;
using test::logLines;
using test::readFile;
using Lines = std::vector<std::string>;

class Log : public test::TempFolderTest {};

TEST_F(Log, ThreeStartsAreKeptAndAFourthDropsTheFirst) {
    for (const char* start : {"first", "second", "third", "fourth"}) {
        gf_startLog("Run.log.txt");
        gf_log(start);
    }
    EXPECT_NE(readFile("Run.log.txt").find("fourth"), std::string::npos);
    EXPECT_NE(readFile("Run0.log.txt").find("third"), std::string::npos);
    EXPECT_NE(readFile("Run00.log.txt").find("second"), std::string::npos);
    EXPECT_FALSE(std::filesystem::exists("Run000.log.txt"));
}

TEST_F(Log, PrefixesAndStop) {
    const Lines banner = logLines();
    ASSERT_EQ(banner.size(), 1u);
    EXPECT_TRUE(banner[0].ends_with("(utc) Skylantern version 11.0.3 for MSFS 2020/2024")) << banner[0];
    gf_log("plain");
    gf_logError("bad");
    gf_logIndented("detail");
    gf_logRunning("running");
    gf_requestStop(ExitReason::simConnectError, 9);
    gf_logRunning("not shown");
    gf_log("still plain");
    const Lines all = logLines();
    EXPECT_EQ(Lines(all.begin() + 1, all.end()),
              (Lines{"plain", "===> bad", "          detail", "running", "still plain"}));
}

TEST_F(Log, ClosedLogIsSilentAndABadPathIsAnError) {
    gf_closeLog();
    gf_log("nowhere");
    EXPECT_FALSE(logHas("nowhere"));
    try {
        gf_startLog("missing/Log.txt");
        FAIL() << "no folder, but no error";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "Failed to write file missing/Log.txt");
    }
    gf_log("nowhere either");
}

TEST_F(Log, ThreadsDoNotMixTheirLines) {
    std::vector<std::thread> threads;
    for (char c : {'a', 'b', 'c', 'd'})
        threads.emplace_back([c] {
            for (int i = 0; i < 200; ++i) gf_log(std::string(300, c));
        });
    for (auto& thread : threads) thread.join();
    const Lines all = logLines();
    ASSERT_EQ(all.size(), 801u);
    for (size_t i = 1; i < all.size(); ++i) ASSERT_EQ(all[i], std::string(300, all[i].at(0)));
}

class Messages : public test::TempFolderTest {
  protected:
    void SetUp() override {
        TempFolderTest::SetUp();
        gf_resetMessages();
    }
    static std::string status() { return gf_panelText(&PanelState::statusText); }
};

TEST_F(Messages, AnErrorOutranksMessagesUntilTheReset) {
    gf_showMessage("one", true);
    gf_takeInvalidated();
    gf_showError("broken");
    EXPECT_EQ(status(), "");
    EXPECT_EQ(g_panel.messageStamp, 0);
    EXPECT_EQ(gf_panelText(&PanelState::errorText), "broken");
    EXPECT_EQ(gf_takeInvalidated(), 1u << static_cast<unsigned>(Band::message));
    gf_showMessage("two", true);
    gf_clearMessage();
    EXPECT_EQ(status(), "");
    EXPECT_TRUE(logHas("one"));
    EXPECT_EQ(logCount("Error broken"), 1);
    EXPECT_FALSE(logHas("two"));
    gf_resetMessages();
    gf_showMessage("three", false);
    EXPECT_EQ(status(), "three");
    EXPECT_FALSE(logHas("three"));
}

TEST_F(Messages, AfterAStopTheyAreShownButNotLogged) {
    gf_requestStop(ExitReason::newFlight, 0);
    gf_showMessage("closing", true);
    EXPECT_EQ(status(), "closing");
    EXPECT_FALSE(logHas("closing"));
}

TEST_F(Messages, AMessageGoesAfter25Heartbeats) {
    gf_showMessage("early", false);
    EXPECT_EQ(g_panel.messageStamp, 1) << "a stamp of 0 would mean that none is up";
    g_messageAge = 100;
    gf_showMessage("late", false);
    for (int beat = 1; beat <= 24; ++beat) gf_ageMessage();
    EXPECT_EQ(status(), "late");
    gf_ageMessage();
    EXPECT_EQ(status(), "");
    EXPECT_EQ(g_panel.messageStamp, 0);
}

TEST(CaughtException, EachKindHasItsText) {
    const auto textOf = [](auto exception) {
        try {
            throw exception;
        } catch (...) {
            return gf_currentExceptionText();
        }
    };
    EXPECT_EQ(textOf(std::runtime_error("plain")), "plain");
    EXPECT_EQ(textOf(fmt::format_error("hole")), "std::format error: hole");
    EXPECT_EQ(textOf(std::bad_alloc()), "std::bad_alloc");
    EXPECT_EQ(textOf(5), "Unknown exception");
}

}  // namespace
}  // namespace skl
