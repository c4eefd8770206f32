// The data files kept up to date from a real server on loopback: what is newer or missing comes, and what
// fails leaves the old one.
#include "distribution/updates.h"

#include <gtest/gtest.h>

#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "core/folders.h"
#include "core/log.h"
#include "core/parameter_store.h"
#include "core/parameters.h"
#include "core/run_state.h"
#include "distribution/site.h"
#include "distribution/zip_pack.h"
#include "tests/support/hasty_clock.h"
#include "tests/support/site_server.h"
#include "tests/support/temp_folder.h"
#include "tests/support/zip_builder.h"

namespace skl::test {

namespace {

using site::FaultKind;

constexpr const char* all = R"({"simaddon":{"major":2,"minor":0,"patch":0},
    "aig":{"major":1,"minor":10,"patch":2},"dbase":{"major":1,"minor":2,"patch":3},"other":[]})";

class UpdatesTest : public TempFolderTest {
  protected:
    void SetUp() override {
        TempFolderTest::SetUp();
        unsetenv("http_proxy");
        gf_startLog();
        gf_resetParameters();
        gf_resetRunState();
        fs::create_directories(gf_programDataPath());
        const auto& lists = gf_parameterLists();
        gf_readParameters(lists.hidden, lists.checks, lists.numbers, lists.combos, lists.texts,
                          lists.liveTexts);
        sim2020 = true;
        writeFile("site/downloads/versions.json", all);
        writeFile("site/downloads/AIG-regcodes.enc", "new codes");
        writeFile("site/downloads/dbase.enc", "new dbase");
        fs::create_directories("site/downloads/mysimaddon24");
        writeFile(paths::regcodesEnc, "old codes");
        writeFile(paths::dbaseEnc, "old dbase");
        writeFile(paths::mySimaddon / "OLD1.txt", "old link");
    }
    void TearDown() override {
        gf_resetRunState();
        gf_setSiteBase("");
        sim2020 = true;
        gf_closeLog();
        TempFolderTest::TearDown();
    }
    /// The requests by path.
    nlohmann::json update(std::vector<site::Fault> faults = {}) {
        SiteServer server("site", std::move(faults));
        gf_setSiteBase(server.url("/downloads/"));
        gf_updateDataFiles();
        return server.end()["paths"];
    }
    void pack(const std::vector<std::pair<std::string, std::string>>& entries) {
        writeZip("site/downloads/mysimaddon24/my_simaddon2024.zip", entries);
        sim2020 = false;
    }
    static std::vector<std::string> addons() {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(paths::mySimaddon))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }
};

TEST_F(UpdatesTest, ThreadsNewerAndMissingFilesCome) {
    struct Case {
        const char* what;
        std::string aig, dbase;
        bool removed;
        std::string codes, data;
    };
    for (const Case& c : {Case{"first start", "", "", false, "new codes", "new dbase"},
                          {"equal", "1.10.2", "1.2.3", false, "old codes", "old dbase"},
                          {"by number, not by text", "1.9.9", "1.2.2", false, "new codes", "new dbase"},
                          {"the site is older", "2.0.0", "1.3.0", false, "old codes", "old dbase"},
                          {"equal, but gone", "1.10.2", "1.2.3", true, "new codes", "old dbase"}}) {
        SCOPED_TRACE(c.what);
        AIG_VERSION.set(c.aig);
        DBASE_VERSION.set(c.dbase);
        writeFile(paths::regcodesEnc, "old codes");
        writeFile(paths::dbaseEnc, "old dbase");
        if (c.removed) fs::remove(paths::regcodesEnc);
        update();
        EXPECT_EQ(readFile(paths::regcodesEnc), c.codes);
        EXPECT_EQ(readFile(paths::dbaseEnc), c.data);
        EXPECT_EQ(AIG_VERSION.get(), c.codes == "new codes" ? "1.10.2" : c.aig);
    }
    EXPECT_EQ(logCount("aig updated to 1.10.2"), 3);
    EXPECT_EQ(logCount("dbase version up-to-date"), 3);
    EXPECT_EQ(logCount("simaddon"), 0) << "the other simulator's";
    EXPECT_NE(readFile(gf_programDataPath() / "parameters.xml").find("value=\"1.10.2\""), std::string::npos);
}

