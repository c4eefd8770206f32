// The scan over real folder trees: forms of files, links, reports, threads, stops.
#include "liveries/livery_scan.h"

#include <fmt/format.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <set>

#include "core/clock.h"
#include "core/folders.h"
#include "core/run_state.h"
#include "core/scan_pool.h"
#include "liveries/cfg_file.h"
#include "liveries/reference_db.h"
#include "liveries/scan_reports.h"
#include "panel/panel_state.h"
#include "tests/support/temp_folder.h"

namespace skl {
namespace {

using Pool = ScanPool<CfgFile, CfgYield>;

using test::readFile;
using test::writeFile;

std::string section(int number, const std::string& title, const std::string& airline) {
    return fmt::format("[fltsim.{}]\ntitle={}\nicao_airline={}\n", number, title, airline);
}

std::string cfg(const std::string& type, const std::string& sections) {
    return "[GENERAL]\nicao_type_designator=" + type + "\n" + sections;
}

std::string replaceAll(std::string text, std::string_view from, std::string_view to) {
    for (size_t at = 0; (at = text.find(from, at)) != text.npos; at += to.size())
        text.replace(at, from.size(), to);
    return text;
}

std::string utf16(const std::string& ascii, bool bigEndian) {
    std::string bytes = bigEndian ? "\xFE\xFF" : "\xFF\xFE";
    for (char c : ascii) bytes += bigEndian ? std::string{'\0', c} : std::string{c, '\0'};
    return bytes;
}

std::vector<std::string> found() {
    std::vector<std::string> lines;
    for (const auto& livery : scannedLiveries)
        lines.push_back(
            fmt::format("{}|{}|{}|{}", livery.airline, livery.model, livery.title, livery.priority));
    return lines;
}

using Lines = std::vector<std::string>;

class LiveryScan : public test::TempFolderTest {
  protected:
    void SetUp() override {
        TempFolderTest::SetUp();
        gf_clearDbase();
        icaoAirlines = {"KLM", "DLH"};
        aircraftTypes = {"B738", "B744"};
        heavyTypes = {"B744"};
        workerLimit = 2;
        gf_beginLiveryScan();
    }
    void TearDown() override {
        gf_beginLiveryScan();
        gf_clearDbase();
        gf_setClock(nullptr);
        TempFolderTest::TearDown();
    }
};

TEST_F(LiveryScan, FormsOfAFile) {
    const std::string plain = cfg("B738", section(0, "A b", "KLM"));
    const std::pair<const char*, std::string> forms[] = {
        {"plain", plain},
        {"no end of line", plain.substr(0, plain.size() - 1)},
        {"CR LF", replaceAll(plain, "\n", "\r\n")},
        {"mark", "\xEF\xBB\xBF" + plain},
        {"UTF-16", utf16(plain, false)},
        {"UTF-16 big endian", utf16(replaceAll(plain, "\n", "\r\n"), true)},
        {"quotes and blanks", replaceAll(replaceAll(plain, "=", " = \""), "\n", "\" ; x\n")},
        {"upper-case header", replaceAll(plain, "fltsim.0", "FLTSIM.0")},
        {"sections first", section(7, "A b", "KLM") + "[general]\nicao_type_designator=b738\n"},
        {"other sections", plain + "[VARIATION]\ntitle=B\n[fltsim.1]\n// title=C\n"},
    };
    for (auto [what, text] : forms) {
        if (std::string_view(what) == "quotes and blanks") {
            // The headers of this form have grown a quote.
            text = replaceAll(replaceAll(text, "]\" ; x", "]"), "\n\" ; x", "\n");
        }
        gf_beginLiveryScan();
        writeFile("tree/p/AirCraft.CFG", text);
        gf_scanLiveryFolder(2, "tree");
        EXPECT_EQ(found(), Lines{"KLM|B738|A b|2"}) << what;
    }
    EXPECT_EQ(test::slashed(scanReports.invalidCfgFiles), Lines{});
}

TEST_F(LiveryScan, Latin1TitleKeepsItsBytes) {
    writeFile("tree/aircraft.cfg", cfg("B738", section(0, "Z\xFCrich", "KLM")));
    gf_scanLiveryFolder(1, "tree");
    EXPECT_EQ(found(), Lines{"KLM|B738|Z\xFCrich|1"});
}

TEST_F(LiveryScan, FilesThatGiveNothing) {
    writeFile("tree/empty/aircraft.cfg", "");
    writeFile("tree/byte/aircraft.cfg", "x");
    writeFile("tree/none/aircraft.cfg", cfg("B738", ""));
    writeFile("tree/high/aircraft.cfg", cfg("B738", section(10001, "A", "KLM")));
    writeFile("tree/huge/aircraft.cfg", cfg("B738", "[fltsim.99999999999]\ntitle=A\n"));
    writeFile("tree/broken/aircraft.cfg", std::string("\xFF\xFE\x00\xD8\x0A\x00", 6));
    writeFile("tree/other/aircraft.txt", cfg("B738", section(0, "A", "KLM")));
    fs::create_directories("tree/folder/aircraft.cfg");
    gf_scanLiveryFolder(1, "tree");
    EXPECT_EQ(found(), Lines{});
    EXPECT_EQ(test::slashed(scanReports.noSectionFiles), Lines{"tree/none/aircraft.cfg"});
    EXPECT_EQ(test::slashed(scanReports.invalidCfgFiles),
              Lines{"tree/high/aircraft.cfg contains a [fltsim.x] section with a number < 0 or > 10000"});
    EXPECT_TRUE(test::logHas("===> fltsim num 99999999999 incorrect"));
    EXPECT_TRUE(test::logHas("conversion from error from utf16 to utf8, code: 1113"));
}

TEST_F(LiveryScan, ThousandsOfSections) {
    std::string sections;
    for (int i = 0; i < 5000; ++i) sections += section(i, fmt::format("T{:04}", i), "KLM");
    writeFile("tree/aircraft.cfg", cfg("B738", sections));
    gf_scanLiveryFolder(1, "tree");
    ASSERT_EQ(scannedLiveries.size(), 5000u);
    EXPECT_EQ(scannedLiveries.back().title, "T4999");
}

TEST_F(LiveryScan, FoldersLeftOut) {
    for (const char* word : {"airport", "lvfr", "mkstudios", "simwings", "fsdreamteam", "navigraph",
                             "flytampa", "inibuilds", "_CVT_"})
        EXPECT_TRUE(lf_skipPath(std::string("/c/x") + word + "y/z")) << word;
    EXPECT_FALSE(lf_skipPath("/c/Airport/cvt"));
    EXPECT_FALSE(lf_skipPath(std::string(249, 'a')));
    EXPECT_TRUE(lf_skipPath(std::string(250, 'a')));
    std::string umlauts;
    for (int i = 0; i < 249; ++i) umlauts += "\xC3\xBC";
    EXPECT_FALSE(lf_skipPath(umlauts));

    // A folder that is not entered, and a file that is looked at although its path has the word.
    writeFile("tree/airport-x/aircraft.cfg", cfg("B738", section(0, "A", "KLM")));
    writeFile("myairports/aircraft.cfg", cfg("B738", section(0, "B", "KLM")));
    writeFile("myairports/p/aircraft.cfg", cfg("B738", section(0, "C", "KLM")));
    gf_scanLiveryFolder(1, "tree");
    gf_scanLiveryFolder(1, "myairports");
    EXPECT_EQ(found(), Lines{"KLM|B738|B|1"});
}

TEST_F(LiveryScan, LinksAreFollowedOnce) {
    writeFile("elsewhere/p/aircraft.cfg", cfg("B738", section(0, "A", "KLM")));
    writeFile("tree/q/aircraft.cfg", cfg("B738", section(0, "B", "KLM")));
    fs::create_directory_symlink(fs::absolute("elsewhere"), "tree/link");
    fs::create_directory_symlink(fs::absolute("elsewhere"), "tree/link2");
    fs::create_directory_symlink(fs::absolute("tree"), "tree/q/loop");
    fs::create_directory_symlink(fs::absolute("nowhere"), "tree/dangling");
    gf_scanLiveryFolder(1, "tree");
    EXPECT_EQ(found(), (Lines{"KLM|B738|A|1", "KLM|B738|B|1"}));
    EXPECT_EQ(scanReports.incompleteSections, Lines{});
}

TEST_F(LiveryScan, ReportFilesAndSummary) {
    // Line ends of the file do not show in the reports, and a line stands there once.
    const std::string sections = section(0, "A", "KLM") + section(1, "B", "QQQ") + section(2, "A", "KLM") +
                                 "[fltsim.3]\nicao_airline=KLM\n[fltsim.3]\nicao_airline=KLM\n";
    writeFile("tree/a/aircraft.cfg", replaceAll(cfg("B738", sections), "\n", "\r\n"));
    writeFile("tree/b/aircraft.cfg", cfg("XX", section(0, "C", "KLM")));
    writeFile("tree/c/aircraft.cfg", "nothing here");
    gf_scanLiveryFolder(1, "tree");
    dbaseRecords["PH-BXA"] = {.airl = "DLH", .type = "B744", .opr = "KLM", .cargo = true};
    dbaseRecords["PH-BXB"] = {.airl = "KLM", .type = "B738", .opr = "", .cargo = false};
    scannedLiveries.push_back({"DLH", "B738", "D", "PH-BXA", 1, false});
    scannedLiveries.push_back({"DLH", "B738", "E", "PHBXB", 1, false});
    gf_applyDbaseToLiveries();
    EXPECT_EQ(found(), (Lines{"KLM|B738|A|1", "PVT|B738|B|1", "KLM|B744|D|1", "KLM|B738|E|1"}));
    gf_writeScanReports();
    EXPECT_EQ(test::slashed(readFile("output/errors/InvalidAirlineCodes.txt")),
              "QQQ          in tree/a/aircraft.cfg [fltsim.1]\n");
    EXPECT_EQ(test::slashed(readFile("output/errors/InvalidAircraftCodes.txt")),
              "XX               in tree/b/aircraft.cfg\n");
    EXPECT_EQ(test::slashed(readFile("output/errors/IncompleFltsimSections.txt")),
              "tree/a/aircraft.cfg [fltsim.1] icao_airline is missing, or it has invalid info \n"
              "tree/a/aircraft.cfg [fltsim.2] title 'A' already exists\n"
              "tree/a/aircraft.cfg [fltsim.3] misses title\n");
    EXPECT_EQ(test::slashed(readFile("output/info/AircraftCfgWithNoFltsimSection.txt")),
              "tree/c/aircraft.cfg\n");
    EXPECT_EQ(test::slashed(readFile("output/info/AirlineModelConversions.txt")),
              fmt::format("{0:80} PH-BXA airl DLH => KLM\n{0:80} PH-BXA cargo false => true\n"
                          "{0:80} PH-BXA model B738 => B744\n{1:80} PHBXB airl DLH => KLM\n",
                          "D", "E"));
    EXPECT_FALSE(fs::exists("output/errors/Fixes.txt"));
    for (const char* line :
         {"Errors:", "1 invalid airline code, see output/errors/InvalidAirlineCodes.txt",
          "1 invalid model code, see output/errors/InvalidAircraftCodes.txt",
          "1 invalid aircraft.cfg files, see output/errors/InvalidAircraftCfgFiles.txt",
          "3 incomplete [fltsim.x] sections, see output/errors/IncompleFltsimSections.txt",
          "Information:", "1 empty aircraft.cfg files, see output/info/AircraftCfgWithNoFltsimSection.txt",
          "4 liveries updated with real live data from dbase, see output/info/AirlineModelConversions.txt"})
        EXPECT_TRUE(test::logHas(line)) << line;
    EXPECT_FALSE(test::logHas("No errors"));
}

TEST_F(LiveryScan, NoErrorsIsSaid) {
    gf_writeScanReports();
    EXPECT_TRUE(test::logHas("No errors"));
    EXPECT_FALSE(fs::exists("output"));
}

TEST_F(LiveryScan, SameResultWithAnyNumberOfThreads) {
    for (int i = 0; i < 300; ++i) {
        std::string sections;
        for (int j = 0; j < 3; ++j) sections += section(j, fmt::format("T{}", (i * 7 + j * 50) % 400), "KLM");
        writeFile(fmt::format("tree/p{}/d{}/aircraft.cfg", i % 9, i), cfg(i % 2 ? "B738" : "B744", sections));
    }
    Lines first, firstReports;
    for (const int workers : {1, 2, 4, 16, 0}) {
        gf_beginLiveryScan();
        workerLimit = workers;
        gf_scanLiveryFolder(1, "tree");
        if (first.empty()) {
            first = found();
            firstReports = scanReports.incompleteSections;
            EXPECT_EQ(first.size() + firstReports.size(), 900u);
        }
        EXPECT_EQ(found(), first) << workers;
        EXPECT_EQ(scanReports.incompleteSections, firstReports) << workers;
    }
}

TEST_F(LiveryScan, MissingFolderIsAnIteratorProblem) {
    gf_scanLiveryFolder(1, "nowhere");
    EXPECT_TRUE(gf_panelText(&PanelState::errorText)
                    .starts_with("liveries search in folder nowhere aborted because of iterator problem: "));
}

TEST_F(LiveryScan, StopIsSeenAtEachFile) {
    std::atomic<int> worked{0};
    {
        Pool pool(
            1,
            [&worked](const CfgFile&, CfgYield&) {
                if (++worked == 5) gf_requestStop(ExitReason::newSettings, 0);
            },
            32);
        for (int i = 0; i < 100; ++i) pool.add({});
        pool.flush();
        CfgYield yield;
        while (pool.takeNext(yield)) {
        }
    }
    EXPECT_EQ(worked, 5);
    writeFile("tree/aircraft.cfg", cfg("B738", section(0, "A", "KLM")));
    gf_scanLiveryFolder(1, "tree");
    EXPECT_EQ(found(), Lines{});
}

TEST_F(LiveryScan, FailureOfAWorkerReachesTheTaker) {
    Pool pool(
        2, [](const CfgFile&, CfgYield&) { throw std::runtime_error("broken"); }, 1);
    pool.add({});
    pool.flush();
    CfgYield yield;
    EXPECT_THROW(pool.takeNext(yield), std::runtime_error);
    EXPECT_FALSE(pool.takeNext(yield));
}

/// Each look at the time finds it three seconds later.
class HastyClock : public Clock {
  public:
    Nanos utcNow() override { return steadyNow(); }
    Nanos steadyNow() override { return std::chrono::seconds(3 * ++looks_); }
    bool waitUntil(Nanos, const std::function<bool()>&) override { return false; }

