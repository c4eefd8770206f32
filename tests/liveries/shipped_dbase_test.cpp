// The reference database and the airport files as they ship, read by the program's own reader.
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <pugixml.hpp>
#include <set>

#include "liveries/reference_db.h"
#include "tests/support/temp_folder.h"

namespace skl {
namespace {

namespace fs = std::filesystem;

const fs::path sources = fs::path(SKYLANTERN_SOURCE_DIR) / "input" / "sources";

class ShippedDbase : public test::TempFolderTest {
  protected:
    void SetUp() override {
        TempFolderTest::SetUp();
        gf_readDbaseXml((sources / "dbase.xml").string());
    }
};

TEST_F(ShippedDbase, IsWholeAndReadsWithoutAWarning) {
    EXPECT_FALSE(test::logHas("===>"));
    EXPECT_GT(aircraftTypes.size(), 2500u);
    EXPECT_GT(icaoAirlines.size(), 5500u);
    EXPECT_GE(wingspanHalfNm.size(), 250u);
    EXPECT_GE(similarRows.size(), 60u);
    EXPECT_GE(publisherRows.size(), 30u);
    EXPECT_GE(modelFixes.size(), 50u);
    EXPECT_GE(dbaseRecords.size(), 300u);
    EXPECT_FALSE(thirdParties20.empty());
    EXPECT_FALSE(thirdParties24.empty());
    EXPECT_TRUE(gf_isIcaoAirline("ZZZ"));  // liveries of no airline
    EXPECT_TRUE(gf_isIcaoAirline("PVT"));
    for (const char* vehicle : {"GND", "SERV", "EMER", "TWR", "ZZZZ"})
        EXPECT_FALSE(gf_isAircraftType(vehicle));
}

TEST_F(ShippedDbase, NamesOnlyWhatItKnows) {
    for (const auto* set :
         {&heavyTypes, &largeTypes, &buzjetTypes, &highPerfTypes, &rotorcraftTypes, &cargoTypes})
        for (const auto& type : *set) EXPECT_TRUE(gf_isAircraftType(type)) << type;
    for (const auto& row : similarRows) {
        EXPECT_GE(row.size(), 2u);
        for (const auto& type : row) {
            EXPECT_TRUE(gf_isAircraftType(type)) << type;
            EXPECT_EQ(gf_category(type), gf_category(row.front())) << type << " beside " << row.front();
        }
    }
    for (const auto& code : cargoOperators) EXPECT_TRUE(gf_isIcaoAirline(code)) << code;
    for (const auto& [wrong, right] : modelFixes) {
        EXPECT_FALSE(gf_isAircraftType(wrong)) << wrong;
        EXPECT_LE(wrong.size(), 4u) << wrong;
    }
    for (const auto& [reg, record] : dbaseRecords) {
        EXPECT_TRUE(gf_isAircraftType(record.type)) << reg;
        EXPECT_TRUE(gf_isIcaoAirline(record.airl)) << reg;
        EXPECT_TRUE(record.opr.empty() || gf_isIcaoAirline(record.opr)) << reg;
        EXPECT_TRUE(!record.cargo || cargoTypes.contains(record.type)) << reg << " " << record.type;
    }
}

TEST_F(ShippedDbase, SortsTypesAsPilotsWould) {
    const std::map<AcCategory, std::vector<const char*>> cases = {
        {AcCategory::Light, {"C172", "PA34", "PC12", "BE9L", "C208", "DR40", "SR22"}},
        {AcCategory::Buzjets, {"C56X", "GLEX", "E55P", "FA7X", "SF50", "CL60"}},
        {AcCategory::Large, {"A320", "B738", "E190", "AT76", "CRJ9", "B752", "BCS3", "C130", "CL2T"}},
        {AcCategory::Heavy, {"A388", "B77W", "A359", "B748", "C17", "IL76", "A306", "MD11"}},
        {AcCategory::HighPerf, {"F16", "EUFI", "HAWK", "SU27", "L39", "CNBR"}},
        {AcCategory::Rotorcraft, {"EC35", "R44", "A139", "H60"}}};
    for (const auto& [category, types] : cases)
        for (const char* type : types) {
            EXPECT_EQ(gf_category(type), category) << type;
            EXPECT_TRUE(gf_isAircraftType(type)) << type;
        }
    // Each category has spans of its own, of a plausible size.
    const double bounds[categoryCount][2] = {{8, 16}, {13, 25}, {24, 36}, {44, 64}, {9, 15}, {10, 17}};
    for (int c = 0; c < categoryCount; ++c) {
        const double metres = categoryAvgHalfNm[c] * 2 * 1852;
        EXPECT_TRUE(metres > bounds[c][0] && metres < bounds[c][1]) << c << ": " << metres;
    }
    EXPECT_NEAR(gf_halfSpanNm("A388") * 2 * 1852, 79.75, 0.5);
}

TEST_F(ShippedDbase, HoldsTheAirframesOfTheDemo) {
    const auto record = gf_dbaseLookup("DAIUA");
    ASSERT_TRUE(record);
    EXPECT_EQ(record->airl, "DLH");
    EXPECT_EQ(record->type, "A320");
    EXPECT_TRUE(gf_dbaseLookup("N850FD")->cargo);
}

TEST(ShippedAirports, EveryRowHasAPlaceAndMostHaveNames) {
    pugi::xml_document index, names;
    ASSERT_TRUE(index.load_file((sources / "airports_msfs.xml").c_str()));
    ASSERT_TRUE(names.load_file((sources / "airports_msfs_names.xml").c_str()));
    std::set<std::string> codes;
    for (const auto row : index.child("airports").children("airport")) {
        const std::string code = row.attribute("code").value();
        EXPECT_TRUE(codes.insert(code).second) << code;
        const double lat = row.attribute("lat").as_double(999), lon = row.attribute("lon").as_double(999);
        EXPECT_TRUE(lat >= -90 && lat <= 90 && lon >= -180 && lon <= 180) << code;
        const double alt = row.attribute("alt").as_double(99999);
        EXPECT_TRUE(alt > -1500 && alt < 16000) << code;
    }
    EXPECT_GT(codes.size(), 7000u);
    size_t named = 0;
    for (const auto row : names.child("AirportNames").children("airport")) {
        EXPECT_TRUE(codes.contains(row.attribute("ICAO").value()));
        named += !std::string_view(row.attribute("name").value()).empty();
    }
    EXPECT_GT(named, 7000u);
}

}  // namespace
}  // namespace skl
