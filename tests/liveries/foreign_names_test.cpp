// Names with blanks, umlauts and characters of every kind, in each folder that the program works in. On
// Windows the tests have no manifest: the code page that narrow calls of the system would go by holds few of
// them.
#include <fmt/format.h>

#include <fstream>
#include <system_error>

#include "core/charset.h"
#include "core/folders.h"
#include "core/parameter_store.h"
#include "core/parameters.h"
#include "core/text.h"
#include "liveries/liveries_file.h"
#include "liveries/livery_scan.h"
#include "liveries/reference_db.h"
#include "tests/support/temp_folder.h"

namespace skl {
namespace {

using test::writeFile;

constexpr const char* packages = "Pakete f\xC3\xBCr \xE6\xA9\x9F";  // an umlaut, a Chinese character
constexpr const char* package =
    "\xCE\x95\xCE\xBB\xCE\xBB \xF0\x9F\x9B\xA9";  // Greek, an aircraft beyond 16 bits
constexpr const char* title = "Z\xC3\xBCrich \xD0\xAF\xE2\x9C\x88 \xF0\x9F\x9B\xA9";

class ForeignNames : public test::TempFolderTest {
  protected:
    ForeignNames() { within = gf_pathFromText("J\xC3\xB6rg \xC5\x81 \xE7\xA9\xBA\xE6\xB8\xAF"); }
    void SetUp() override {
        TempFolderTest::SetUp();
        gf_clearDbase();
        gf_ensureFolders();
        fs::create_directories(gf_programDataPath());
    }
    void TearDown() override {
        gf_beginLiveryScan();
        gf_clearDbase();
        TempFolderTest::TearDown();
    }
    static void readParameters() {
        const auto& lists = gf_parameterLists();
        gf_resetParameters();
        gf_readParameters(lists.hidden, lists.checks, lists.numbers, lists.combos, lists.texts,
                          lists.liveTexts);
    }
};

TEST_F(ForeignNames, SettingsAndTheSimulatorsPackages) {
    readParameters();
    const fs::path folder = root / gf_pathFromText(packages);
    MSFS_INSTALL_PATH.set(gf_pathText(folder / "Community"));
    gf_saveParameter(MSFS_INSTALL_PATH);
    readParameters();
    EXPECT_EQ(MSFS_INSTALL_PATH.get(), gf_pathText(folder / "Community"));
    EXPECT_TRUE(test::logHas(fmt::format("MSFS_INSTALL_PATH={}", gf_pathText(folder))));
    sim2020 = true;
    gf_stripCommunity();
    writeFile(folder / "Community" / "x", "");
    writeFile(folder / "Official" / "x", "");
    EXPECT_EQ(gf_simPath("Community"), folder / "Community");
    const fs::path userCfg = root.parent_path() / "config" / "Microsoft Flight Simulator" / "UserCfg.opt";
    writeFile(userCfg, fmt::format("InstalledPackagesPath \"{}\"\n", gf_pathText(folder)));
    EXPECT_EQ(gf_detectInstallPath(), folder);
    // In the bytes of a code page it names nothing that is there.
    writeFile(userCfg, "InstalledPackagesPath \"" + gf_pathText(root) + "/Pakete f\xFCr\"\n");
    EXPECT_EQ(gf_detectInstallPath(), fs::path());
}

TEST_F(ForeignNames, LiveriesOfTheCommunityFolder) {
    icaoAirlines = {"DLH"};
    aircraftTypes = {"B738"};
    const fs::path community = root / gf_pathFromText(packages) / "Community";
    writeFile(
        community / gf_pathFromText(package) / "SimObjects" / "aircraft.cfg",
        fmt::format("[GENERAL]\nicao_type_designator=B738\n[fltsim.0]\ntitle={}\nicao_airline=DLH\n", title));
    writeFile(community / gf_pathFromText(package) / "broken" / "aircraft.cfg",
              "[fltsim.0]\ntitle=A\n[GENERAL]\n");
    gf_beginLiveryScan();
    gf_scanLiveryFolder(1, community);
    ASSERT_EQ(scannedLiveries.size(), 1u);
    EXPECT_EQ(scannedLiveries.front().title, title);
    gf_writeLiveriesFile();
    scannedLiveries.clear();
    gf_readLiveriesFile();
    ASSERT_EQ(scannedLiveries.size(), 1u);
    EXPECT_EQ(scannedLiveries.front().title, title);
}

TEST_F(ForeignNames, TextFilesAndListsOfFiles) {
    const fs::path file = paths::myThirdparty / gf_pathFromText(std::string(package) + ".XML");
    ASSERT_TRUE(gf_writeText(title, file, true, false));
    EXPECT_EQ(gf_detectCharset(file), Charset::utf8WithoutBom);
    std::vector<std::string> lines;
    ASSERT_TRUE(gf_readLines(Charset::utf8WithoutBom, file, lines));
    EXPECT_EQ(lines, std::vector<std::string>{title});
    EXPECT_EQ(gf_listAirportFiles(), std::vector<std::string>{std::string(package) + ".XML"});
    EXPECT_EQ(gf_findExisting(file), file);
    gf_cleanFolder(paths::myThirdparty);
    EXPECT_EQ(gf_countEntries(paths::myThirdparty), 0);
    try {
        static_cast<void>(fs::file_size(file));
        ADD_FAILURE() << "the file is gone";
    } catch (const fs::filesystem_error& error) {
        EXPECT_NE(std::string(error.what()).find(package), std::string::npos) << error.what();
    }
}

}  // namespace
}  // namespace skl
