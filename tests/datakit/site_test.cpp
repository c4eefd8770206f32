// A site laid out, checked, changed, and fetched from by the program's updates over a real server.
#include <nlohmann/json.hpp>

#include "core/folders.h"
#include "core/parameter_store.h"
#include "core/parameters.h"
#include "core/run_state.h"
#include "distribution/site.h"
#include "distribution/updates.h"
#include "tests/datakit/datakit_world.h"
#include "tests/support/site_server.h"
#include "tests/support/zip_builder.h"

namespace skl::test {

namespace {

const fs::path downloads = "site/downloads";

class DatakitSite : public DatakitTest {
  protected:
    void SetUp() override {
        DatakitTest::SetUp();
        writeDatabaseTables();
        writeFile("index.csv",
                  "ident,name,latitude_deg,longitude_deg,elevation_ft\nEGLL,Heathrow,51.47,-0.46,83\n");
        writeFile("liveries.csv", "title,registrations\nAI A320,D-AIUA\n");
        writeFile("stock/EGLL.xml", stock());
        writeFile("sim/EGLL.xml", stock());
        ASSERT_EQ(kit({"airports", "--out", "index", "index.csv"}), 0) << said;
        ASSERT_EQ(kit({"regcodes", "--out", "codes.xml", "liveries.csv"}), 0) << said;
        ASSERT_EQ(layOut(), 0) << said;
    }
    void TearDown() override {
        gf_setSiteBase("");
        sim2020 = true;
        DatakitTest::TearDown();
    }
    static std::string stock(const std::string& rows = "<parameter name='altitude' value='83'/>",
                             int twice = 1) {
        std::string stands;
        for (int i = 0; i < twice; ++i)
            stands += "<parkpos id='A1' latitude='51.47' longitude='-0.46' radius='20'/>";
        return "<parameters>" + rows + "</parameters>\n<parkpositions>" + stands + "</parkpositions>\n";
    }
    int layOut() {
        if (const int status = kit(databaseCommand)) return status;
        return kit({"site", "--out", "site", "--airports", "index", "--database", "dbase.xml", "--regcodes",
                    "codes.xml", "--stock", "stock", "--simaddon", "sim", "--simaddon24", "EGLL"});
    }
    static std::string version(const char* member) {
        const auto versions = nlohmann::json::parse(readFile(downloads / "versions.json"));
        const auto& told = versions[member];
        return std::to_string(told["major"].get<int>()) + '.' + std::to_string(told["minor"].get<int>()) +
               '.' + std::to_string(told["patch"].get<int>());
    }
};

TEST_F(DatakitSite, IsFineAsItIsMade) {
    EXPECT_EQ(kit({"check", "site"}), 0) << said;
    EXPECT_TRUE(
        says("2 registrations, 1 registration rows, 1 airports in the index, 2 airport files with 2 stands"))
        << said;
    EXPECT_EQ(fs::current_path(), root);
    EXPECT_EQ(kit({"check", "site/downloads/"}), 0) << said;
}

TEST_F(DatakitSite, RaisesTheVersionsOfWhatHasChanged) {
    EXPECT_EQ(version("dbase") + ' ' + version("aig") + ' ' + version("simaddon"), "1.0.0 1.0.0 1.0.0");
    const std::string before = readFile(downloads / "dbase.enc");
    ASSERT_EQ(layOut(), 0);
    EXPECT_EQ(version("dbase"), "1.0.0");
    EXPECT_EQ(readFile(downloads / "dbase.enc"), before) << "the same content stays the same file";
    writeFile("regs.csv", readFile("regs.csv") + "D-AIUB,A320,,DLH,\n");
    ASSERT_EQ(layOut(), 0) << said;
    EXPECT_EQ(version("dbase") + ' ' + version("aig") + ' ' + version("simaddon"), "1.0.1 1.0.0 1.0.0");
    ASSERT_EQ(kit({"encipher", "dbase.xml", "site/downloads/AIG-regcodes.enc"}), 0) << said;
    ASSERT_EQ(kit({"versions", "--raise", "minor", "site"}), 0) << said;
    EXPECT_EQ(version("dbase") + ' ' + version("aig"), "1.0.1 1.1.0");
    for (const char* broken : {"{ \"dbase\"", "[]", R"({"dbase": {"major": "one"}})"}) {
        writeFile(downloads / "versions.json", broken);
        EXPECT_EQ(kit({"versions", "site"}), 1) << broken;
        EXPECT_EQ(readFile(downloads / "versions.json"), broken);
    }
}

TEST_F(DatakitSite, ThreadsAProgramUpdatesFromIt) {
    gf_startLog();
    const auto& lists = gf_parameterLists();
    fs::create_directories(gf_programDataPath());
    gf_readParameters(lists.hidden, lists.checks, lists.numbers, lists.combos, lists.texts, lists.liveTexts);
    fs::create_directories(paths::input);
    fs::create_directories(paths::airports);
    sim2020 = false;
    unsetenv("http_proxy");
    SiteServer server("site");
    gf_setSiteBase(server.url("/downloads/"));
    gf_updateDataFiles();
    EXPECT_TRUE(gf_readDbase());
    EXPECT_EQ(dbaseRecords.size(), 2u);
    EXPECT_EQ(readFile(paths::mySimaddon / "EGLL.txt"), "archive/simaddon/EGLL.xml\n");
    EXPECT_TRUE(fs::exists(paths::regcodesEnc));
    gf_updateDataFiles();
    EXPECT_EQ(logCount("version up-to-date"), 3);
    server.end();
}

TEST_F(DatakitSite, TheCheckTellsWhatTheProgramRefuses) {
    const fs::path file = downloads / "MSFS/archive/stock/EGLL.xml";
    struct Case {
        const char* what;
        std::string text;
        const char* told;
    };
    for (const Case& c :
         {Case{"cut", "<parameters><param", "could not load file"},
          {"no altitude", stock(""), "ends the run of the program: 65: Parameter altitude not found"},
          {"a stand twice", stock("<parameter name='altitude' value='83'/>", 2), "94: Parking position A1"},
          {"no stands", "<parameters><parameter name='altitude' value='83'/></parameters>",
           "no stands found"}}) {
        SCOPED_TRACE(c.what);
        writeFile(file, c.text);
        EXPECT_EQ(kit({"check", "site"}), 1);
        EXPECT_TRUE(says(c.told)) << said;
        EXPECT_TRUE(says("1 would be refused")) << said;
    }
    writeFile(file, stock("<parameter name='altitude' value='83'/><parameter name='Qf_real' value='90'/>"));
    writeFile(downloads / "MSFS/archive/stock/EGKK.xml", stock());
    EXPECT_EQ(kit({"check", "site"}), 0);
    EXPECT_TRUE(says("tells 90/-1 where its options give -1/-1")) << said;
    EXPECT_TRUE(says("EGKK is not in the index")) << said;

    fs::remove(downloads / "MSFS/archive/simaddon/EGLL.xml");
    std::string bytes = readFile(downloads / "dbase.enc");
    bytes[bytes.size() / 2] = static_cast<char>(bytes[bytes.size() / 2] ^ 1);
    writeFile(downloads / "dbase.enc", bytes);
    writeFile(downloads / "airports_msfs.xml",
              "<airports><airport code='EGLL' lat='x' lon='1' alt='1'/></airports>");
    writeFile(downloads / "versions.json", "{\"dbase\": {\"major\": 1, \"minor\": 0, \"patch\": 0}}");
    EXPECT_EQ(kit({"check", "site"}), 1);
    for (const char* text :
         {"dbase.enc: REFUSED: ends the start of the program", "airports_msfs.xml: REFUSED: holds no airport",
          "tells no version of 'aig'", "EGLL links to archive/simaddon/EGLL.xml, which is not there"})
        EXPECT_TRUE(says(text)) << text << "\n" << said;
}

TEST_F(DatakitSite, ThreadsAServedSiteIsCheckedByItsAddress) {
    using site::FaultKind;
    unsetenv("http_proxy");
    gf_setSiteBase("http://own");
    writeFile("makers.csv", "name\nNorth Co\n");
    writeFile("works.csv",
              "publisher,airport,stands,simulator\nNorth Co,EGLL,1,2020\nNorth Co,EGKK,1,2024\n");
    writeFile("works/North Co/EGLL.xml", stock());
    auto words = databaseCommand;
    words.insert(words.end(), {"--publishers", "makers.csv", "--publications", "works.csv"});
    ASSERT_EQ(kit(words), 0) << said;
    ASSERT_EQ(kit({"site", "--out", "site", "--database", "dbase.xml", "--thirdparty", "works"}), 0) << said;
    const std::string served = (root / "site").string();  // a check has a working folder of its own
    struct Case {
        const char* what;
        std::vector<site::Fault> faults;
        int status;
        std::vector<std::string> told;
    };
    const std::string stockFile = "/downloads/MSFS/archive/stock/EGLL.xml";
    for (const Case& c :
         {Case{"a site without fault",
               {},
               0,
               {"1 airports in the index, 3 airport files with 3 stands", "nothing would be refused",
                "EGKK1 of North Co: http://127.0.0.1:"}},
          {"the version file alone is there",
           {{"/downloads/dbase.enc", FaultKind::kMissing, {}}},
           1,
           {"/downloads/dbase.enc: REFUSED: versions.json tells its version, and it is not there"}},
          {"no stock file: none asks for more",
           {{stockFile, FaultKind::kMissing, {}}},
           0,
           {"2 airport files"}},
          {"a body cut short",
           {{stockFile, FaultKind::kCut, 20}},
           1,
           {stockFile + ": REFUSED: cannot be fetched: ", "2 airport files", "1 would be refused"}}}) {
        SCOPED_TRACE(c.what);
        SiteServer server(served, c.faults);
        EXPECT_EQ(kit({"check", server.url("/")}), c.status);
        for (const std::string& text : c.told) EXPECT_TRUE(says(text)) << text << "\n" << said;
    }
    std::string address;
    {
        SiteServer server(served);
        address = server.url("/downloads");
        EXPECT_EQ(kit({"check", "--only", "EGKK", address}), 0);
        EXPECT_TRUE(says("0 airport files")) << said;
    }
    EXPECT_EQ(kit({"check", address}), 1) << "the server is gone";
    EXPECT_TRUE(says("/downloads/versions.json: ")) << said;
    EXPECT_EQ(gf_siteFileUrl(""), "http://own/") << "the program's own site is back";
}

TEST_F(DatakitSite, WhatTheProgramWouldRefuseIsNotPutThere) {
    const std::string before = readFile(downloads / "dbase.enc");
    for (const auto& [text, why] :
         {std::pair{"<aircrafts>", "refuse"}, {"<aircrafts/>", "61: In XML file section [aircrafts]"}}) {
        writeFile("bad.xml", text);
        EXPECT_EQ(kit({"site", "--out", "site", "--database", "bad.xml"}), 1);
        EXPECT_TRUE(says(why)) << said;
    }
    EXPECT_EQ(readFile(downloads / "dbase.enc"), before);
    EXPECT_EQ(kit({"site", "--out", "site", "--simaddon24", "EGKK"}), 1) << "a pack of nothing";
    EXPECT_EQ(version("simaddon"), "1.0.0");
}

TEST_F(DatakitSite, DecipheringIsTheOtherWayRound) {
    ASSERT_EQ(kit({"decipher", "site/downloads/dbase.enc", "plain.xml"}), 0) << said;
    EXPECT_EQ(readFile("plain.xml"), readFile("dbase.xml"));
    writeFile("broken.enc", readFile(downloads / "dbase.enc").substr(0, 500));
    EXPECT_EQ(kit({"decipher", "broken.enc", "plain.xml"}), 1);
    EXPECT_TRUE(says("broken.enc: Decryption failed")) << said;
    writeFile("broken.enc", "");
    EXPECT_EQ(kit({"decipher", "broken.enc", "plain.xml"}), 1);
    EXPECT_EQ(readFile("plain.xml"), readFile("dbase.xml"));
    EXPECT_EQ(kit({"encipher", "gone.xml", "out.enc"}), 1);
    EXPECT_FALSE(fs::exists("out.enc") || fs::exists("out.enc.part"));
}

}  // namespace

}  // namespace skl::test
