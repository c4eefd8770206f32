// Lines and sections of aircraft.cfg. The line patterns are checked against regular expressions; each section
// case gives what comes of it and the lines that it adds to the reports.
#include "liveries/cfg_section.h"

#include <fmt/format.h>

#include <regex>

#include "core/parameters.h"
#include "liveries/cfg_file.h"
#include "liveries/livery_scan.h"
#include "liveries/reference_db.h"
#include "liveries/short_regs.h"
#include "tests/support/temp_folder.h"

namespace skl {
namespace {

using test::TempFolderTest;

std::vector<std::string_view> views(const std::vector<std::string>& lines) {
    return {lines.begin(), lines.end()};
}

class CfgSection : public TempFolderTest {
  protected:
    void SetUp() override {
        TempFolderTest::SetUp();
        gf_clearDbase();
        icaoAirlines = {"KLM", "DLH", "PVT", "ABCX"};
        aircraftTypes = {"B738", "B744", "C172", "A20N"};
        heavyTypes = {"B744"};
        modelFixes["B73H"] = "B738";
        dbaseRecords["PH-BXA"] = {.airl = "KLM", .type = "B738", .opr = "", .cargo = false};
        lf_addShortReg("N1AB");
        dontUseTitles = {"Banned"};
    }
    void TearDown() override {
        dontUseTitles.clear();
        gf_clearDbase();
        TempFolderTest::TearDown();
    }
};

TEST(CfgLine, MatchesLikeTheExpression) {
    const std::regex expression(R"(\s*(title)\s*=\s*(.*\S)\s*)");
    for (const std::string line : {"title=A",
                                   "  title = A B \t",
                                   "\ttitle\t=\vA\f",
                                   "title=",
                                   "title=   ",
                                   "title==A",
                                   "title A",
                                   "subtitle=A",
                                   "Title=A",
                                   "title1=A",
                                   "title=A\rB",
                                   "title=\rA\r",
                                   "title=\"\"",
                                   " = A",
                                   "title",
                                   "",
                                   "title=a;b",
                                   "//title=A",
                                   "title = \xC3\xA9 ",
                                   "title=A\nB",
                                   "title=\xA0"}) {
        std::smatch match;
        const bool expected = std::regex_match(line, match, expression);
        const auto value = lf_keyValue(line, "title");
        ASSERT_EQ(value.has_value(), expected) << '"' << line << '"';
        EXPECT_EQ(value.value_or(""), expected ? match[2].str() : "") << '"' << line << '"';
    }
}

TEST(CfgLine, HeadersLikeTheExpression) {
    const std::regex expression(R"(\s*(\[fltsim\.)(\d+)\]\s*)");
    for (const std::string line :
         {"[fltsim.0]", " \t[fltsim.12] ", "[fltsim.]", "[fltsim.1] ; x", "[FLTSIM.1]", "[Fltsim.1]",
          "//[fltsim.1]", " //[fltsim.1]", "[fltsim.1", "x[fltsim.1]", "[fltsim.99999999999]", "[fltsim.1]]",
          "[fltsim.-1]", "[general]", "", "fltsim.1"}) {
        std::smatch match;
        std::string expected = "none";
        if (line.starts_with("//"))
            expected = "none";
        else if (std::regex_match(line, match, expression))
            expected = match[2];
        else if (line.find("[fltsim.") != line.npos || line.find("[FLTSIM.") != line.npos)
            expected = "10000";
        EXPECT_EQ(lf_sectionNumber(line).value_or("none"), expected) << '"' << line << '"';
    }
}

TEST(CfgLine, PlainValues) {
    const std::pair<const char*, const char*> cases[] = {
        {"B738", "B738"}, {"\"B738\"", "B738"}, {"\" B738 \" ; comment", "B738"},
        {"\"\"", ""},     {"\"unclosed", ""},   {"a \"b\" c", "a \"b\" c"},
        {"\" \"", ""},    {"\"a\" \"b\"", "a"},
    };
    for (const auto& [value, plain] : cases) EXPECT_EQ(lf_plainValue(value), plain) << value;
}

TEST(CfgLine, SectionsBeginAndEnd) {
    const std::vector<std::string> lines{"junk",  "[fltsim.0]", "a",           "     [x",
                                         "lost",  "[fltsim.1]", "      [kept", "[FLTSIM.2] x",
                                         "// [c", "gone",       "[fltsim.3]"};
    const auto lineViews = views(lines);
    for (const auto& [end, expected] :
         {std::pair(SectionEnd::bracketInFirstSix,
                    std::string("[fltsim.0] a |[fltsim.1]       [kept |[FLTSIM.2] x |[fltsim.3] |")),
          std::pair(SectionEnd::bracketAnywhere,
                    std::string("[fltsim.0] a |[fltsim.1] |[FLTSIM.2] x |[fltsim.3] |"))}) {
        std::string seen;
        lf_walkSections(lineViews, end, [&seen](CfgLines section) {
            for (const auto line : section) seen.append(line).append(" ");
            seen += '|';
        });
        EXPECT_EQ(seen, expected);
    }
}

struct SectionCase {
    const char* what;
    const char* model;
    std::vector<std::string> lines;
    std::string livery;                ///< airline|title|regcode|cargo, or empty
    std::vector<std::string> reports;  ///< "f" is the file
};

std::string described(const LiveryData& livery) {
    if (livery.title.empty()) return "";
    return fmt::format("{}|{}|{}|{}", livery.airline, livery.title, livery.regcode,
                       livery.cargo ? "cargo" : "pax");
}

std::vector<std::string> allReports(ScanReports& reports) {
    auto lines = std::move(reports.invalidAirlines);
    lines.insert(lines.end(), reports.incompleteSections.begin(), reports.incompleteSections.end());
    return lines;
}

TEST_F(CfgSection, NormalSections) {
    const std::string head = "f [fltsim.0]";
    const std::string noAirline = head + " icao_airline is missing, or it has invalid info ";
    const SectionCase cases[] = {
        {"all keys",
         "B738",
         {"title = A ", "icao_airline=klm", "atc_parking_types=Cargo", "atc_id=PH-BXA"},
         "KLM|A|PH-BXA|cargo",
         {}},
        {"quotes and comments",
         "B738",
         {"title=\"A b\" ; c", "icao_airline=\"KLM\";x", "atc_id=\"PH-BXB\"",
          "atc_parking_types=\"CARGO,GATE\""},
         "KLM|A b|PH-BXB|pax",
         {}},
        {"fourth letter X", "B738", {"title=A", "icao_airline=KLMX"}, "KLM|A||pax", {}},
        {"fourth letter C", "B738", {"title=A", "icao_airline=KLMC"}, "KLM|A||pax", {}},
        {"another fourth letter",
         "C172",
         {"title=A", "icao_airline=KLMA"},
         "PVT|A||pax",
         {"KLMA         in f [fltsim.0]", noAirline}},
        {"generic loses its registration",
         "B744",
         {"title=A", "icao_airline=zzzz", "atc_id=PH-BXA"},
         "ZZZ|A||pax",
         {}},
        {"empty airline is generic", "B744", {"title=A", "icao_airline=\"\""}, "ZZZ|A||pax", {}},
        {"bare airline is none",
         "C172",
         {"title=A N1AB", "icao_airline="},
         "PVT|A N1AB|N1AB|pax",
         {noAirline}},
        {"RFO", "B738", {"title=A", "icao_airline=RFO"}, "", {}},
        {"airline of the database", "B738", {"title=A", "atc_id=PHBXA"}, "KLM|A|PHBXA|pax", {noAirline}},
        {"heavy, registration unknown",
         "B744",
         {"title=A", "atc_id=PH-XXX"},
         "",
         {noAirline, "'f' '[fltsim.0]' has no airline and regcode not in dbase"}},
        {"heavy, nothing known",
         "B744",
         {"title=A"},
         "",
         {noAirline, "'f' '[fltsim.0]' has no airline and no regcode info"}},
        {"private with registration", "C172", {"title=A", "atc_id=PH-XXX"}, "PVT|A|PH-XXX|pax", {noAirline}},
        {"no title", "B738", {"icao_airline=KLM"}, "", {head + " misses title"}},
        {"mixed case is no key", "B738", {"Title=A", "icao_airline=KLM"}, "", {head + " misses title"}},
        {"two titles", "B738", {"title=A", "title=B"}, "", {head + " has more than one title key"}},
        {"two airlines",
         "B738",
         {"title=A", "icao_airline=KLM", ";icao_airline"},
         "",
         {head + " has more than one icao_airline key"}},
        {"two parking types",
         "B738",
         {"title=A", "atc_parking_types=GATE", "x atc_parking_types"},
         "",
         {head + " has more than one atc_parking_types key"}},
        {"two registrations",
         "B738",
         {"title=A", "atc_id=PH-BXA", "x atc_id="},
         "",
         {"f, [fltsim.0], has more than one atc_id key"}},
        {"list of registrations",
         "B738",
         {"title=A", "icao_airline=KLM", "atc_id=PH-AAA,PH-AAB"},
         "KLM|A||pax",
         {}},
        {"cut at the semicolon",
         "B738",
         {"title=A", "icao_airline=KLM", "atc_id=PH-AAA ;x,*"},
         "KLM|A|PH-AAA|pax",
         {}},
        {"short registration is no match",
         "B738",
         {"title=A", "icao_airline=KLM", "atc_id=AB12", "atc_id=PH-AAA"},
         "KLM|A|PH-AAA|pax",
         {}},
        {"wild registration",
         "B738",
         {"title=A", "icao_airline=KLM", "atc_id=PH-A*"},
         "KLM|A||pax",
         {"invalid atc_id=PH-A* in: A"}},
        {"long piece",
         "B738",
         {"title=A", "icao_airline=KLM", "atc_id=PH-AAA,1234567890123"},
         "KLM|A||pax",
         {"invalid atc_id=PH-AAA,1234567890123 in: A"}},
        {"empty piece",
         "B738",
         {"title=A", "icao_airline=KLM", "atc_id=PH-AAA,"},
         "KLM|A||pax",
         {"invalid atc_id=PH-AAA, in: A"}},
        {"other makers' aircraft", "B738", {"title=PMDG 737-800 x"}, "", {}},
        {"stub at the end", "B738", {"title=A-STUB", "icao_airline=KLM"}, "", {}},
        {"stub in the middle", "B738", {"title=A-STUB 2", "icao_airline=KLM"}, "KLM|A-STUB 2||pax", {}},
        {"banned title", "B738", {"title=Banned", "icao_airline=KLM"}, "", {}},
        {"trailing comments",
         "B738",
         {"title=A", "icao_airline=KLM", "", "// icao_airline", ""},
         "KLM|A||pax",
         {}},
    };
    SUPPRESS_STUB.value = true;
    for (auto test : cases) {
        test.lines.insert(test.lines.begin(), "[fltsim.0]");
        ScanReports reports;
        const auto livery = lf_procesFltSimSection(3, views(test.lines), test.model, "f", reports);
        EXPECT_EQ(described(livery), test.livery) << test.what;
        EXPECT_EQ(allReports(reports), test.reports) << test.what;
        EXPECT_EQ(livery.model, test.livery.empty() ? "" : test.model) << test.what;
    }
    SUPPRESS_STUB.value = false;
    const std::vector<std::string> stub{"[fltsim.0]", "title=A-STUB", "icao_airline=KLM"};
    ScanReports reports;
    EXPECT_EQ(lf_procesFltSimSection(1, views(stub), "B738", "f", reports).title, "A-STUB");
}

TEST_F(CfgSection, IvaoSections) {
    std::filesystem::create_directories("ivao/Texture.KLM");
    const SectionCase cases[] = {
        {"airline in the title",
         "B738",
         {"title=B738 KLM blue", "texture=KLM"},
         "KLM|B738 KLM blue||pax",
         {}},
        {"no blank needed",
         "B738",
         {"title=B738KLM", "texture=KLM", "atc_parking_types=CARGO"},
         "KLM|B738KLM||pax",
         {}},
        {"generic", "B738", {"title=B738 ZZZ", "texture=KLM", "atc_id=PH-BXA"}, "ZZZ|B738 ZZZ||pax", {}},
        {"unknown airline", "B738", {"title=B738 QQQ", "texture=KLM"}, "", {"QQQ          in f [fltsim.0]"}},
        {"by the database",
         "B738",
         {"title=Blue", "texture=KLM", "atc_id=PH-BXA"},
         "KLM|Blue|PH-BXA|pax",
         {}},
        {"registration unknown",
         "B738",
         {"title=Blue", "texture=KLM", "atc_id=PH-XXX"},
         "",
         {"f [fltsim.0] misses airlinecode in title: Blue, and regcode unknown PH-XXX"}},
        {"no registration",
         "B738",
         {"title=B738 K-M", "texture=KLM"},
         "",
         {"f [fltsim.0] misses airlinecode in title: B738 K-M, and no regcode"}},
        {"no cut at the semicolon",
         "B738",
         {"title=B738 KLM", "texture=KLM", "atc_id=PH-BXA;x*"},
         "KLM|B738 KLM||pax",
         {"invalid atc_id=PH-BXA;x* in B738 KLM"}},
        {"no texture folder", "B738", {"title=B738 KLM", "texture=DLH"}, "", {"f [fltsim.0] does not exist"}},
        {"impossible texture name",
         "B738",
         {"title=B738 KLM", "texture=" + std::string(300, 'x')},
         "",
         {"f [fltsim.0] does not exist"}},
        {"no title", "B738", {"texture=KLM", "icao_airline=RFO"}, "", {"f [fltsim.0] misses title"}},
        {"spaces in quotes", "B738", {"title=\" B738 KLM \"", "texture=KLM"}, "KLM|B738 KLM||pax", {}},
    };
    for (auto test : cases) {
        test.lines.insert(test.lines.begin(), "[fltsim.0]");
        ScanReports reports;
        EXPECT_EQ(described(lf_procesIvaoSection(1, views(test.lines), test.model, "f", "ivao", reports)),
                  test.livery)
            << test.what;
        EXPECT_EQ(allReports(reports), test.reports) << test.what;
    }
    EXPECT_EQ(test::logCount("removed spaces around title ' B738 KLM ' --> 'B738 KLM'"), 1);
    const std::vector<std::string> winglets{"[fltsim.0]", "title=B738W KLM", "texture=KLM"};
    ScanReports reports;
    EXPECT_EQ(lf_procesIvaoSection(1, views(winglets), "B738", "x/IVAO_B738WLfa/f", "ivao", reports).airline,
              "KLM");
}

TEST_F(CfgSection, ModelOfNormalFile) {
    struct Case {
        const char* path;
        std::vector<std::string> lines;
        const char* model;
        const char* report;
    };
    const Case cases[] = {
        {"f", {"icao_type_designator=\"\"", "icao_type_designator = b738x"}, "B738", ""},
        {"f", {"base_container=\"..\\Asobo_A320_NEO\"", "icao_type_designator=C172"}, "C172", ""},
        {"f", {"base_container=\"..\\Asobo_A320_NEO\""}, "A20N", ""},
        {"f", {"base_container=../b738"}, "B738", ""},
        {"f", {"base_container=..\\"}, "", "Line icao_type_designator= is missing in [General] section of f"},
        {"f", {"icao_type_designator=b73h"}, "B738", "Model fix: B73H found in f changed into B738"},
        {"f", {"icao_type_designator=XYZ"}, "", "XYZ              in f"},
        {"f", {}, "", "Line icao_type_designator= is missing in [General] section of f"},
        {"a/pmdg-aircraft-738/f", {}, "", ""},
        {"a/fnx-aircraft-320/f", {}, "", ""},
    };
    for (const auto& test : cases) {
        ScanReports reports;
        EXPECT_EQ(lf_modelOfFile(views(test.lines), test.path, reports), test.model) << test.report;
        std::string seen;
        for (const auto* list : {&reports.modelFixLines, &reports.invalidModels, &reports.invalidCfgFiles})
            for (const auto& line : *list) seen += line;
        EXPECT_EQ(seen, test.report);
    }
}

TEST_F(CfgSection, ModelOfIvaoPathLikeTheExpression) {
    const std::regex expression(
        R"(.+[\\/](IVAO_MTL|ivao_x-csl)[\\/]SimObjects[\\/]Airplanes[\\/]IVAO_(\w+)[\\/]aircraft.cfg$)");
    for (const std::string path :
         {"/c/IVAO_MTL/SimObjects/Airplanes/IVAO_B738WLfa/aircraft.cfg",
          "C:\\x\\ivao_x-csl\\SimObjects\\Airplanes\\IVAO_B738\\aircraft.cfg",
          "/IVAO_MTL/SimObjects/Airplanes/IVAO_B738/aircraft.cfg",
          "x/IVAO_MTL/SimObjects/Airplanes/B738/aircraft.cfg",
          "x/IVAO_MTL/SimObjects/Airplanes/IVAO_B7-8/aircraft.cfg",
          "IVAO_MTL/SimObjects/Airplanes/IVAO_B738/aircraft.cfg",
          "x/IVAO_MTL/SimObjects/Airplanes/IVAO_B738/AIRCRAFT.CFG",
          "x/IVAO_MTL/Airplanes/IVAO_B738/aircraft.cfg", "x/IVAO_MTL/SimObjects/Airplanes/IVAO_/aircraft.cfg",
          "x/other/SimObjects/Airplanes/IVAO_B738/aircraft.cfg",
          "x/IVAO_MTL/SimObjects/Airplanes/IVAO_B738/aircraft-cfg", "aircraft.cfg", ""}) {
        ScanReports reports;
        std::smatch match;
        const bool expected = std::regex_match(path, match, expression);
        EXPECT_EQ(lf_modelOfIvaoPath(path, reports), expected ? match[2].str().substr(0, 4) : "") << path;
        EXPECT_EQ(reports.invalidModels,
                  expected ? std::vector<std::string>() : std::vector{"                 in " + path});
    }
}

}  // namespace
}  // namespace skl
