// Text, number, version and time routines, in tables.
#include "core/text.h"

#include <gtest/gtest.h>

#include <clocale>
#include <limits>

#include "core/clock.h"
#include "core/errors.h"
#include "core/time_text.h"
#include "core/version.h"

namespace skl {
namespace {

TEST(Text, NumbersAreReadAtTheStartWhateverFollows) {
    struct Case {
        const char* text;
        std::optional<double> expected;
    };
    for (const auto& [text, expected] : std::vector<Case>{{"52.3", 52.3},
                                                          {"-0.5 nm", -0.5},
                                                          {"7,5", 7.0},
                                                          {"1e3", 1000.0},
                                                          {"", {}},
                                                          {" 1", {}},
                                                          {"+1", {}},
                                                          {"x", {}},
                                                          {"nan", {}},
                                                          {"inf", {}},
                                                          {"-inf", {}},
                                                          {"1e999", {}}})
        EXPECT_EQ(gf_readNumber(text), expected) << text;
    EXPECT_EQ(gf_readInt("2147483647"), 2147483647);
    EXPECT_EQ(gf_readInt("2147483648"), std::nullopt);
    EXPECT_EQ(gf_readInt("-12z"), -12);
    EXPECT_EQ(gf_readUnsigned("4294967295"), 4294967295u);
    EXPECT_EQ(gf_readUnsigned("-1"), std::nullopt);
}

TEST(Text, NumbersDoNotFollowTheLocale) {
    // Any of these has a decimal comma; where none is installed the reading has to be right all the same.
    for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8", "nl_NL.UTF-8"})
        if (std::setlocale(LC_NUMERIC, name)) break;
    EXPECT_EQ(gf_readNumber("52.3"), 52.3);
    std::setlocale(LC_NUMERIC, "C");
}

TEST(Text, Pieces) {
    using List = std::vector<std::string>;
    EXPECT_EQ(gf_trim(" \t\r\n a b\r\n"), "a b");
    EXPECT_EQ(gf_trim(" \t "), "");
    EXPECT_EQ(gf_splitComma("a,, b"), (List{"a", "", " b"}));
    EXPECT_EQ(gf_splitComma("a,"), (List{"a"}));
    EXPECT_EQ(gf_splitComma(""), List{});
    EXPECT_EQ(gf_betweenQuotes("Path \"C:\\x\" \"y\""), "C:\\x");
    EXPECT_EQ(gf_betweenQuotes("no quotes"), "no quotes");
    EXPECT_EQ(gf_betweenQuotes("only \"one"), "");
    EXPECT_EQ(gf_betweenQuotes("empty \"\""), "");
}

TEST(Text, UpperCaseIsThatOfAscii) {
    EXPECT_EQ(gf_upper("a1z\xC3\xA4"), "A1Z\xC3\xA4");
    EXPECT_TRUE(gf_equalsUpper(".xMl", ".XML"));
    EXPECT_FALSE(gf_equalsUpper(".xml", ".xmlx"));
    EXPECT_FALSE(gf_equalsUpper("[", "{"));
}

TEST(Text, CountsAndSwitches) {
    EXPECT_EQ(gf_percent(1, 3), 33);
    EXPECT_EQ(gf_percent(2, 3), 67);
    EXPECT_EQ(gf_percent(1, 200), 1);
    EXPECT_EQ(gf_percent(5, 0), 0);
    EXPECT_EQ(gf_plural(1), "");
    EXPECT_EQ(gf_plural(0), "s");
    for (const char* on : {"1", "true", "T", "yes", "Y"}) EXPECT_TRUE(gf_parseBool(on)) << on;
    for (const char* off : {"", "0", "false", "on", " true"}) EXPECT_FALSE(gf_parseBool(off)) << off;
}

TEST(Version, ParsesWhatItCanAndOrdersByAllThreeNumbers) {
    struct Case {
        const char* text;
        VersionData expected;
    };
    for (const auto& [text, expected] : std::vector<Case>{{"11.0.3", {11, 0, 3}},
                                                          {"11.2", {11, 2, 0}},
                                                          {" 1. 2 .3beta", {1, 2, 3}},
                                                          {"x.4.5.6", {0, 4, 5}},
                                                          {"", {0, 0, 0}}})
        EXPECT_EQ(VersionData::parse(text), expected) << text;
    EXPECT_LT((VersionData{10, 9, 9}), (VersionData{11, 0, 0}));
    EXPECT_LT((VersionData{11, 0, 2}), (VersionData{11, 0, 10}));
    EXPECT_EQ(VersionData::parse(programVersion.text()), programVersion);
}

TEST(UserError, TheCodeStandsInTheTextButFor99) {
    EXPECT_STREQ(UserErrorException(41, "wrong folder").what(), "41: wrong folder");
    EXPECT_STREQ(UserErrorException(99, "bare").what(), "bare");
    EXPECT_EQ(UserErrorException(99, "bare").code(), 99u);
}

class FixedClock : public Clock {
  public:
    Nanos utcNow() override { return std::chrono::seconds(1767366245); }
    Nanos steadyNow() override { return {}; }
    bool waitUntil(Nanos, const std::function<bool()>&) override { return false; }
};

TEST(TimeText, StringsOfUtcTimes) {
    EXPECT_EQ(gf_timeString(1767366245), "Fri Jan 02 15:04:05 2026");
    EXPECT_EQ(gf_timeString(951782400), "Tue Feb 29 00:00:00 2000");
    EXPECT_EQ(gf_timeString(-1), "Wed Dec 31 23:59:59 1969");
    EXPECT_EQ(gf_timeString(std::numeric_limits<int64_t>::max()), "Invalid time");
    FixedClock clock;
    gf_setClock(&clock);
    EXPECT_EQ(gf_timeOfDay(), "15:04:05");
    EXPECT_EQ(gf_dateString(), "Jan 02, 2026");
    gf_setClock(nullptr);
}

TEST(TimeText, StarLine) {
    const std::string stars34(34, '*');
    EXPECT_EQ(gf_starLine(70, 0, false, false, "Parameters"), stars34 + " Parameters " + stars34);
    EXPECT_EQ(gf_starLine(60, 9, true, false, "Parameters"), "\n" + stars34 + " Parameters " + stars34);
    EXPECT_EQ(gf_starLine(3, 2, false, true, ""), "******\n");
    EXPECT_EQ(gf_starLine(6, 0, false, false, "abcd"), "abcd");
    EXPECT_EQ(gf_starLine(8, 0, false, false, "abcd"), "*** abcd ***");
}

}  // namespace
}  // namespace skl
