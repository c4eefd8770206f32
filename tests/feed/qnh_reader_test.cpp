// Datagrams of the weather stream against the pressure that the engine reads.
#include <gtest/gtest.h>

#include <string>

#include "feed/qnh_reader.h"
#include "feed/traffic_reader.h"
#include "panel/panel_state.h"
#include "tests/support/temp_folder.h"

namespace skl {
namespace {

class QnhReaderTest : public test::TempFolderTest {
  protected:
    void SetUp() override {
        TempFolderTest::SetUp();
        gf_resetFeed();
        gf_resetPanel();
    }
    QnhReader& reader = lf_qnhReader();
};

TEST_F(QnhReaderTest, GoodValues) {
    struct Case {
        const char* datagram;
        int32_t expected;
    };
    const std::vector<Case> cases{
        {R"({"QNH":1005})", 1005},   {R"({"icao":"LSZH","QNH":1013.4,"TMP":-50})", 1013},
        {R"({"QNH":1012.5})", 1013}, {R"({"QNH":"1013"})", 1013},
        {R"({"QNH":2992})", 1013},   {R"({"QNH":"3100"})", 1050},
        {R"({"QNH":930})", 930},     {R"({"QNH":1080})", 1080},
    };
    for (const auto& [datagram, expected] : cases) {
        gf_resetFeed();
        reader.processText(R"({"QNH":991})");
        reader.processText(datagram);
        EXPECT_EQ(qnh, expected) << datagram;
        EXPECT_EQ(lf_trafficReader().qnhCopy, expected) << datagram;
        EXPECT_EQ(g_panel.qnh, expected) << datagram;
    }
}

TEST_F(QnhReaderTest, BadDatagramsAreLoggedAndTheLastGoodValueStands) {
    struct Case {
        std::string datagram, logLine;
    };
    const std::vector<Case> cases{
        {R"({"TMP":5})", R"(no QNH {"TMP":5})"},
        {R"({"QNH":null})", R"(no QNH {"QNH":null})"},
        {R"({"QNH":[1013]})", R"(no QNH {"QNH":[1013]})"},
        {R"({"QNH":true})", "no QNH "},
        {"[1013]", "no QNH [1013]"},
        {R"({"QNH":"high"})", R"(===> QNH string parse error: high in {"QNH":"high"})"},
        {R"({"QNH":"+1013"})", "===> QNH string parse error: +1013 in "},
        {R"({"QNH":920})", R"(? Strange QNH 920 found in {"QNH":920})"},
        {R"({"QNH":1081})", "? Strange QNH 366 found in "},
        {R"({"QNH":"-1013"})", "? Strange QNH -1013 found in "},
        {R"({"QNH":1e12})", "Exception QNH does not fit a 32-bit number, in "},
        {R"({"QNH":5000000000})", "Exception QNH does not fit a 32-bit number, in "},
        {R"({"QNH":1e999})", "Exception "},
        {R"({"QNH":10)", "Exception [json.exception.parse_error.101]"},
        {"", "Exception "},
        {std::string("\0\n\xff{}", 5), "Exception "},
    };
    reader.processText(R"({"QNH":1001})");
    for (const auto& [datagram, logLine] : cases) {
        const auto before = test::logLines().size();
        reader.processText(datagram);
        EXPECT_EQ(qnh, 1001) << datagram;
        const auto lines = test::logLines();
        ASSERT_EQ(lines.size(), before + 1) << datagram;
        EXPECT_EQ(lines.back().rfind(logLine, 0), 0u) << lines.back();
    }
}

TEST_F(QnhReaderTest, AnEqualValueIsPassedOverButStandardPressureNever) {
    reader.processText(R"({"QNH":1001})");
    g_panel.weatherState = readerStale;
    reader.processText(R"({"QNH":1001})");
    EXPECT_EQ(g_panel.weatherState, readerStale);
    reader.processText(R"({"QNH":1013})");
    EXPECT_EQ(g_panel.weatherState, readerRunning);
    g_panel.weatherState = readerStale;
    reader.processText(R"({"QNH":1013})");
    EXPECT_EQ(g_panel.weatherState, readerRunning);
    g_panel.weatherState = readerStopped;
    reader.processText(R"({"QNH":1013})");
    EXPECT_EQ(g_panel.weatherState, readerStopped);
}

TEST_F(QnhReaderTest, AfterAResetTheSameValueCountsAgain) {
    reader.processText(R"({"QNH":1001})");
    gf_resetFeed();
    EXPECT_EQ(qnh, 1013);
    EXPECT_EQ(lf_trafficReader().qnhCopy, 1013);
    reader.processText(R"({"QNH":1001})");
    EXPECT_EQ(qnh, 1001);
}

}  // namespace
}  // namespace skl
