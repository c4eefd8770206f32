// What the panel shows in each state of the links, the options and the airport.
#include "panel/paint.h"

#include <gtest/gtest.h>

#include <functional>

#include "core/log.h"
#include "core/parameters.h"
#include "panel/controls.h"
#include "panel/panel_colours.h"
#include "tests/panel/recording_canvas.h"
#include "tests/support/temp_folder.h"

namespace skl {
namespace {

using platform::Colour;
using platform::Rect;
using test::RecordingCanvas;

constexpr Rect whole{0, 0, 880, 476};
constexpr Rect simLamp{397, 30, 425, 112}, feedLamp{425, 30, 453, 112};

RecordingCanvas painted(const PanelView& view, const Rect& area = whole) {
    RecordingCanvas canvas;
    lf_paint(view, canvas, area);
    return canvas;
}

class PaintTest : public ::testing::Test {
  protected:
    void SetUp() override { gf_resetParameters(); }
};

void expectText(const RecordingCanvas& canvas, int x, int y, const std::string& text, Colour colour) {
    const auto* found = canvas.at(x, y);
    if (text.empty()) {
        EXPECT_EQ(found, nullptr) << found->text;
        return;
    }
    ASSERT_NE(found, nullptr) << text;
    EXPECT_EQ(found->text, text);
    EXPECT_EQ(found->colour, colour) << text;
}

struct SimCase {
    const char* what;
    PanelView view;
    Colour lamp;
    std::string row1, row2;
    Colour colour2;
};

TEST_F(PaintTest, TheSimulatorsLampAndTexts) {
    PanelView ready;
    ready.simConnected = ready.simRunning = true;
    ready.simText = "MSFS 12.1";
    ready.userAircraftText = "A320";
    PanelView noFlight = ready, noName = ready, stand = ready, noSpan = ready;
    noFlight.simRunning = false;
    noName.userAircraftText.clear();
    stand.userStandText = "B36";
    noSpan.userSpanKnown = false;
    PanelView off, off24;
    off24.sim2020 = false;
    const SimCase cases[] = {
        {"not connected", off, colours::red, "MSFS 2020 mode", "", colours::green},
        {"not connected, 2024", off24, colours::red, "MSFS 2024 mode", "", colours::green},
        {"flying", ready, colours::green, "MSFS 12.1", "A320", colours::green},
        {"no flight", noFlight, colours::yellow, "MSFS 12.1", "A320", colours::yellow},
        {"aircraft not known", noName, colours::yellow, "MSFS 12.1", "", colours::yellow},
        {"at a stand", stand, colours::green, "MSFS 12.1, user stand B36", "A320", colours::green},
        {"span not known", noSpan, colours::green, "MSFS 12.1", "A320", colours::yellow}};
    for (const SimCase& c : cases) {
        SCOPED_TRACE(c.what);
        const auto canvas = painted(c.view);
        EXPECT_EQ(*canvas.filled(simLamp), c.lamp);
        expectText(canvas, 5, 35, c.row1, c.view.simConnected ? c.lamp : colours::green);
        expectText(canvas, 5, 63, c.row2, c.colour2);
        expectText(canvas, 398, 63, "Sim", colours::green);
    }
}

TEST_F(PaintTest, TheFeedsLampAndTexts) {
    struct Case {
        bool black, connected;
        int traffic, weather, qnh;
        Colour lamp;
        Colour trafficColour, weatherColour;
        bool showsTraffic, showsWeather, showsQnh;
    };
    const Case cases[] = {
        {true, false, 3, 3, 0, colours::black, {}, {}, false, false, false},
        {false, false, 1, 1, 1013, colours::red, {}, {}, false, false, false},
        {false, true, 3, 3, 1013, colours::yellow, {}, {}, false, false, false},
        {false, true, 1, 1, 1013, colours::green, colours::green, colours::green, true, true, true},
        {false, true, 2, 2, 990, colours::yellow, colours::yellow, colours::yellow, true, true, true},
        {false, true, 1, 1, 0, colours::green, colours::green, colours::green, true, true, false}};
    for (const Case& c : cases) {
        SCOPED_TRACE(&c - cases);
        PanelView view;
        view.feedLampBlack = c.black;
        view.feedConnected = c.connected;
        view.trafficState = c.traffic;
        view.weatherState = c.weather;
        view.qnh = c.qnh;
        view.feedText = "RT3 edition: prof";
        view.liveCount = 7;
        const auto canvas = painted(view);
        EXPECT_EQ(*canvas.filled(feedLamp), c.lamp);
        expectText(canvas, 458, 35, c.connected ? view.feedText : "", colours::green);
        expectText(canvas, 458, 91, c.showsTraffic ? "Traffic" : "", c.trafficColour);
        expectText(canvas, 642, 91, c.showsTraffic ? "live:   7" : "", colours::green);
        expectText(canvas, 458, 63, c.showsWeather ? "Weather" : "", c.weatherColour);
        expectText(canvas, 642, 63, c.showsQnh ? (c.qnh == 990 ? "qnh:  990" : "qnh: 1013") : "",
                   colours::green);
    }
}

TEST_F(PaintTest, CountsAreWarningsWhileTheyAreNone) {
    auto canvas = painted({});
    expectText(canvas, 5, 91, "# liveries: ...", colours::red);
    expectText(canvas, 141, 91, "# simaddon: ...", colours::yellow);
    expectText(canvas, 278, 91, "# thirdp: ...", colours::yellow);
    PanelView view;
    view.liveryCount = 60000;
    view.simaddonCount = 4;
    view.thirdpartyCount = 1;
    canvas = painted(view);
    expectText(canvas, 5, 91, "# liveries: 60000", colours::green);
    expectText(canvas, 141, 91, "# simaddon: 4", colours::green);
    expectText(canvas, 278, 91, "# thirdp: 1", colours::green);
}

TEST_F(PaintTest, LabelsTellWhatIsSwitchedOn) {
    struct Case {
        int x, y;
        const char* text;
        std::function<void()> change;
        Colour before, after;
    };
    const Case cases[] = {
        {672, 203, "Aerowinx", [] { AEROWINX.value = true; }, colours::black, colours::yellow},
        {768, 147, "Stay on top", [] { ALWAYS_ON_TOP.value = true; }, colours::black, colours::yellow},
        {768, 203, "GUID changes", [] { GUID_CHANGES.value = false; }, colours::black, colours::yellow},
        {25, 147, "Scan for liveries", [] { SCAN_LIVERIES.value = false; }, colours::yellow, colours::black},
        {450, 371, "ILO", [] { INITIAL_LOAD_ONLY.value = true; }, colours::black, colours::yellow},
        {343, 203, "Light aircraft", [] { gf_enableControl(LIGHT_AIRCRAFT, true); }, colours::grey,
         colours::black},
        {430, 231, "Ah:", [] { AUTO_RANGE.value = false; }, colours::black, colours::grey},
        {672, 315, "Straight push backs only", [] { STRAIGHT_PBS_ONLY.value = true; }, colours::grey,
         colours::black},
        {171, 315, "Max park (static+live):", [] { MAX_PARK_SEL.value = 0; }, colours::black,
         colours::yellow},
        {401, 315, "Max live (park incl):", [] { MAX_LIVE_SEL.value = 0; }, colours::black, colours::yellow}};
    for (const Case& c : cases) {
        gf_resetParameters();
        expectText(painted({}), c.x, c.y, c.text, c.before);
        c.change();
        expectText(painted({}), c.x, c.y, c.text, c.after);
    }
    MAX_PARK_SEL.value = MAX_LIVE_SEL.value = 0;
    expectText(painted({}), 171, 315, "Max park (static+live):", colours::red);
    expectText(painted({}), 401, 315, "Max live (park incl):", colours::red);
    PanelView view;
    expectText(painted(view), 768, 231, "Objectids", colours::black);
    view.sim2020 = false;
    expectText(painted(view), 768, 231, "Objectids", colours::grey);
}

TEST_F(PaintTest, AnswersAndCountdown) {
    PanelView view;
    view.objectIdText = "oid 1234";
    view.offlineLearningCount = 2;
    view.apfLoaded = true;
    view.minutesToRenewal = 19;
    expectText(painted(view), 561, 259, "", {});
    CALLSIGN_2_OBJECTID.set("KLM12");
    expectText(painted(view), 561, 259, "oid 1234", colours::black);
    expectText(painted(view), 217, 175, "2 airports in TBLO folder", colours::yellow);
    expectText(painted(view), 5, 343, "(next in 19 min)", colours::black);
    for (const int minutes : {0, 20}) {
        view.minutesToRenewal = minutes;
        expectText(painted(view), 5, 343, "", {});
    }
    view.minutesToRenewal = 5;
    view.staticsLock = true;
    expectText(painted(view), 5, 343, "", {});
    expectText(painted(view), 5, 315, "Airport parking active", colours::yellow);
    view.staticsLock = false;
    INITIAL_LOAD_ONLY.value = true;
    expectText(painted(view), 5, 343, "", {});
}

TEST_F(PaintTest, TheAirportInSight) {
    PanelView view;
    view.airportName = "London Heathrow";
    view.airportPublisher = "stock";
    view.standCount = 5;
    const auto rows = [&] {
        std::vector<std::string> texts;
        for (const auto& text : painted(view, {0, 392, 880, 448}).texts) texts.push_back(text.text);
        return texts;
    };
    using Texts = std::vector<std::string>;
    EXPECT_EQ(rows(), Texts{}) << "no airport in sight";
    view.airportCode = "EGLL";
    EXPECT_EQ(rows(), Texts{"EGLL"});
    expectText(painted(view), 5, 399, "EGLL", colours::yellow);
    view.airportFileLoaded = true;
    EXPECT_EQ(rows(), (Texts{"EGLL", " London Heathrow, stock, wk=0", "qf: ", "# updates:    0",
                             "# stands:   5", "parked live:   0", "no max park live"}));
    view.handmade = view.softMark = true;
    view.trafficWeek = 27;
    view.qualityText = "45/12";
    view.reservedStand = "B36";
    view.maxParkCount = 50;
    view.maxParkPercent = 20;
    view.averageFitLive = 1.0f;
    view.averageFitStatic = 2.5f;
    EXPECT_EQ(rows(),
              (Texts{"EGLL", " London Heathrow, stock (h), wk=27", "*S*", "qf: 45/12", "reserved stand: B36",
                     "# updates:    0", "# stands:   5", "parked live:   0", "average fit: 1",
                     "parked static:   0", "average fit: 2.5", "max park:  50 (=20 %)"}));
    expectText(painted(view), 571, 399, "reserved stand: B36", colours::red);
    view.reservedStandOk = true;
    expectText(painted(view), 571, 399, "reserved stand: B36", colours::green);
    WEEK.value = true;
    expectText(painted(view), 571, 427, "", {});
}

TEST_F(PaintTest, BandsArePaintedAloneAndAnErrorOutranksTheMessage) {
    PanelView view;
    view.statusText = "Waiting";
    for (const Band band : {Band::title, Band::status, Band::options, Band::parking, Band::message}) {
        const Rect rect = gf_bandRect(band);
        for (const auto& text : painted(view, rect).texts)
            EXPECT_TRUE(text.y >= rect.top && text.y < rect.bottom) << text.text;
    }
    expectText(painted(view), 3, 455, "Waiting", colours::yellow);
    EXPECT_EQ(*painted(view).filled(gf_bandRect(Band::message)), colours::green);
    view.errorText = "150: no path";
    expectText(painted(view), 3, 455, "150: no path", colours::yellow);
    EXPECT_EQ(*painted(view).filled(gf_bandRect(Band::message)), colours::red);
}

class PaintLogTest : public test::TempFolderTest {};

TEST_F(PaintLogTest, TextThatIsNoUtf8IsToldOnceAndNotDrawn) {
    gf_resetParameters();
    gf_startLog();
    PanelView view;
    view.simConnected = true;
    view.simText = "Airbus \xff";
    view.userAircraftText = "A320";
    for (int i = 0; i < 3; ++i) {
        const auto canvas = painted(view);
        expectText(canvas, 5, 35, "", {});
        expectText(canvas, 5, 63, "A320", colours::yellow);
    }
    EXPECT_EQ(test::logCount("lf_text conversion exception"), 1);
    gf_closeLog();
}

}  // namespace
}  // namespace skl
