// Fetching from the data site over real sockets, with a clock that the test moves.
#include "distribution/site.h"

#include <gtest/gtest.h>

#include "core/folders.h"
#include "core/run_state.h"
#include "tests/support/hasty_clock.h"
#include "tests/support/site_server.h"
#include "tests/support/temp_folder.h"

namespace skl::test {

namespace {

using site::FaultKind;

/// Ten times as fast as it should be. One look can be the last before a stop.
class FastClock : public HastyClock {
  public:
    Nanos steadyNow() override {
        if (--looksToStop == 0) gf_requestStop(ExitReason::newFlight, 0);
        return HastyClock::steadyNow() * 10;
    }
    int looksToStop = 0;
};

class SiteTest : public TempFolderTest {
  protected:
    void SetUp() override {
        TempFolderTest::SetUp();
        unsetenv("http_proxy");
        for (int i = 0; i < 40'000; ++i) body += static_cast<char>(i * 7);
        writeFile("site/stock/EHAM.xml", body);
        writeFile(target, "old");
        gf_setSiteBase("http://site");
    }
    bool fetch(site::Fault fault) {
        SiteServer server("site", {std::move(fault)});
        const Nanos start = clock.steadyNow();
        const bool fetched = gf_download(server.url("/stock/EHAM.xml"), target, true);
        seconds = std::chrono::duration<double>(clock.steadyNow() - start).count();
        requests = server.end()["requests"];
        return fetched;
    }

    std::string body;
    fs::path target = "got/EHAM.xml";
    int requests = 0;
    double seconds = 0;  ///< by the clock
    FastClock clock;
};

TEST_F(SiteTest, ThreadsAWholeBodyTakesThePlaceOfTheOldFile) {
    EXPECT_TRUE(fetch({}));
    EXPECT_TRUE(readFile(target) == body);
    writeFile(target, "old");
    EXPECT_TRUE(fetch({"/", FaultKind::kSlow, 25'000}));
    EXPECT_TRUE(readFile(target) == body);
    EXPECT_GT(seconds, 15) << "slow is not silent";
}

TEST_F(SiteTest, ThreadsAFailureLeavesTheOldFile) {
    const auto fail = [this](FaultKind kind, std::optional<double> bytes) {
        EXPECT_FALSE(fetch({"/stock", kind, bytes}));
        EXPECT_EQ(readFile(target), "old");
        EXPECT_EQ(gf_countEntries("got"), 1);
        EXPECT_EQ(requests, 1);
        return seconds;
    };
    EXPECT_LT(fail(FaultKind::kMissing, {}), 10);
    EXPECT_LT(fail(FaultKind::kCut, 0), 10);
    EXPECT_LT(fail(FaultKind::kCut, 39'999), 10);
    for (const auto& bytes : {std::optional<double>(), std::optional<double>(20'000)}) {
        const double waited = fail(FaultKind::kHang, bytes);
        EXPECT_TRUE(waited >= 10 && waited < 14) << waited;
    }
    clock.looksToStop = 5;
    EXPECT_LT(fail(FaultKind::kHang, {}), 5);
}

TEST_F(SiteTest, ThreadsNothingIsAskedForWhatCannotBeKept) {
    target = "nowhere/EHAM.xml";
    EXPECT_FALSE(fetch({}));
    EXPECT_TRUE(logHas("Could not open output file: nowhere/EHAM.xml"));
    EXPECT_EQ(requests, 0);
    target = "got/EHAM.xml";
    gf_setSiteBase("");
    EXPECT_FALSE(fetch({}) || gf_siteKnown());
    EXPECT_EQ(requests, 0);
    EXPECT_EQ(logCount("No data site"), 1);
}

TEST_F(SiteTest, AddressesBySimulator) {
    EXPECT_EQ(gf_siteUrl(false), "http://site/MSFS/");
    sim2020 = false;
    EXPECT_EQ(gf_siteUrl(true), "http://site/MSFS/");
    EXPECT_EQ(gf_siteUrl(false), "http://site/MSFS2024/");
    sim2020 = true;
}

}  // namespace

}  // namespace skl::test
