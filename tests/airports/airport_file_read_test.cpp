// What an airport file may hold, right and wrong, and what becomes of it.
#include <cmath>
#include <utility>

#include "airports/stand_neighbours.h"
#include "core/errors.h"
#include "core/geodesy.h"
#include "core/parameters.h"
#include "tests/airports/airport_file_world.h"

namespace skl::test {

namespace {

class AirportFileReadTest : public AirportFileTest {};

TEST_F(AirportFileReadTest, RowsAndStandsComeIn) {
    g_parkingChanged = true;
    dbaseRecords["PH-BXA"] = {.airl = "KLM", .type = "B738"};
    const std::string text =
        apf(usualRows + ";Qf_real=0x2D;Qf_soft=7;RT_traffic_week= +31",
            parkpos("A 1", R"(heading="360" radius="37.04" cargo="true" ramp="yes")",
                    R"(<opt reg="PH-BXA" airl="XXX" type="A320" day="3" hh="0,47" cs="KLM1:KLM2"/>
                   <opt reg="G-ABCD" airl="BAW" type="A320" soft="true" day="9" hh="48,5" cs="BAW9:"/>)"));
    EXPECT_EQ(read(text, ""), "");
    EXPECT_EQ(fmt::format("{} {} {} {} {} {} {}/{}", file.code, file.airportName, file.publisher,
                          file.altitude, parkAirport.alt, file.trafficWeek, quality.real, quality.soft),
              "EHAM Schiphol Zeta Works -11 -11 31 45/7");
    EXPECT_EQ(file.learnedPath.generic_string(), learnedName);
    EXPECT_EQ(standTexts(), "1:A 1 37.0m 360deg cargo ramp\n");
    EXPECT_EQ(optionTexts(0),
              "1:PH-BXA KLM B738 day 3 hh 0,47 cs KLM1:KLM2 real archived\n"
              "2:G-ABCD BAW A320 day 0 hh 5 cs BAW9: soft archived\n");
    for (const char* line : {"===> gf_hours2bitset invalid hour '48' in 48,5", "day '9' is not within 1 to 7",
                             "quality factor          : 45/ 7"})
        EXPECT_TRUE(logHas(line)) << line;
    EXPECT_TRUE(g_apfLoaded && !g_parkingChanged && flushStaticButton.enabled);
    EXPECT_EQ(parking_percentage.value, 30);
}

TEST_F(AirportFileReadTest, ABadDocumentSaysWhy) {
    EXPECT_EQ(read(""), "gf_readApf: xml is empty");
    EXPECT_EQ(read(), archivedName + ": could not load file: File was not found");
    EXPECT_EQ(read(apf(usualRows, ""), ""), "no stands found");
    writeFile(archivedName, "<parameters><parameter name='altitude' value='1'/></parameters>");
    EXPECT_EQ(read(), "no stands found");
    // A stand that is dropped has its name all the same.
    const std::pair<std::string, std::string> errors[] = {
        {apf("airport_name=x", parkpos("A")), "65: Parameter altitude not found"},
        {apf(usualRows, R"(<parkpos id="A"/>)" + parkpos("A")),
         "94: Parking position A appears more than once?"}};
    for (const auto& [text, what] : errors) try {
            read(text, "");
            ADD_FAILURE() << what;
        } catch (const UserErrorException& thrown) {
            EXPECT_EQ(thrown.what(), what);
        }
    // An altitude that is none leaves that of the index.
    for (const char* altitude : {"high", "99999999999"}) {
        parkAirport.alt = -3;
        EXPECT_EQ(read(apf(std::string("altitude=") + altitude, parkpos("A")), ""), "");
        EXPECT_EQ(file.altitude, -3) << altitude;
    }
    parkAirport = {};
    EXPECT_EQ(read(), "gf_readApf: no park airport set");
}

TEST_F(AirportFileReadTest, ABadStandCostsItselfAlone) {
    const struct {
        const char *attributes, *after;
    } cases[] = {
        {R"(latitude="0" longitude="0" radius="5")", ""},
        {R"(radius="5")", ""},
        {R"(latitude="52" longitude="0" radius="5" heading="90.5" heli="1")", "1:A 5.0m 90deg heli\n"},
        {R"(latitude="90.1" longitude="4")", ""},
        {R"(latitude="52" longitude="-180.5")", ""},
        {R"(latitude="nan" longitude="4")", ""},
        {R"(latitude="52,3" longitude="4")", ""},
        {R"(latitude="52" longitude="1e999")", ""},
        {R"(latitude=" +52.5 " longitude="4" radius="-3" heading="-90")", "1:A 0.0m 270deg\n"},
        {R"(latitude="52" longitude="4" radius="1e9" heading="721")", "1:A 200.0m 1deg\n"},
        {R"(latitude="52" longitude="4" radius="inf" heading="north")", "1:A 0.0m 0deg\n"},
    };
    for (const auto& each : cases) {
        read(apf(usualRows, std::string("<parkpos id=\"A\" ") + each.attributes + "/>"), "");
        EXPECT_EQ(standTexts(), each.after) << each.attributes;
    }
    EXPECT_EQ(logCount("===> Stand A: "), 11);
}

TEST_F(AirportFileReadTest, OnlyStandsNearerThanTheirRadiiAreAdjacent) {
    // Two of 20 m overlap below 36.36 m; one metre of latitude is 1 / 111,120 degrees.
    std::string text;
    for (double meters : {0.0, 36.3, 72.7, 500.0})
        text += fmt::format(R"(<parkpos id="{}" latitude="{:.9f}" longitude="4" radius="20"/>)", meters,
                            52 + meters / 111120);
    ASSERT_EQ(read(apf(usualRows, text), ""), "");
    using Sids = std::vector<uint32_t>;
    EXPECT_EQ(read_[0].adjacent, Sids{2});
    EXPECT_EQ(read_[1].adjacent, Sids{1});
    EXPECT_EQ(read_[2].adjacent, Sids{});
    // Exactly 1.1 times is not adjacent: the radii are made from the distance itself.
    const double reach = gf_distanceNm(read_[0].pos(), read_[3].pos()) * 1.1;
    for (double radius : {reach, std::nextafter(reach, 1)}) {
        std::vector<Stand> pair{read_[0], read_[3]};
        pair[0].radius = radius;
        pair[1].radius = 0;
        lf_numberStands(pair);
        EXPECT_EQ(pair[0].adjacent.size() + pair[1].adjacent.size(), radius == reach ? 0 : 2);
    }
}

TEST_F(AirportFileReadTest, AHugeDocumentIsCut) {
    std::string text;
    for (int i = 0; i < 6000; ++i)
        text +=
            fmt::format(R"(<parkpos id="{}" latitude="{}" longitude="4" radius="20"/>)", i, 52 + i * 1e-5);
    EXPECT_EQ(read(apf(usualRows, text), ""), "");
    EXPECT_EQ(read_.size(), 5000u);
    EXPECT_EQ(read_[400].adjacent.size(), 64u) << "32 of 1.11 m each on both sides";
    EXPECT_EQ(logCount("More than 5000 stands"), 1);
}

TEST_F(AirportFileReadTest, QualityIsWhatTheOptionsAreWorth) {
    EXPECT_EQ(gf_qualityFactors({}), QualityFactors{});
    EXPECT_EQ(gf_qualityFactors({Stand{}, Stand{}}), QualityFactors{});
    const auto option = [](int id, bool real, int day, uint64_t hours) {
        return StandOption{.hours = hours, .optionId = id, .day = day, .real = real};
    };
    Stand seen;
    seen.options = {option(1, true, 1, 7), option(2, true, 1, 1), option(3, true, 7, 1),
                    option(0, true, 3, ~0ull >> 16), option(4, false, 0, 0)};
    // Real: 10000 + 3 * 20 + 2 days * 100 + 5 * 2 = 10270, soft: 10020, over two stands.
    EXPECT_EQ(gf_qualityFactors({seen, Stand{}}), (QualityFactors{32, 31}));
    Stand full;  // 15900 of the real ones at most
    for (int i = 0; i < 400; ++i) full.options.push_back(option(i + 1, true, i % 7 + 1, ~0ull >> 16));
    EXPECT_EQ(gf_qualityFactors({full}), (QualityFactors{99, 0}));
    EXPECT_EQ(gf_qualityText({99, 0}) + gf_qualityText({5, -1}) + gf_qualityText({}), "99/ 0 5  ");
}

TEST_F(AirportFileReadTest, HoursAreSetsOfHalfHours) {
    const struct {
        const char *text, *back;
        int complaints;
    } cases[] = {{"", "", 0},         {"47,0,3", "0,3,47", 0}, {"5, 6", "5,6", 0},
                 {"48,-1,7", "7", 2}, {"1,,2", "1,2", 1},      {"1,", "1", 1},
                 {"x,9", "9", 1},     {"9x", "", 1},           {"99999999999", "", 1}};
    for (const auto& each : cases) {
        const int before = logCount("invalid hour");
        EXPECT_EQ(gf_bitset2hours(gf_hours2bitset(each.text)), each.back) << each.text;
        EXPECT_EQ(logCount("invalid hour") - before, each.complaints) << each.text;
    }
}

}  // namespace

}  // namespace skl::test