TEST_F(UpdatesTest, ThreadsAFailureLeavesTheOldFileAndItsVersion) {
    for (const FaultKind fault : {FaultKind::kMissing, FaultKind::kCut}) {
        const auto asked = update({{"/downloads/AIG", fault, 4}});
        EXPECT_EQ(readFile(paths::regcodesEnc), "old codes");
        EXPECT_EQ(AIG_VERSION.get(), "");
        EXPECT_EQ(readFile(paths::dbaseEnc), "new dbase") << "the others go on";
    }
    EXPECT_EQ(logCount("===> Downloading 'AIG-regcodes.enc' failed !"), 2);
    update({{"/downloads/versions", FaultKind::kMissing, 0}});
    EXPECT_TRUE(logHas("===> Downloading version info from my web site failed!"));
}

TEST_F(UpdatesTest, ThreadsMembersThatTellNoVersionAreLeftOut) {
    for (const char* text :
         {"[]", "7", "{}", R"({"aig":3,"dbase":{}})", R"({"aig":{"major":"1","minor":1,"patch":1}})",
          R"({"aig":{"major":1.5,"minor":1,"patch":1}})", R"({"aig":{"major":-1,"minor":1,"patch":1}})",
          R"({"aig":{"major":99999999999,"minor":1,"patch":1}})"}) {
        writeFile("site/downloads/versions.json", text);
        update();
    }
    EXPECT_EQ(logCount("===> aig version not found"), 8);
    EXPECT_EQ(logCount("===> dbase version not found"), 8);
    EXPECT_EQ(readFile(paths::dbaseEnc), "old dbase");
    for (const char* text : {"", "{", "{\"aig\":}"}) {
        writeFile("site/downloads/versions.json", text);
        EXPECT_THROW(update(), nlohmann::json::parse_error);
    }
}

TEST_F(UpdatesTest, ThreadsAPackTakesThePlaceOfTheOldOne) {
    pack({{"folder/", ""},
          {"folder/EGLL.xml", "a link"},
          {"LFPG.txt", ""},
          {"../../OUT.txt", "kept inside"},
          {"/etc/ABS.txt", "kept inside"},
          {"a\\b\\WIN.dat", "kept inside"},
          {"..", "no name"},
          {"x/.", "no name"},
          {"n\nl.txt", "no name"}});
    update();
    EXPECT_EQ(addons(), (std::vector<std::string>{"ABS.txt", "EGLL.txt", "LFPG.txt", "OUT.txt", "WIN.txt"}));
    EXPECT_EQ(readFile(paths::mySimaddon / "EGLL.txt"), "a link");
    EXPECT_TRUE(logHas("my_simaddon2024.zip unzipped 5 files"));
    EXPECT_EQ(logCount("Failed to read"), 3);
    EXPECT_FALSE(fs::exists("my_simaddon2024.zip"));
    EXPECT_EQ(MYSIMADDON24_VERSION.get(), "2.0.0");
    auto asked = update();
    EXPECT_FALSE(asked.contains("/downloads/mysimaddon24/my_simaddon2024.zip")) << "up to date";
    gf_cleanFolder(paths::mySimaddon);
    update();
    EXPECT_EQ(addons().size(), 5u) << "the user had emptied the folder";
}

TEST_F(UpdatesTest, ThreadsABrokenPackCostsNothing) {
    pack({{"EGLL.txt", "a link"}});
    const std::string file = "site/downloads/mysimaddon24/my_simaddon2024.zip";
    const std::string whole = readFile(file);
    for (const std::string& bytes :
         {std::string("no zip"), std::string(), whole.substr(0, whole.size() - 9)}) {
        writeFile(file, bytes);
        update();
        EXPECT_EQ(addons(), std::vector<std::string>{"OLD1.txt"});
    }
    fs::remove(file);
    update();
    EXPECT_EQ(logCount("===> Could not open my_simaddon2024.zip"), 3);
    EXPECT_EQ(logCount("simaddon version up-to-date"), 4);
    EXPECT_EQ(MYSIMADDON24_VERSION.get(), "");
    // A size that the head of the archive only claims.
    writeZip("large.zip", {{"EGLL.txt", std::string((1u << 20) + 1, 'x')}, {"EHAM.txt", "y"}});
    const auto files = lf_readPack(readFile("large.zip"));
    ASSERT_EQ(files->size(), 1u);
    EXPECT_EQ(files->front().stem, "EHAM");
}

TEST_F(UpdatesTest, ThreadsAStopEndsTheStep) {
    HastyClock clock;
    gf_requestStop(ExitReason::newSettings, 0);
    update({{"/downloads/versions", FaultKind::kHang, 0}});
    EXPECT_EQ(readFile(paths::dbaseEnc), "old dbase");
    gf_resetRunState();
    gf_setSiteBase("");
    gf_updateDataFiles();
    EXPECT_TRUE(logHas("No data site in this build"));
}

}  // namespace
}  // namespace skl::test