  private:
    std::atomic<int64_t> looks_{0};
};

TEST_F(LiveryScan, HangingFileIsLeftBehind) {
    struct Gate {
        std::mutex lock;
        std::condition_variable changed;
        bool entered = false, open = false, left = false;
        void wait(bool Gate::*flag) {
            std::unique_lock guard(lock);
            changed.wait(guard, [&] { return this->*flag; });
        }
        void set(bool Gate::*flag) {
            const std::lock_guard guard(lock);
            this->*flag = true;
            changed.notify_all();
        }
    };
    const auto gate = std::make_shared<Gate>();
    HastyClock clock;
    gf_setClock(&clock);
    {
        Pool pool(
            1,
            [gate](const CfgFile&, CfgYield&) {
                gate->set(&Gate::entered);
                gate->wait(&Gate::open);
                gate->set(&Gate::left);
            },
            1);
        pool.add({});
        pool.flush();
        gate->wait(&Gate::entered);
        CfgYield yield;
        try {
            pool.takeNext(yield);
            FAIL() << "no time-out";
        } catch (const std::runtime_error& error) {
            EXPECT_STREQ(error.what(), "Future wait timed out after 10 seconds");
        }
    }
    gate->set(&Gate::open);
    gate->wait(&Gate::left);
    gf_setClock(nullptr);
}

}  // namespace
}  // namespace skl
