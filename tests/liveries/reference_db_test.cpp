#include "liveries/reference_db.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <chrono>
#include <stdexcept>

#include "core/errors.h"
#include "distribution/cipher_key.h"
#include "distribution/stream_cipher.h"
#include "tests/support/temp_folder.h"

namespace skl {
namespace {

using test::logCount;
using test::logHas;
using test::writeFile;
namespace fs = std::filesystem;

constexpr double halfNm(double metres) {
    return metres / 2 / 1852;
}

/// The sections of a small database, each of which a test may replace or leave out.
struct SmallDbase {
    std::map<std::string, std::string> sections = {
        {"dbase", R"(<db reg="PH-BXA" airl="KLM" type="B738"/>
                     <db reg="N123AB" airl="FDX" type="B77W" opr="UAL" cargo="true"/>
                     <db reg="B-KPA" airl="CPA" type="B77W" cargo="no"/>)"},
        {"aircrafts",
         R"(<aircraft types=" A320, B738 ,B77W"/><aircraft types="C172,EC35,F16,C56X,A388,,"/>)"},
        {"high_performance", R"(<hpf types="F16"/>)"},
        {"heavy", "<hvy types=\"\tB77W,\nA388\"/>"},
        {"large", R"(<lar types="A320"/><lar types="B738"/>)"},
        {"buzjet", R"(<bzj types="C56X"/>)"},
        {"rotorcraft", R"(<rot types="EC35"/>)"},
        {"cargo_types", R"(<cargo_type types="B77W"/>)"},
        {"similar_types", R"(<similar types="B738, A320"/><similar types="C172,A320,B77W"/>)"},
        {"ICAO_airlines", R"(<ICAO codes="KLM,FDX,UAL"/>)"},
        {"cargo_operators", R"(<ICAO codes="FDX"/>)"},
        {"publishers", R"(<pub names="Zeta Works, zeta-w"/><pub names="Alpha Fields, alphaf"/>)"},
        {"wingspans", R"(<wingspan type="A320" meters="34.1"/><wingspan type="B77W" meters="64.8"/>)"},
        {"fixes", R"(<fx wro="B73H" cor="B738"/>)"},
        {"simaddons20", R"(<simaddon20 arpts="EHAM, EGLL"/>)"},
        {"thirdparties20", R"(<thirdpartie20 pub="Zeta Works" arpts="EDDM,EDDF"/>)"},
        {"thirdparties24", R"(<thirdpartie24 pub="Alpha Fields" arpts="LSZH"/>)"},
    };
    std::string text() const {
        std::string all = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
        for (const auto& [name, body] : sections) all += fmt::format("<{0}>{1}</{0}>\n", name, body);
        return all;
    }
};

class ReferenceDb : public test::TempFolderTest {
  protected:
    void SetUp() override {
        TempFolderTest::SetUp();
        fs::create_directory("input");
        gf_clearDbase();
    }
    static void encipher(const std::string& text) {
        writeFile("plain.xml", text);
        gf_streamEncrypt(cipherKey, "plain.xml", "input/dbase.enc");
    }
    static void read(const SmallDbase& dbase) {
        writeFile("plain.xml", dbase.text());
        gf_readDbaseXml("plain.xml");
    }
    static void readSection(const std::string& section, const std::string& body) {
        SmallDbase dbase;
        dbase.sections[section] = body;
        read(dbase);
    }
};

TEST_F(ReferenceDb, ReadsEverySectionOfAnEncipheredFile) {
    encipher(SmallDbase().text());
    EXPECT_TRUE(gf_readDbase());
    EXPECT_FALSE(fs::exists("input/dbase.xml"));

    EXPECT_EQ(aircraftTypes, (TypeSet{"A320", "A388", "B738", "B77W", "C172", "C56X", "EC35", "F16"}));
    EXPECT_EQ(heavyTypes, (TypeSet{"A388", "B77W"}));
    EXPECT_EQ(largeTypes, (TypeSet{"A320", "B738"}));
    EXPECT_EQ(cargoTypes, (TypeSet{"B77W"}));
    EXPECT_EQ(icaoAirlines, (TypeSet{"FDX", "KLM", "UAL"}));
    EXPECT_EQ(cargoOperators, (TypeSet{"FDX"}));
    EXPECT_EQ(simAddons20, (TypeSet{"EGLL", "EHAM"}));
    using Rows = std::vector<std::vector<std::string>>;
    EXPECT_EQ(similarRows, (Rows{{"A320", "B738"}, {"A320", "B77W", "C172"}}));
    EXPECT_EQ(publisherRows, (Rows{{"Alpha Fields", "alphaf"}, {"Zeta Works", "zeta-w"}}));
    EXPECT_EQ(modelFixes.at("B73H"), "B738");
    ASSERT_EQ(thirdParties20.size(), 1u);
    EXPECT_EQ(thirdParties20[0].pub, "Zeta Works");
    EXPECT_EQ(thirdParties20[0].arpts, (std::vector<std::string>{"EDDM", "EDDF"}));
    ASSERT_EQ(thirdParties24.size(), 1u);
    EXPECT_EQ(thirdParties24[0].pub, "Alpha Fields");

    const auto record = gf_dbaseLookup("N123AB");
    ASSERT_TRUE(record);
    EXPECT_EQ(record->airl, "FDX");
    EXPECT_EQ(record->type, "B77W");
    EXPECT_EQ(record->opr, "UAL");
    EXPECT_TRUE(record->cargo);
    EXPECT_FALSE(gf_dbaseLookup("B-KPA")->cargo);
    EXPECT_TRUE(logHas("3 dbase records read"));
    EXPECT_TRUE(logHas("   2 publishers"));
    EXPECT_FALSE(logHas("===>"));

    EXPECT_TRUE(gf_readDbase()) << "a second read starts from empty tables";
    EXPECT_EQ(publisherRows.size(), 2u);
}

TEST_F(ReferenceDb, EveryCategoryAndTheEarlierOneOfTwo) {
    SmallDbase dbase;
    dbase.sections["heavy"] = R"(<hvy types="B77W,A320,C56X"/>)";
    dbase.sections["buzjet"] = R"(<bzj types="C56X,EC35"/>)";
    dbase.sections["high_performance"] = R"(<hpf types="F16,A388,EC35"/>)";
    read(dbase);
    const std::pair<const char*, const char*> cases[] = {
        {"A320", "Large"},                        // also heavy
        {"B77W", "Heavy"},    {"C56X", "Heavy"},  // also business jet
        {"EC35", "Buzjets"},                      // also rotorcraft and high performance
        {"A388", "HighPerf"}, {"C172", "Light"}, {"NONE", "Light"}, {"", "Light"},
    };
    for (const auto& [type, name] : cases) EXPECT_STREQ(gf_categoryName(gf_category(type)), name) << type;
    read(SmallDbase());
    EXPECT_EQ(gf_category("EC35"), AcCategory::Rotorcraft);
}

TEST_F(ReferenceDb, TypesAndAirlinesAreMembersByCase) {
    readSection("ICAO_airlines", R"(<ICAO codes=",KLM,"/>)");
    EXPECT_TRUE(gf_isAircraftType("A320"));
    EXPECT_FALSE(gf_isAircraftType("a320"));
    EXPECT_FALSE(gf_isAircraftType(""));
    EXPECT_TRUE(gf_isIcaoAirline("KLM"));
    EXPECT_FALSE(gf_isIcaoAirline("UAL"));
    EXPECT_FALSE(gf_isIcaoAirline(""));
}

TEST_F(ReferenceDb, WingspansTheirRowsAndTheirMeans) {
    readSection("wingspans", R"(<wingspan type="A320" meters="34"/><wingspan type="B738" meters=" 36 "/>
                                <wingspan type="B77W" meters="64"/><wingspan type="A320" meters="80"/>
                                <wingspan type="ABCD" meters="90"/><wingspan meters="91"/>
                                <wingspan type="A388" meters="wide"/><wingspan type="A388" meters="inf"/>
                                <wingspan type="C172"/>)");
    EXPECT_NEAR(gf_halfSpanNm("A320"), halfNm(34), 1e-9);  // the first row counts
    EXPECT_NEAR(maxHalfSpanNm, halfNm(80), 1e-9);          // the second raises the maximum alone
    EXPECT_EQ(logCount("===> wingspan model ABCD is not valid, skipped"), 1);
    EXPECT_EQ(logCount("===> wingspan model  is not valid, skipped"), 1);
    EXPECT_EQ(logCount("===> wingspan model A388 is not valid, skipped"), 2);
    EXPECT_TRUE(gf_halfSpanKnown("C172"));  // without metres it is 0
    EXPECT_EQ(gf_halfSpanNm("C172"), 0);
    EXPECT_FALSE(gf_halfSpanKnown("A388"));
    EXPECT_NEAR(gf_halfSpanNm("A388"), halfNm(64), 1e-9);  // mean of heavy
    EXPECT_NEAR(categoryAvgHalfNm[2], halfNm(35), 1e-9);
    EXPECT_NEAR(gf_halfSpanNm("F16"), halfNm((34 + 36 + 64) / 4.0),
                1e-9);  // no span of its kind: mean of all
}

TEST_F(ReferenceDb, WithoutWingspansEverySpanIsZero) {
    SmallDbase dbase;
    dbase.sections.erase("wingspans");
    read(dbase);
    EXPECT_EQ(gf_halfSpanNm("A320"), 0);
    EXPECT_EQ(gf_halfSpanNm("NONE"), 0);
    readSection("wingspans", R"(<wingspan type="ABCD" meters="90"/>)");
    EXPECT_EQ(gf_halfSpanNm("A320"), 0);
    EXPECT_EQ(maxHalfSpanNm, 0);
}

TEST_F(ReferenceDb, BadRowsAreToldAndSkipped) {
    SmallDbase dbase;
    dbase.sections["fixes"] =
        R"(<fx wro="B73H" cor="B738"/><fx wro="B73H" cor="A320"/><fx wro="A32X" cor="A32Y"/>
                                 <fx wro="A33X"/>)";
    dbase.sections["dbase"] =
        R"(<db reg="PH-BXA" airl="KLM"/><db reg="PH-BXA" airl="UAL"/><db reg="" airl="FDX"/>)";
    read(dbase);
    EXPECT_EQ(modelFixes.size(), 1u);
    EXPECT_EQ(modelFixes.at("B73H"), "B738");
    EXPECT_TRUE(logHas("===> wrong part of fix: 'B73H', already exists, skipped"));
    EXPECT_TRUE(logHas("===> wrong fix A32X -> A32Y, the latter is not valid"));
    EXPECT_TRUE(logHas("===> wrong fix A33X -> , the latter is not valid"));
    EXPECT_EQ(gf_dbaseAirline("PH-BXA"), "KLM");
    EXPECT_TRUE(logHas("===> regcode PH-BXA already exists"));
    EXPECT_EQ(gf_dbaseLookup(""), std::nullopt);
    EXPECT_EQ(gf_regInTitle("any title"), std::nullopt);
}

TEST_F(ReferenceDb, AnEmptyListSectionEndsTheStart) {
    const struct {
        const char *section, *element, *attribute;
    } lists[] = {{"aircrafts", "aircraft", "types"},
                 {"high_performance", "hpf", "types"},
                 {"heavy", "hvy", "types"},
                 {"large", "lar", "types"},
                 {"buzjet", "bzj", "types"},
                 {"rotorcraft", "rot", "types"},
                 {"cargo_types", "cargo_type", "types"},
                 {"ICAO_airlines", "ICAO", "codes"},
                 {"cargo_operators", "ICAO", "codes"},
                 {"simaddons20", "simaddon20", "arpts"}};
    for (const auto& list : lists) {
        const std::string emptyRow = fmt::format("<{} {}=\" , \"/>", list.element, list.attribute);
        for (const auto& body : {std::string(), emptyRow}) {
            try {
                readSection(list.section, body);
                ADD_FAILURE() << list.section;
            } catch (const UserErrorException& e) {
                EXPECT_EQ(e.code(), 61u);
                EXPECT_NE(std::string(e.what()).find(
                              fmt::format("In XML file section [{}], element [{}], attribute [{}] is empty.",
                                          list.section, list.element, list.attribute)),
                          std::string::npos)
                    << e.what();
            }
        }
    }
}

TEST_F(ReferenceDb, MissingDamagedAndTruncatedFiles) {
    const auto message = [] {
        try {
            gf_readDbase();
        } catch (const std::exception& e) {
            EXPECT_FALSE(fs::exists("input/dbase.xml")) << e.what();
            return std::string(e.what());
        }
        return std::string("no exception");
    };
    EXPECT_EQ(message(), "input/dbase.enc not available");

    SmallDbase dbase;
    dbase.sections["similar_types"] = std::string(9000, ' ');  // more than one chunk
    encipher(dbase.text());
    const auto whole = test::readFile("input/dbase.enc");
    auto flipped = whole;
    flipped[5000] = static_cast<char>(flipped[5000] ^ 1);
    writeFile("input/dbase.enc", flipped);
    EXPECT_EQ(message(), "input/dbase.enc stream decrypt failed");

    // A file cut at a chunk's end deciphers; the document then breaks off.
    writeFile("input/dbase.enc", whole.substr(0, 24 + 4113));
    EXPECT_NE(message().find("'input/dbase.xml' not read because of "), std::string::npos);
    writeFile("input/dbase.enc", "");
    try {
        gf_readDbase();
        ADD_FAILURE();
    } catch (const UserErrorException& e) {
        EXPECT_EQ(e.code(), 60u);
        EXPECT_NE(std::string(e.what()).find("No document element found"), std::string::npos) << e.what();
    }
    EXPECT_FALSE(fs::exists("input/dbase.xml"));

    SmallDbase hollow;
    hollow.sections["heavy"] = "";
    encipher(hollow.text());
    EXPECT_NE(message().find("[heavy]"), std::string::npos);
}

TEST_F(ReferenceDb, LooksUpTheSpellingsOfARegistration) {
    readSection(
        "dbase",
        R"(<db reg="PH-BXA" airl="KLM" opr="KLC"/><db reg="B-KPA" airl="CPA"/><db reg="BKPBX" airl="AAA"/>
                            <db reg="N-123A" airl="BBB"/><db reg="GA-BC" airl="CCC"/><db reg="G-ABC" airl="DDD"/>
                            <db reg="VQ-X" airl="EEE"/>)");
    const std::pair<const char*, const char*> cases[] = {
        {"PHBXA", "KLM"},   // hyphen behind the second
        {"PH-BXA", "KLM"},  // as it stands
        {"BKPA", ""},       // too short for a hyphen
        {"BKPBX", "AAA"},   // as given, after the hyphens
        {"N123A", ""},      // never a hyphen behind N
        {"N-123A", "BBB"},  //
        {"GABC", ""},       //
        {"VQX", ""},        //
        {"phbxa", ""},      // case counts
        {"", ""},
    };
    for (const auto& [reg, airline] : cases) EXPECT_EQ(gf_dbaseAirline(reg), airline) << reg;
    EXPECT_EQ(gf_dbaseOperator("PHBXA"), "KLC");
    EXPECT_EQ(gf_dbaseOperator("NONE"), "");

    // Of two spellings the hyphen behind the second character comes first, then the one behind the first.
    readSection("dbase",
                R"(<db reg="B-KPAX" airl="ONE"/><db reg="BK-PAX" airl="TWO"/><db reg="C-DEFG" airl="DDD"/>
                            <db reg="CDEFG" airl="EEE"/>)");
    EXPECT_EQ(gf_dbaseAirline("BKPAX"), "TWO");
    EXPECT_EQ(gf_dbaseAirline("CDEFG"), "DDD");
}

TEST_F(ReferenceDb, FindsShortRegistrationsInTitles) {
    readSection(
        "dbase",
        R"(<db reg=""/><db reg="B-KPA"/><db reg="N1KE"/><db reg="XYZ"/><db reg="PH-BXA"/><db reg="7"/>)");
    const std::pair<const char*, const char*> cases[] = {
        {"Gulfstream N1KE", "N1KE"},  // at the end
        {"B-KPA", "B-KPA"},           // the whole title
        {"N1KE and B-KPA", "B-KPA"},  // of two the first of the file
        {"xXYZx", "XYZ"},             // inside a word
        {"B737 XYZ", "XYZ"},          // a single character, later in the file
        {"B737", "7"},                //
        {"PH-BXA", ""},               // six characters are too long
        {"B-KP", ""},                 //
        {"n1ke", ""},                 //
        {"", ""},
    };
    for (const auto& [title, reg] : cases) EXPECT_EQ(gf_regInTitle(title).value_or(""), reg) << title;
    read(SmallDbase());
    EXPECT_EQ(gf_regInTitle("N1KE"), std::nullopt) << "the table is filled anew with each read";
}

TEST_F(ReferenceDb, PublishersByAnySpellingInOrderOfTheirRows) {
    readSection("publishers", R"(<pub names="Zeta Works,zeta-w"/><pub names="Alpha Fields,alphaf, zeta"/>)");
    const std::pair<const char*, const char*> cases[] = {
        {"C:\\Community\\ALPHAF-airport-eddm", "Alpha Fields"},
        {"/Community/Zeta-W-lszh", "Alpha Fields"},  // its row stands first, and "zeta" is in the text
        {"/Community/alpha-f", "unknown"},
        {"", "unknown"},
    };
    for (const auto& [text, publisher] : cases) EXPECT_EQ(gf_publisherOf(text), publisher) << text;
    readSection("publishers", R"(<pub names="Beta,,b"/><pub names="Alpha"/>)");
    EXPECT_EQ(gf_publisherOf("nobody"), "Beta");  // an empty name matches
}

TEST_F(ReferenceDb, HundredThousandsOfRegistrationsInTime) {
    std::string rows;
    for (int i = 0; i < 200'000; ++i)
        rows += fmt::format(R"(<db reg="N{}X" airl="KLM" type="B738" opr="" cargo="false"/>)", i);
    const auto begin = std::chrono::steady_clock::now();
    readSection("dbase", rows);
    for (int i = 0; i < 10'000; ++i)
        gf_regInTitle("A title as long as they are in the wild, Airline A320neo");
    const auto took = std::chrono::steady_clock::now() - begin;
    EXPECT_EQ(dbaseRecords.size(), 200'000u);
    // Generous for a loaded machine without optimisation; a walk over the records would take minutes.
    EXPECT_LT(took, std::chrono::seconds(20));
}

TEST_F(ReferenceDb, TheModelTableHoldsTheStockAircraft) {
    EXPECT_EQ(modelTable.size(), 30u);
    EXPECT_EQ(modelTable.at("Asobo_Baron_G58"), "B58T");
}

}  // namespace
}  // namespace skl
