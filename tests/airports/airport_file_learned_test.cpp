// The learned file: what it lays over the archived one, what it keeps for the airport, and its way to the
// disk and back.
#include <filesystem>
#include <pugixml.hpp>

#include "core/errors.h"
#include "core/parameters.h"
#include "panel/panel_state.h"
#include "panel/traffic_range.h"
#include "tests/airports/airport_file_world.h"

namespace skl::test {

namespace {

namespace fs = std::filesystem;

class LearnedFileTest : public AirportFileTest {
  protected:
    const std::string archived = apf(usualRows + ";Qf_real=80",
                                     parkpos("A1", R"(radius="20" cargo="true")",
                                             R"(<opt reg="R1" airl="KLM" type="B738" day="1" hh="4,5"/>)") +
                                         R"(<parkpos id="A2" latitude="52.01" longitude="4" radius="30"/>)");
};

TEST_F(LearnedFileTest, IsLaidOverTheArchivedOne) {
    const std::string learned =
        apf("airport_name=Amsterdam",
            parkpos("A1", R"(radius_change="true" radius="50" cargo="false")",
                    R"(<opt reg="R1" airl="KLM" type="B738" day="1" hh="5,6"/>
                   <opt reg="R1" airl="KLM" type="B738" day="1" hh="6,7"/>
                   <opt reg="R1" airl="KLM" type="B738" day="1" hh="7"/>
                   <opt reg="R1" airl="KLM" type="B738" day="2" hh="5"/>
                   <opt reg="R1" airl="KLM" type="B738" day="1" hh="5" soft="true"/>
                   <opt reg="R2" airl="KLM" type="B738" day="1" hh="5"/>
                   <opt reg="R1" airl="TRA" type="B738" day="1" hh="5"/>
                   <opt reg="R1" airl="KLM" type="B737" day="1" hh="5"/>)") +
                R"(<parkpos id="A2" cargo_change="true" cargo="true" radius="99"/><parkpos id="gone"/>
               <parkpos id="A2" radius_change="true" radius="wide"/>
               <parkpos id="A2" manual="true" latitude="52" longitude="4" radius="10"/>
               <parkpos id="M0" manual="true" latitude="0.00005" longitude="0.00005" radius="10"/>
               <parkpos id="M1" manual="true" latitude="52" longitude="4"/>
               <parkpos id="M2" manual="true" latitude="52.02" longitude="0" radius="10">
                 <opt reg="R9" day="1" hh="1"/></parkpos>
               <parkpos id="M2" manual="true" latitude="53" longitude="5" radius="10"/>)");
    ASSERT_EQ(read(archived, learned), "");
    EXPECT_EQ(standTexts(),
              "1:A1 50.0m 0deg cargo radius+\n2:A2 30.0m 0deg cargo cargo+\n"
              "3:M2 10.0m 0deg manual\n");
    // Behind the archived one "6,7", which then stands in the way of "7", and those that differ in one thing.
    EXPECT_EQ(optionTexts(0),
              "1:R1 KLM B738 day 1 hh 4,5 cs : real archived\n2:R1 KLM B738 day 1 hh 6,7 cs : real learned\n"
              "3:R1 KLM B738 day 2 hh 5 cs : real learned\n4:R1 KLM B738 day 1 hh 5 cs : soft learned\n"
              "5:R2 KLM B738 day 1 hh 5 cs : real learned\n6:R1 TRA B738 day 1 hh 5 cs : real learned\n"
              "7:R1 KLM B737 day 1 hh 5 cs : real learned\n");
    EXPECT_EQ(optionTexts(2), "1:R9   day 1 hh 1 cs : real learned\n");
    EXPECT_EQ(quality, gf_qualityFactors(read_)) << "not the archived row";
    for (const char* line : {"learned stand gone in ", "manually created standid A2 already exists in ",
                             "manually created standid M2 already exists in ",
                             "manually created standid M0 misses correct attributes in ",
                             "manually created standid M1 misses correct attributes in "})
        EXPECT_EQ(logCount(line + learnedName), 1) << line;
    EXPECT_EQ(gf_panelText(&PanelState::statusText),
              "Warning: learned file airport name: 'Amsterdam' differs from archived file airport name: "
              "'Schiphol'");
}

TEST_F(LearnedFileTest, HandmadeReplacesTheArchivedStands) {
    const std::string learned = apf("handmade=true;altitude=900;publisher=me;airport_name=Schiphol",
                                    parkpos("A1", "", R"(<opt reg="X" day="1" hh="1"/>)") + parkpos("H1"));
    ASSERT_EQ(read(archived, learned), "");
    EXPECT_EQ(standTexts(), "1:A1 0.0m 0deg\n2:H1 0.0m 0deg\n") << "A1 of the archived file is no double";
    EXPECT_EQ(optionTexts(0), "1:X   day 1 hh 1 cs : real archived\n");
    EXPECT_TRUE(file.handmade);
    EXPECT_EQ(std::to_string(file.altitude) + file.publisher, "-11Zeta Works");
    EXPECT_TRUE(logHas("Airport file read from '" + learnedName + "' for Schiphol"));
    // Doubled names end the run as those of an archived file do; a copy stays.
    EXPECT_THROW(read(archived, apf("handmade=true", parkpos("H1") + parkpos("H1"))), UserErrorException);
    EXPECT_TRUE(fs::exists("airports/learned/thirdparty/Zeta Works/EHAM0.xml"));
}

TEST_F(LearnedFileTest, ABrokenOneIsKeptAsACopyAndTheArchivedDataStand) {
    std::string whole = apf(usualRows, parkpos("A1", R"(radius_change="true" radius="50")"));
    for (size_t size : {size_t{0}, whole.size() / 2, whole.size() - 8}) {
        const std::string cut = whole.substr(0, size);
        ASSERT_EQ(read(archived, "x"), "");  // never the copy of the case before
        writeFile(learnedName, cut);
        ASSERT_EQ(read(), "");
        EXPECT_EQ(standTexts(), "1:A1 20.0m 0deg cargo\n2:A2 30.0m 0deg\n") << size;
        EXPECT_EQ(readFile("airports/learned/thirdparty/Zeta Works/EHAM0.xml"), cut);
    }
    EXPECT_EQ(logCount(learnedName + " found, but could not be loaded, saved as *.0.xml: "), 6);
}

TEST_F(LearnedFileTest, SettingsOfTheAirportAreApplied) {
    const auto state = [] {
        return fmt::format("{} {} {} {} {} {} {}/{} {} {} {}", RANGE.value.load(), AUTO_RANGE.value.load(),
                           WEEK.value.load(), PARK_FAKE.value.load(), PARK_SOFT.value.load(),
                           parking_percentage.value.load(), MAX_FIT.value.load(), MAX_FIT_FL.value.load(),
                           INITIAL_LOAD_ONLY.value.load(), MAX_LIVE_SEL.value.load(),
                           LEARN_SOFT.value.load());
    };
    const struct {
        const char *rows, *after;
    } cases[] = {
        // Without rows all stays but for the percentage; the limit of live aircraft stays the user's.
        {"MAX_LIVE=all", "40 true false false true 30 47/24 false 50 true"},
        {"LATERAL_RANGE=23;AUTO_RANGE=0;WEEK=27;PARK_FAKE=yes;PARK_SOFT=false;parking_percentage=101;"
         "INITIAL_LOAD_ONLY=T;MAX_FIT=13;MAX_LIVE=299;LEARN_SOFT=no",
         "25 false false true false 100 13/7 true 100 false"},
        {"LATERAL_RANGE=7;WEEK=true;MAX_LIVE=300;MAX_FIT=99;parking_percentage=-4",
         "8 true true false true 0 47/24 false 500 true"},
        {"MAX_LIVE=0;parking_percentage=many;MAX_FIT=-1;LATERAL_RANGE=1000",
         "100 true false false true 30 0/0.5 false 0 true"},
    };
    for (const auto& each : cases) {
        gf_resetParameters();
        gf_applyRange(40);
        MAX_LIVE_SEL.value = 50;
        parking_percentage.value = 77;
        ASSERT_EQ(read(archived, apf(std::string("airport_name=Schiphol;") + each.rows, "")), "");
        EXPECT_EQ(state(), each.after) << each.rows;
        EXPECT_EQ(rangeNm, RANGE.value);
        EXPECT_NE(RANGE.enabled, AR_ABOVE_HEIGHT.enabled);
    }
    EXPECT_TRUE(logHas("LATERAL_RANGE           : 25"));
    EXPECT_TRUE(logHas("MAX_FIT                 : 13 (max number of half hours, is 7 hrs decimal)"));
}

/// A document written: its rows up to the settings, which are told apart, and its stands as they are.
std::string writtenText(const fs::path& path) {
    pugi::xml_document document;
    document.load_file(path.c_str());
    std::string rows;
    for (const auto& row : document.child("parameters").children()) {
        const std::string name = row.attribute("name").value();
        if (name == "LATERAL_RANGE") break;
        rows += name + "=" + row.attribute("value").value() + ";";
    }
    const std::string text = readFile(path);
    return rows + text.substr(text.find("<parkpositions>") + 15);
}

TEST_F(LearnedFileTest, WhatIsWrittenIsReadBack) {
    dbaseRecords["PH-BXA"] = {.airl = "KLM", .type = "B738"};
    ASSERT_EQ(read(archived, ""), "");
    StandOption known{.airl = "KLM", .type = "B738", .reg = "PH-BXA", .cs = "KL1", .cs2 = "KL2"};
    StandOption other{.airl = "A&<", .type = "B\"38", .hours = 2, .optionId = 2, .day = 1};
    known.hours = 1ull << 47 | 1;
    known.day = 7;
    known.optionId = 1;
    known.real = true;
    AirportFile saved = file;
    Stand changed = read_[0], manual = read_[1];
    changed.options = {known, other, StandOption{.reg = "spent", .hours = 2, .day = 1}};
    changed.radiusChanged = changed.cargoChanged = true;
    changed.radius = 25.04 / 1852;
    changed.cargo = false;
    manual.id = "M1";
    manual.manual = manual.heli = true;
    manual.heading = 1;
    saved.stands = {changed, read_[1], manual};
    RANGE.value = 12;
    WEEK.value = true;
    MAX_LIVE_SEL.value = 75;
    parking_percentage.value = 55;
    fs::create_directories(file.learnedPath.parent_path());
    ASSERT_TRUE(gf_writeApf(saved, file.learnedPath, ApfMode::learned));
    EXPECT_TRUE(readFile(learnedName).find(R"("WEEK" value="27")") != std::string::npos);
    EXPECT_EQ(writtenText(learnedName), R"(airport_name=Schiphol;publisher=Zeta Works;num_parkpos=2;
	<parkpos id="A1" radius_change="true" radius="25.0" cargo_change="true" cargo="false">
		<opt reg="PH-BXA" day="7" hh="0,47" cs="KL1:KL2" />
		<opt reg="" airl="A&amp;&lt;" type="B&quot;38" soft="true" day="1" hh="1" />
	</parkpos>
	<parkpos id="M1" latitude="52.010000" longitude="4.000000" heading="57.3" radius="30.0" heli="true" ramp="false" manual="true" />
</parkpositions>
)");
    gf_resetParameters();
    ASSERT_EQ(read(), "");
    EXPECT_EQ(standTexts(),
              "1:A1 25.0m 0deg radius+ cargo+\n2:A2 30.0m 0deg\n3:M1 30.0m 57deg heli manual\n");
    EXPECT_EQ(optionTexts(0),
              "1:R1 KLM B738 day 1 hh 4,5 cs : real archived\n"
              "2:PH-BXA KLM B738 day 7 hh 0,47 cs KL1:KL2 real learned\n"
              "3: A&< B\"38 day 1 hh 1 cs : soft learned\n");
    EXPECT_EQ(fmt::format("{} {} {} {}", RANGE.value.load(), MAX_LIVE_SEL.value.load(),
                          parking_percentage.value.load(), WEEK.value.load()),
              "12 75 55 false");
}

TEST_F(LearnedFileTest, GeneratedAndHandmadeFilesHoldStandsInFull) {
    ASSERT_EQ(read(archived, ""), "");
    const std::string full =
        R"(	<parkpos id="A1" latitude="52.000000" longitude="4.000000" heading="0.0" radius="20.0" cargo="true" ramp="false")";
    const std::string generated =
        "airport_name=Schiphol;publisher=unknown;altitude=-11;num_parkpos=1;BGLpath=;"
        "manufacturer=;creator=me;\n" +
        full + " />\n</parkpositions>\n";
    const std::string handmade =
        "airport_name=Schiphol;publisher=Zeta Works;handmade=true;altitude=-11;"
        "num_parkpos=1;Qf_real=80;Qf_soft=-1;\n" +
        full +
        ">\n\t\t<opt reg=\"R1\" airl=\"KLM\" type=\"B738\" day=\"1\" hh=\"4,5\" />\n"
        "\t</parkpos>\n</parkpositions>\n";
    AirportFile saved = file;
    saved.stands = {read_[0]};
    saved.handmade = true;
    ASSERT_TRUE(gf_writeApf(saved, "handmade.xml", ApfMode::learned));
    EXPECT_EQ(writtenText("handmade.xml"), handmade);
    saved.publisher = "unknown";
    saved.creator = "me";
    ASSERT_TRUE(gf_writeApf(saved, "generated.xml", ApfMode::generated));
    EXPECT_EQ(writtenText("generated.xml"), generated);
    EXPECT_FALSE(gf_writeApf(saved, "no/such/folder.xml", ApfMode::learned));
}

#ifdef _WIN32
TEST_F(LearnedFileTest, NoNameLeadsToAnotherDriveOrStream) {
    EXPECT_EQ(gf_learnedPath("airports/my_thirdparty/EHAM.xml", "Zeta: \"Big|Small\"").generic_string(),
              "airports/learned/thirdparty/Zeta BigSmall/EHAM.xml");
    test::writeFile("airports/my_thirdparty/EHAM.txt", "C:\\elsewhere\\EHAM.xml");
    EXPECT_EQ(gf_findAirportFile("EHAM"), "");
    EXPECT_TRUE(test::logHas("leads out of the archive"));
}
#endif

}  // namespace

}  // namespace skl::test
