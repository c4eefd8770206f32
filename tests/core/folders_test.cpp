// The folder tree, names without case, the simulator's packages folder, and the services on files.
#include "core/folders.h"

#include <cstdlib>

#include "core/errors.h"
#include "core/parameter_store.h"
#include "core/parameters.h"
#include "core/text.h"
#include "tests/support/temp_folder.h"

namespace skl {
namespace {

using test::logCount;
using test::logHas;
using test::readFile;
using test::writeFile;

class Folders : public test::TempFolderTest {
  protected:
    void TearDown() override {
        sim2020 = true;
        TempFolderTest::TearDown();
    }
};

TEST_F(Folders, TheTreeIsMadeAndStaleFilesGo) {
    writeFile("input/AIG-regcodes0.xml", "x");
    writeFile("input/AIG-regcodes00.xml", "x");
    writeFile("input/AIG-regcodes.xml", "x");
    writeFile("airports/learned/stock/EHAM.xml", "kept");
    gf_ensureFolders();
    gf_ensureFolders();
    for (const char* folder : {"output/info", "output/errors", "airports/learned/stock",
                               "airports/learned/simaddon", "airports/learned/thirdparty",
                               "airports/my_simaddon", "airports/my_thirdparty", "input/my_regcodes"})
        EXPECT_TRUE(fs::is_directory(folder)) << folder;
    EXPECT_EQ(gf_countEntries("input"), 2);
    EXPECT_EQ(readFile("airports/learned/stock/EHAM.xml"), "kept");
    fs::remove_all("output");
    writeFile("output", "a file in the way");
    EXPECT_THROW(gf_ensureFolders(), fs::filesystem_error);
}

#ifndef _WIN32
TEST_F(Folders, UserFolders) {
    EXPECT_EQ(gf_appDataPath(), fs::path(std::getenv("XDG_CONFIG_HOME")));
    EXPECT_EQ(gf_localAppDataPath(), fs::path(std::getenv("XDG_DATA_HOME")));
    setenv("XDG_CONFIG_HOME", "relative/folder", 1);
    unsetenv("XDG_DATA_HOME");
    setenv("HOME", "/some/home", 1);
    EXPECT_EQ(gf_programDataPath(), fs::path("/some/home/.config/Skylantern"));
    EXPECT_EQ(gf_localAppDataPath(), fs::path("/some/home/.local/share"));
}
#endif

TEST_F(Folders, TheCommunityFolderIsCutOffTheInstallPath) {
    fs::create_directories(gf_programDataPath());
    writeFile(gf_programDataPath() / "parameters.xml", "<parameters/>");
    const std::vector<std::pair<std::string, std::string>> cases{
        {"D:\\Packages\\Community", "D:\\Packages"},
        {"D:\\Packages\\Community\\\\", "D:\\Packages"},
        {"/data/Packages/Community", "/data/Packages"},
        {"/data/Packages/Community/", "/data/Packages"},
        {"D:\\Community\\X\\Community", "D:\\Community\\X"},
        {"D:\\Community\\X", "D:\\Community\\X"},
        {"D:\\Packages\\", "D:\\Packages\\"},
        {"D:\\MyCommunity", "D:\\MyCommunity"},
        {"E:\\Community", "E:\\"},
        {"/Community", "/"},
        {"Community", "Community"},
        {"/", "/"},
        {"", ""}};
    for (const bool is2020 : {true, false})
        for (const auto& [before, after] : cases) {
            sim2020 = is2020;
            gf_installPathParameter().set(before);
            gf_stripCommunity();
            EXPECT_EQ(gf_installPathParameter().get(), after) << before;
        }
    EXPECT_EQ(MSFS_INSTALL_PATH.get(), "");
    const std::string saved = readFile(gf_programDataPath() / "parameters.xml");
    EXPECT_NE(saved.find("\"MSFS_INSTALL_PATH\" value=\"/\""), std::string::npos) << saved;
    EXPECT_NE(saved.find("\"MSFS_2024_INSTALL_PATH\" value=\"/\""), std::string::npos) << saved;
}

TEST_F(Folders, NamesAreFoundWithoutCaseWhereOnlyOneFits) {
    writeFile("Pack/Community/One.txt", "");
    writeFile("Pack/twice/a", "");
    writeFile("Pack/Twice/a", "");
    EXPECT_EQ(gf_findExisting("pack/COMMUNITY/one.TXT"), fs::path("Pack/Community/One.txt"));
    EXPECT_EQ(gf_findExisting(root / "pack" / "community"), root / "Pack" / "Community");
    EXPECT_EQ(gf_findExisting("Pack/twice/a"), fs::path("Pack/twice/a")) << "an exact name is no choice";
    EXPECT_EQ(gf_findExisting("Pack/TWICE/a"), fs::path("Pack/TWICE/a")) << "two fit, so none is taken";
    EXPECT_EQ(gf_findExisting("pack/new.txt"), fs::path("pack/new.txt")) << "a new file keeps its name";
    EXPECT_EQ(gf_findExisting(""), fs::path());
    MSFS_INSTALL_PATH.set(gf_pathText(root) + "\\pack");
    EXPECT_EQ(gf_simPath("community\\one.txt"), root / "Pack" / "Community" / "One.txt");
}

/// An install of the simulator below the test's user folders.
struct Install {
    const char* what;
    bool is2020;
    std::vector<const char*> folders;  // in the packages folder
    const char* steamPackages;         // below the roaming folder, or null
    const char* userCfg;               // from the root of both user folders, or null
    const char* cfgLine;               // {} stands for the packages folder
    const char* found;                 // the packages folder that is expected, below the test's root, or null
};

TEST_F(Folders, Detection) {
    const char* store2020 = "data/Packages/Microsoft.FlightSimulator_8wekyb3d8bbwe/LocalCache/UserCfg.opt";
    const char* store2024 = "data/Packages/Microsoft.Limitless_8wekyb3d8bbwe/LocalCache/UserCfg.opt";
    const char* steam2 = "data/Packages/Microsoft.FlightDashboard_8wekyb3d8bbwe/LocalCache/UserCfg.opt";
    const std::string packages = "disk/MSFS";
    const std::vector<Install> installs{
        {"nothing", true, {}, nullptr, nullptr, "", nullptr},
        {"steam packages",
         true,
         {"Community", "Official"},
         "config/Microsoft Flight Simulator/Packages",
         nullptr,
         "",
         "config/Microsoft Flight Simulator/Packages"},
        {"steam packages 2024",
         false,
         {"community", "OFFICIAL2024"},
         "config/Microsoft Flight Simulator 2024/Packages",
         nullptr,
         "",
         "config/Microsoft Flight Simulator 2024/Packages"},
        {"steam packages of the other simulator",
         false,
         {"Community", "Official"},
         "config/Microsoft Flight Simulator/Packages",
         nullptr,
         "",
         nullptr},
        {"2024 without its own official folder",
         false,
         {"Community", "Official"},
         "config/Microsoft Flight Simulator 2024/Packages",
         nullptr,
         "",
         nullptr},
        {"store",
         true,
         {"Community", "Official"},
         nullptr,
         store2020,
         "InstalledPackagesPath \"{}\"",
         "disk/MSFS"},
        {"store 2024",
         false,
         {"Community", "Official2024"},
         nullptr,
         store2024,
         "  InstalledPackagesPath \"{}\"",
         "disk/MSFS"},
        {"store file of 2020 does not serve 2024",
         false,
         {"Community", "Official2024"},
         nullptr,
         store2020,
         "InstalledPackagesPath \"{}\"",
         nullptr},
        {"steam 1",
         true,
         {"Community", "Official"},
         nullptr,
         "config/Microsoft Flight Simulator/UserCfg.opt",
         "InstalledPackagesPath \"{}\"",
         "disk/MSFS"},
        {"steam 2",
         false,
         {"Community", "Official2024"},
         nullptr,
         steam2,
         "InstalledPackagesPath \"{}\"",
         "disk/MSFS"},
        {"boxed",
         true,
         {"Community", "Official"},
         nullptr,
         "data/MSFSPackages/UserCfg.opt",
         "InstalledPackagesPath \"{}\"",
         "disk/MSFS"},
        {"no community folder",
         true,
         {"Official"},
         nullptr,
         store2020,
         "InstalledPackagesPath \"{}\"",
         nullptr},
        {"no official folder",
         true,
         {"Community"},
         nullptr,
         store2020,
         "InstalledPackagesPath \"{}\"",
         nullptr},
        {"no such line", true, {"Community", "Official"}, nullptr, store2020, "Other \"{}\"", nullptr},
        {"line of another folder",
         true,
         {"Community", "Official"},
         nullptr,
         store2020,
         "InstalledPackagesPath \"{}/gone\"",
         nullptr}};
    const fs::path top = root.parent_path();
    for (const auto& install : installs) {
        for (const char* folder : {"config", "data", "disk"}) {
            fs::remove_all(top / folder);
            fs::create_directories(top / folder);
        }
        sim2020 = install.is2020;
        const fs::path folder = top / (install.steamPackages ? install.steamPackages : packages);
        for (const char* name : install.folders) fs::create_directories(folder / name);
        std::string line = install.cfgLine;
        if (const size_t at = line.find("{}"); at != std::string::npos)
            line.replace(at, 2, gf_pathText(folder));
        if (install.userCfg)
            writeFile(top / install.userCfg, "Version 66\r\n{Video\r\n}\r\n" + line + "\r\n");
        const fs::path expected = install.found ? top / install.found : fs::path();
        EXPECT_EQ(gf_detectInstallPath(), expected) << install.what;
    }
    EXPECT_TRUE(logHas("Steam packages:" + gf_pathText(top / "config/Microsoft Flight Simulator/Packages")));
    EXPECT_TRUE(logHas("MSFS detection, no Store:" + gf_pathText(top / store2024)));
    EXPECT_TRUE(logHas("MSFS detection, no Steam1:"));
    EXPECT_TRUE(logHas("MSFS detection, no Steam2:" + gf_pathText(top / steam2)));
    EXPECT_TRUE(logHas("MSFS detection, no Boxed:" + gf_pathText(top / "data/MSFSPackages/UserCfg.opt")));
    EXPECT_EQ(logCount("No UserCfg.opt found?"), 4);
    EXPECT_TRUE(logHas("UserCfg.opt: InstalledPackagesPath=" + gf_pathText(top / packages / "gone")));
    EXPECT_EQ(logCount("UserCfg.opt: InstalledPackagesPath=???"), 1);
}

TEST_F(Folders, TextsAreWrittenReplacedAndAppended) {
    EXPECT_TRUE(gf_writeText("one", "file.txt", true));
    EXPECT_TRUE(gf_writeText("two", "file.txt", true));
    EXPECT_TRUE(gf_writeText("three", "file.txt", false, true));
    EXPECT_EQ(readFile("file.txt"), "two\nthree");
    EXPECT_EQ(gf_countEntries("."), 2) << "nothing is left beside the file and the log";
    EXPECT_FALSE(gf_writeText("x", "no/folder.txt", true));
    EXPECT_FALSE(gf_writeText("x", "no/folder.txt", true, true));
}

TEST_F(Folders, CleaningAndCounting) {
    writeFile("full/a.xml", "");
    writeFile("full/B.Xml", "");
    writeFile("full/sub/kept.xml", "");
    fs::create_symlink(root / "full" / "sub", root / "full" / "link");
    gf_cleanFolder("full");
    EXPECT_TRUE(logHas("Cleaning folder: full"));
    EXPECT_EQ(gf_countEntries("full"), 1);
    EXPECT_TRUE(fs::exists("full/sub/kept.xml"));
    EXPECT_EQ(gf_countEntries("gone"), 0);
    try {
        gf_cleanFolder("gone");
        FAIL() << "no folder, but no error";
    } catch (const UserErrorException& error) {
        EXPECT_EQ(error.code(), 5u);
        EXPECT_TRUE(std::string(error.what()).starts_with("5: Filesystem error: ")) << error.what();
    }
    EXPECT_TRUE(gf_listAirportFiles().empty());
    for (const char* name : {"KLAX.xml", "EHAM.XML", "notes.txt", "LSZH.xml.bak"})
        writeFile(paths::myThirdparty / name, "");
    EXPECT_EQ(gf_listAirportFiles(), (std::vector<std::string>{"EHAM.XML", "KLAX.xml"}));
}

}  // namespace
}  // namespace skl
