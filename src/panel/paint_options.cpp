// The labels of the options, each in the row of the control that it belongs to.
#include <fmt/format.h>

#include "core/parameters.h"
#include "core/text.h"
#include "panel/paint_parts.h"

namespace skl {

namespace {

using platform::Canvas;
using platform::Colour;

constexpr std::string_view offlineFolder = "TBLO";
constexpr int renewalMinutes = 20;

struct Label {
    int x;
    const ControlParameter& row;
    const char* text;
};

void write(Canvas& canvas, const Label& label, Colour colour) {
    lf_text(canvas, label.x, label.row.top, label.text, colour);
}

void paintPlain(Canvas& canvas) {
    static const Label labels[] = {
        {672, LOG, "Log"},
        {768, LEARN_SOFT, "Learn Soft"},
        {672, NAV_LIGHTS_WHILE_PARKED, "Nav lights"},
        {237, LIG_AUTOMATIC, "Automatic:"},
        {470, LIG_PRIORITIZE, "Prioritize"},
        {556, SUPPRESS_STUB, "Stub"},
        {5, MATCHING_DEPTH, "Max aircraft matching depth"},
        {258, LIGHT_AIRCRAFT, "Optional:"},
        {5, RANGE, "Traffic injection"},
        {163, RANGE, "Radius:"},
        {270, RANGE, "nm, or"},
        {343, AUTO_RANGE, "Auto range"},
        {5, BLOCK_CALLSIGN, "Callsigns"},
        {172, BLOCK_CALLSIGN, "Block:"},
        {430, CALLSIGN_2_OBJECTID, "Oid:"},
        {5, COLLISION_USER_GND, "Collision avoidance"},
        {237, COLLISION_USER_GND, "User ground"},
        {343, COLLISION_USER_AIR, "User air"},
        {450, COLLISION_LIVE_PARKED_GND, "Live X parked"},
        {137, DESTINATION, "Destination:"},
        {303, AIRP_RANGE, "Range:"},
        {403, AIRP_RANGE, "nm"},
        {440, AIRP_HEIGHT, "Height above gnd:"},
        {646, AIRP_HEIGHT, "ft"},
        {25, PARK_FAKE, "Fake"},
        {91, WEEK, "Week"},
        {171, PARK_SOFT, "Soft"},
        {264, parking_percentage, "Target: "},
        {363, parking_percentage, "%"},
        {506, MAX_FIT_FL, "Max fit:"},
    };
    for (const Label& label : labels) write(canvas, label, colours::black);
}

/// Switches that are worth a second look while they are on.
void paintWarnings(Canvas& canvas) {
    const auto yellowIfOn = [&](int x, const CheckParameter& box, const char* text) {
        write(canvas, {x, box, text}, box.value ? colours::yellow : colours::black);
    };
    yellowIfOn(672, AEROWINX, "Aerowinx");
    yellowIfOn(768, ALWAYS_ON_TOP, "Stay on top");
    yellowIfOn(25, SCAN_LIVERIES, "Scan for liveries");
    yellowIfOn(25, SCAN_AIRPORTS, "Scan for addon airports");
    yellowIfOn(450, INITIAL_LOAD_ONLY, "ILO");
    write(canvas, {768, GUID_CHANGES, "GUID changes"}, GUID_CHANGES.value ? colours::black : colours::yellow);
}

void paintDependent(const PanelView& view, Canvas& canvas) {
    const auto enabled = [&](const Label& label, bool on) {
        lf_textEnabled(canvas, label.x, label.row.top, label.text, on);
    };
    enabled({768, CALLSIGN_OBJECTIDS, "Objectids"}, view.sim2020);
    enabled({343, LIGHT_AIRCRAFT, "Light aircraft"}, LIGHT_AIRCRAFT.enabled);
    enabled({450, HELICOPTERS, "Helicopters"}, HELICOPTERS.enabled);
    enabled({556, HIGH_PERF_AIRCRAFT, "FighterJets"}, HIGH_PERF_AIRCRAFT.enabled);
    enabled({430, AR_ABOVE_HEIGHT, "Ah:"}, AUTO_RANGE.value);
    enabled({536, AR_ABOVE_HEIGHT, "ft"}, AUTO_RANGE.value);
    enabled({672, STRAIGHT_PBS_ONLY, "Straight push backs only"}, STRAIGHT_PBS_ONLY.value);
}

void paintAnswers(const PanelView& view, Canvas& canvas) {
    if (const uint64_t count = view.offlineLearningCount)
        lf_text(canvas, 217, SCAN_AIRPORTS.top,
                fmt::format("{} airport{} in {} folder", count, gf_plural(count), offlineFolder),
                colours::yellow);
    if (!CALLSIGN_2_OBJECTID.empty())
        lf_text(canvas, 561, CALLSIGN_2_OBJECTID.top, view.objectIdText, colours::black);
}

Colour maxColour(int32_t own, int32_t other) {
    if (own != 0) return colours::black;
    return other == 0 ? colours::red : colours::yellow;
}

void paintAirportParking(const PanelView& view, Canvas& canvas) {
    lf_text(canvas, 5, MAX_PARK_SEL.top, view.staticsLock ? "Airport parking active" : "Airport parking",
            view.staticsLock ? colours::yellow : colours::black);
    const int32_t park = MAX_PARK_SEL.value, live = MAX_LIVE_SEL.value;
    lf_text(canvas, 171, MAX_PARK_SEL.top, "Max park (static+live):", maxColour(park, live));
    lf_text(canvas, 401, MAX_LIVE_SEL.top, "Max live (park incl):", maxColour(live, park));
    if (view.apfLoaded && !view.staticsLock && !INITIAL_LOAD_ONLY.value && view.minutesToRenewal > 0 &&
        view.minutesToRenewal < renewalMinutes)
        lf_text(canvas, 5, AIRP_RANGE.top, fmt::format("(next in {} min)", view.minutesToRenewal),
                colours::black);
}

}  // namespace

void lf_paintOptions(const PanelView& view, Canvas& canvas) {
    paintPlain(canvas);
    paintWarnings(canvas);
    paintDependent(view, canvas);
    paintAnswers(view, canvas);
    paintAirportParking(view, canvas);
}

}  // namespace skl
