// The reference database and the registration codes out of tables, read back by the program's readers.
#include "core/folders.h"
#include "liveries/regcodes.h"
#include "tests/datakit/datakit_world.h"

namespace skl::test {

namespace {

class DatakitDatabase : public DatakitTest {};

TEST_F(DatakitDatabase, IsReadBackByTheProgram) {
    writeDatabaseTables();
    writeFile("fixes.csv", "wrong,right\nA32N,A320\nB77F,B77X\nA321,A320\nA32N,A321\n");
    writeFile("makers.csv", "name,aliases\nNorth & Co,\"north-co; north, inc\"\n");
    writeFile("sim.csv", "airport\nEGLL\n");
    writeFile("works.csv",
              "publisher,airport,stands,simulator\nNorth & Co,ENBR,37,2020\nNorth & "
              "Co,ENVA,58,2020\nWho,ENVA,1,2020\n");
    auto words = databaseCommand;
    words.insert(words.end(), {"--fixes", "fixes.csv", "--publishers", "makers.csv", "--simaddons", "sim.csv",
                               "--publications", "works.csv"});
    ASSERT_EQ(kit(words), 0) << said;
    gf_readDbaseXml("dbase.xml");
    EXPECT_EQ(aircraftTypes.size(), 7u);
    EXPECT_EQ(gf_category("B77L"), AcCategory::Heavy);
    EXPECT_EQ(gf_category("C56X"), AcCategory::Buzjets);
    EXPECT_EQ(gf_category("EC35"), AcCategory::Rotorcraft);
    EXPECT_EQ(gf_category("F16"), AcCategory::HighPerf);
    EXPECT_NEAR(gf_halfSpanNm("A320") * 1852, 17.05, 1e-6);
    EXPECT_EQ(similarRows, (std::vector<std::vector<std::string>>{{"A320", "A321"}}));
    EXPECT_EQ(cargoTypes, TypeSet{"B77L"});
    EXPECT_EQ(cargoOperators, TypeSet{"FDX"});
    EXPECT_EQ(gf_publisherOf("x/NORTH-co/y"), "North & Co");
    EXPECT_EQ(modelFixes.size(), 1u);
    EXPECT_EQ(simAddons20, TypeSet{"EGLL"});
    ASSERT_EQ(thirdParties20.size(), 1u);
    EXPECT_EQ(thirdParties20[0].arpts, (std::vector<std::string>{"ENBR37", "ENVA58"}));
    EXPECT_TRUE(gf_dbaseLookup("N851FD")->cargo);
    EXPECT_EQ(gf_dbaseLookup("DAIUA")->airl, "DLH");
    for (const char* text : {"fixes.csv:3: fix B77F to B77X", "fixes.csv:4: fix A321 to A320",
                             "fixes.csv:5: a second fix", "works.csv:4: 'Who' is no publisher"})
        EXPECT_TRUE(says(text)) << text << "\n" << said;
}

TEST_F(DatakitDatabase, WhatIsInconsistentIsReported) {
    writeDatabaseTables();
    writeFile("types.csv",
              "type,category,span,similar\nA320,large,34.1,A399\nA320,heavy,1,\nB738,large,,\nA319,large,,"
              "\nXX,odd,400,\n");
    writeFile("airlines.csv", "icao\nDLH\nToolong\n\n");
    writeFile("regs.csv",
              "registration,type,operator,airline\nD-AIUA,A320,,DLH\nDAIUA,A320,,DLH\nD-A,A399,,DLH\nPH-BXA,"
              "B738,KLM,\n"
              "PH-BXB,B738,KLM,KLM\nb?d,A320,,\nD-AIUB,a320,Lufthansa,DLH\n");
    ASSERT_EQ(kit(databaseCommand), 0) << said;
    for (const char* text :
         {"types.csv:2: type A320 is said to be similar to 'A399'",
          "types.csv:3: type A320 stands in types.csv:2 already",
          "types.csv:4: type B738 has no span and 2 aircraft: they take the mean",
          "types.csv:6: type XX: 'odd' is none of", "types.csv:6: type XX: '400' m",
          "airlines.csv:3: 'Toolong'", "regs.csv:3: DAIUA stands in regs.csv:2 already",
          "regs.csv:4: D-A: type 'A399' is not in", "regs.csv:5: PH-BXA: airline KLM is not in",
          "regs.csv:7: 'b?d'", "regs.csv:8: D-AIUB: 'Lufthansa' is no code", "nothing for the list 'heavy'",
          "1 unknown airlines"})
        EXPECT_TRUE(says(text)) << text << "\n" << said;
    EXPECT_FALSE(says("type A319 has no span")) << "nothing of that type flies";
    gf_readDbaseXml("dbase.xml");
    EXPECT_EQ(dbaseRecords.size(), 4u);
    EXPECT_EQ(gf_dbaseLookup("PH-BXA")->airl, "KLM") << "the operator's colours";
    EXPECT_EQ(gf_dbaseLookup("D-AIUB")->opr, "");
}

TEST_F(DatakitDatabase, TablesOfOtherMakersAreUnderstood) {
    writeDatabaseTables();
    writeFile(
        "regs.csv",
        "'registration','operator','operatoricao','typecode'\n'D-AIUA','Lufthansa, Cologne','DLH','A320'\n"
        "'D-AIUB','','BAW','A320',\n");
    writeFile("types.csv",
              "designator,description,wake\nA320,L2J,M\nB77L,L2J,H\nC172,L1P,L\nEC35,H2T,L\nZZZY,,\n");
    ASSERT_EQ(kit(databaseCommand), 0) << said;
    gf_readDbaseXml("dbase.xml");
    for (const auto& [type, category] : {std::pair{"A320", AcCategory::Large},
                                         {"B77L", AcCategory::Heavy},
                                         {"C172", AcCategory::Light},
                                         {"EC35", AcCategory::Rotorcraft}})
        EXPECT_EQ(gf_category(type), category) << type;
    EXPECT_TRUE(says("types.csv:2: type A320 has no span and 2 aircraft: no type has one")) << said;
    EXPECT_TRUE(says("types.csv:1: no column 'category'") && says("types.csv:6: type ZZZY: neither")) << said;
    EXPECT_EQ(gf_dbaseLookup("D-AIUA")->airl, "DLH") << "the code, not the name";
    EXPECT_TRUE(gf_dbaseLookup("D-AIUB")) << "a comma at the end of a row is no field";
    EXPECT_FALSE(says("regs.csv")) << said;
}

TEST_F(DatakitDatabase, TheOldFileStaysWhenThereIsNoNewOne) {
    writeDatabaseTables();
    writeFile("dbase.xml", "old");
    writeFile("airlines.csv", "icao\n");
    EXPECT_EQ(kit(databaseCommand), 1);
    EXPECT_TRUE(says("no airline in any table")) << said;
    fs::remove("regs.csv");
    EXPECT_EQ(kit(databaseCommand), 1);
    EXPECT_EQ(readFile("dbase.xml"), "old");
}

TEST_F(DatakitDatabase, RegistrationCodesAreReadBack) {
    writeFile("liveries.csv",
              "title,registrations,special\nAI B738 KLM,\"PH-BXC, PH-BXD\",\nAI B738 KLM,PH-BXE,\n"
              "AI <B738> \"Retro\",PH-BXA,yes\nNever this,,\nOther,PH-BXC,\n,PH-X,\n");
    ASSERT_EQ(kit({"regcodes", "--out", "input/AIG-regcodes.xml", "liveries.csv"}), 0) << said;
    gf_startLog();
    std::vector<RegcodeRow> rows;
    EXPECT_TRUE(gf_readAigRegcodes(rows));
    ASSERT_EQ(rows.size(), 3u);
    EXPECT_EQ(rows[0].regs, (std::vector<std::string>{"PH-BXC", "PH-BXD", "PH-BXE"}));
    EXPECT_EQ(rows[1].title, "AI <B738> \"Retro\"");
    EXPECT_TRUE(rows[1].special);
    EXPECT_TRUE(rows[2].regs.empty());
    EXPECT_TRUE(says("liveries.csv:6: PH-BXC is tied to 'AI B738 KLM' already")) << said;
    EXPECT_TRUE(says("liveries.csv:6: 'Other': none of its registrations is left"))
        << "that would forbid the title";
}

}  // namespace

}  // namespace skl::test
