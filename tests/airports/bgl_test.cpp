// Scenery files: what is read of them, and that no byte of them does harm.
#include "airports/bgl.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "airports/addon_scan.h"
#include "airports/airport_file.h"
#include "airports/airport_index.h"
#include "airports/stand_reader.h"
#include "core/folders.h"
#include "core/log.h"
#include "liveries/reference_db.h"
#include "tests/support/bgl_writer.h"
#include "tests/support/temp_folder.h"

namespace skl::test {

namespace {

class BglTest : public TempFolderTest {
  protected:
    void SetUp() override {
        TempFolderTest::SetUp();
        gf_startLog();
        gf_clearDbase();
        sim2020 = true;
        lf_scanFolders({});  // a scan of its own for the log
    }
    void TearDown() override {
        gf_closeLog();
        TempFolderTest::TearDown();
    }
    static std::vector<uint32_t> wordsOf(const Bytes& bytes) {
        std::vector<uint32_t> words((bytes.size() + 3) / 4);
        if (!bytes.empty()) std::memcpy(words.data(), bytes.data(), bytes.size());
        return words;
    }
    static std::string made(const std::string& code) {
        return readFile(paths::myThirdparty / (code + ".xml"));
    }
    /// The generated stands of EGLL, without what is the same for all.
    static std::vector<std::string> stands(const Bytes& file) {
        fs::remove_all(paths::myThirdparty);
        lf_scanFolders({});
        lf_processBglWords(wordsOf(file), "x.bgl");
        std::vector<std::string> lines;
        const std::string text = made("EGLL");
        for (size_t at = 0; (at = text.find("<parkpos id=\"", at)) != std::string::npos;) {
            const size_t begin = at + 13, end = text.find("\" />", at);
            lines.push_back(text.substr(begin, end - begin));
            at = end;
        }
        return lines;
    }
    static std::vector<std::string> ids(const Bytes& file) {
        auto lines = stands(file);
        for (std::string& line : lines) line.erase(line.find('"'));
        return lines;
    }
    static Bytes airport(const std::vector<BglParking>& parkings) {
        return bglFile(bglAirport("EGLL", 25000, bglParkings(parkings)));
    }
};

using Ids = std::vector<std::string>;

TEST_F(BglTest, Codes) {
    struct Case {
        uint32_t value;
        const char* text;
        bool valid;
    };
    for (const Case& c : {Case{28987776, "EHAM", true},
                          {53644352, "SIXE", true},
                          {758048, "EDD", false},
                          {0, " ", false},
                          {bglCode("K1B9"), "K1B9", true},
                          {bglCode("A B1"), "A B1", false}}) {
        bool valid = !c.valid;
        EXPECT_EQ(lf_decodeIdentifierOrRegionCode(c.value, valid), c.text);
        EXPECT_EQ(valid, c.valid) << c.text;
    }
}

TEST_F(BglTest, AStandAsItIsWritten) {
    const Bytes helipad = bglHelipad(51.2, 0.25, 30);
    const auto lines =
        stands(bglFile(bglAirport("EGLL", 25298,
                                  bglRecord(77, Bytes(10, 'j')) + helipad + helipad +
                                      bglParkings({{.name = 12, .number = 23, .type = 10, .airlines = 2},
                                                   {.number = 7, .type = 5, .heading = 0},
                                                   {.number = 8, .type = 3, .radius = 5}}) +
                                      bglHelipad(52, 1, 30))));
    EXPECT_EQ(lines,
              (Ids{"A23\" latitude=\"51.000000\" longitude=\"0.500000\" heading=\"90.0\" radius=\"20.0\" "
                   "cargo=\"false\" ramp=\"false",
                   "g7\" latitude=\"51.000000\" longitude=\"0.500000\" heading=\"360.0\" radius=\"20.0\" "
                   "cargo=\"true\" ramp=\"true",
                   "g8\" latitude=\"51.000000\" longitude=\"0.500000\" heading=\"90.0\" radius=\"5.0\" "
                   "cargo=\"false\" ramp=\"true",
                   "helipad1\" latitude=\"51.200000\" longitude=\"0.250000\" heading=\"0.0\" "
                   "radius=\"15.0\" heli=\"true\" ramp=\"false"}));
    EXPECT_NE(made("EGLL").find("name=\"altitude\" value=\"83\""), std::string::npos);
    EXPECT_NE(made("EGLL").find("name=\"BGLpath\" value=\"x.bgl\""), std::string::npos);
    EXPECT_NE(made("EGLL").find("\"MSFS\""), std::string::npos);
}

TEST_F(BglTest, NamesAndTypes) {
    std::vector<BglParking> parkings;
    for (uint32_t name = 0; name < 16; ++name) parkings.push_back({.name = name, .number = name});
    EXPECT_EQ(ids(airport(parkings)), (Ids{"0", "11", "A12", "B13", "C14", "D15", "ep4", "g10", "np3", "nwp9",
                                           "p2", "r1", "sep5", "sp6", "swp7", "wp8"}));
    parkings.clear();
    for (uint32_t type = 0; type < 16; ++type)
        parkings.push_back({.name = 0, .number = 10 + type, .type = type});
    Ids ramps, cargo, others;
    for (const std::string& line : stands(airport(parkings))) {
        const std::string id = line.substr(0, 2);
        const bool ramp = line.ends_with("ramp=\"true");
        (line.find("cargo=\"true") != std::string::npos ? cargo : ramp ? ramps : others).push_back(id);
    }
    EXPECT_EQ(ramps, (Ids{"11", "12", "13", "14", "16", "17", "24"}));
    EXPECT_EQ(cargo, (Ids{"15"}));
    EXPECT_EQ(others, (Ids{"18", "19", "20", "21", "25"}));
}

TEST_F(BglTest, TheLargestOfOneNameHasThePlainName) {
    std::vector<BglParking> parkings;
    for (int i = 0; i < 8; ++i) parkings.push_back({.radius = 10.0f + 5 * static_cast<float>(i % 4)});
    parkings.push_back({.number = 10});
    const auto lines = stands(airport(parkings));
    Ids sizes;
    for (const std::string& line : lines)
        sizes.push_back(line.substr(0, line.find('"')) + ' ' + line.substr(line.find("radius=\"") + 8, 2));
    EXPECT_EQ(sizes, (Ids{"g1 25", "g10 20", "g1a 20", "g1b 20", "g1c 15", "g1d 15", "g1e 10", "g1f 10"}));
}

TEST_F(BglTest, BadPositionsCostThemselves) {
    const float nan = std::nanf("");
    EXPECT_EQ(ids(airport({{.number = 1, .radius = 1.0f},
                           {.number = 2, .radius = 1.1f},
                           {.number = 3, .radius = 199.9f},
                           {.number = 4, .radius = 200.0f},
                           {.number = 5, .radius = nan},
                           {.number = 6, .heading = nan},
                           {.number = 7, .lat = 0, .lon = 0},
                           {.number = 8, .lon = 190},
                           {.number = 9}})),
              (Ids{"g2", "g3", "g9"}));
    for (const float size : {0.0f, -3.0f, nan, HUGE_VALF})
        EXPECT_EQ(ids(bglFile(bglAirport(
                      "EGLL", 0, bglHelipad(51, 1, size) + bglHelipad(0, 0, 20) + bglHelipad(51, 1, 20)))),
                  Ids{"helipad1"});
    struct Height {
        uint32_t millimeters;
        const char* feet;
    };
    for (const Height& c : {Height{3048152, "\"10000\""}, {3048153, "\"0\""}, {0xFFFFF448, "\"0\""}}) {
        stands(bglFile(bglAirport("EGLL", c.millimeters, bglParkings({{}}))));
        EXPECT_NE(made("EGLL").find(std::string("name=\"altitude\" value=") + c.feet), std::string::npos);
    }
}

TEST_F(BglTest, OnlyAirportsOfAirportSections) {
    const Bytes egll = bglAirport("EGLL", 0, bglParkings({{}})),
                lfpg = bglAirport("LFPG", 0, bglParkings({{}}));
    const auto codes = [&](const Bytes& file) {
        fs::remove_all(paths::myThirdparty);
        lf_scanFolders({});
        writeFile("f.bgl", file);
        lf_processBGLfile("f.bgl");
        Ids found;
        for (const std::string& name : gf_listAirportFiles()) found.push_back(name);
        return found.size();
    };
    EXPECT_EQ(codes(bglFile(egll + lfpg)), 2u);
    EXPECT_TRUE(lf_hasAirportSection("f.bgl"));
    EXPECT_EQ(codes(bglFile(egll + bglAirport("XX", 0, bglParkings({{}})) + lfpg)), 2u) << "a code of two";
    EXPECT_EQ(codes(bglFile({{.type = 4, .records = egll}})), 0u);
    EXPECT_FALSE(lf_hasAirportSection("f.bgl"));
    EXPECT_EQ(codes(bglFile({{.records = egll, .entrySize = 0x10000}})), 0u) << "entries of 20 bytes";
    EXPECT_EQ(codes(bglFile({{.records = egll}, {.type = 9, .records = lfpg}})), 1u)
        << "the walk ends where another section begins";
    EXPECT_EQ(codes(bglFile({{.records = bglRecord(5, Bytes(2, 'x'))}, {.records = lfpg}})), 1u);
    EXPECT_EQ(codes(bglFile(bglRecord(300, Bytes(2, '\0')) + egll)), 1u);
    Bytes stuck = bglRecord(5, Bytes(2, '\0'));
    stuck[2] = 0;  // a size that does not advance
    EXPECT_EQ(codes(bglFile(stuck + egll)), 0u);
    sim2020 = false;
    EXPECT_EQ(codes(bglFile(bglRecord(275, Bytes(10, ' ')) + egll)), 0u) << "a form that is not read";
    sim2020 = true;
    for (const Bytes& small : {Bytes(), Bytes(3, 'x'), Bytes(56, '\0')}) {
        writeFile("f.bgl", small);
        EXPECT_FALSE(lf_hasAirportSection("f.bgl"));
    }
    EXPECT_FALSE(lf_hasAirportSection("nowhere.bgl"));
}

TEST_F(BglTest, NoByteDoesHarm) {
    const Bytes whole = bglFile(
        {{.records = bglAirport("EGLL", 25000, bglHelipad(51, 1, 20) + bglParkings({{}, {}, {.number = 3}}))},
         {.records = bglAirport("LFPG", 0, bglParkings({{}}))}});
    const auto read = [](const Bytes& bytes) {
        try {
            lf_processBglWords(wordsOf(bytes), "x.bgl");
        } catch (const std::out_of_range&) {
        }
    };
    for (size_t size = 0; size < whole.size(); size += 4) read(whole.substr(0, size));
    std::mt19937 random(7);
    for (int i = 0; i < 3000; ++i) {
        Bytes bytes = whole;
        for (int change = 0; change < 3; ++change)
            bytes[random() % bytes.size()] = static_cast<char>(random());
        read(bytes);
    }
    Bytes claims = whole;
    std::memset(claims.data() + 20, 0xFF, 4);  // sections without end
    read(claims);
    EXPECT_EQ(ids(whole), (Ids{"g1", "g1a", "g3", "helipad1"}));
}

}  // namespace
}  // namespace skl::test
