#include "panel/control_table.h"

#include <array>

#include "core/parameters.h"
#include "panel/edit_texts.h"

namespace skl {

namespace {

using platform::ControlKind;

PanelControl check(CheckParameter& parameter, const char* tip) {
    return {parameter, ControlKind::check, 0, 0, tip};
}
PanelControl button(ButtonParameter& parameter, int width, const char* tip) {
    return {parameter, ControlKind::button, width, 0, tip};
}
PanelControl edit(ControlParameter& parameter, int width, const char* tip) {
    return {parameter, ControlKind::edit, width, 0, tip};
}
PanelControl combo(ControlParameter& parameter, int width, int dropHeight, const char* tip) {
    return {parameter, ControlKind::combo, width, dropHeight, tip};
}

const std::array<PanelControl, 42>& table() {
    static const std::array<PanelControl, 42> controls{{
        combo(SIM_CHOICE, 105, 80, "The simulator that traffic is shown in; a change restarts the program."),
        edit(ALL_INSTALL_PATH, 1200,
             "The full path to the Community folder of the selected simulator; press Enter."),
        check(SCAN_LIVERIES, "Reads all AI aircraft packages again; needed after adding or removing some."),
        check(LIG_AUTOMATIC,
              "Finds the known AI packages in the Community folder; off: uses your lfolder settings."),
        combo(AI_PACKAGE_SELECTOR, 125, 144, "Which AI package is preferred when several have a livery."),
        check(LIG_PRIORITIZE, "Takes a livery only from the first package that has that airline and type."),
        check(SUPPRESS_STUB, "Leaves out liveries whose title ends with _STUB."),
        check(LOG, "Writes a detailed Log.txt."),
        check(ALWAYS_ON_TOP, "Keeps this window in front of all others."),
        check(SCAN_AIRPORTS, "Reads your add-on airports again; needed after adding or removing some."),
        check(NAV_LIGHTS_WHILE_PARKED, "Parked aircraft have their navigation lights on."),
        check(LEARN_SOFT, "Also learns likely stands of flights that were not seen at a stand."),
        combo(MATCHING_DEPTH, 40, 120,
              "How far a livery may differ from the real aircraft: 1 exact, 4 any similar type."),
        check(LIGHT_AIRCRAFT, "Shows light aircraft."),
        check(HELICOPTERS, "Shows helicopters."),
        check(HIGH_PERF_AIRCRAFT, "Shows fighters and other high performance aircraft."),
        check(AEROWINX, "For users of Aerowinx PSX: takes the traffic from there; restart the program."),
        check(GUID_CHANGES, "Gives an aircraft another livery once its registration becomes known."),
        combo(RANGE, 50, 200, "Traffic is shown within this distance, in nautical miles."),
        check(AUTO_RANGE, "Chooses the radius by your height and the distance to the next airport."),
        combo(AR_ABOVE_HEIGHT, 70, 230, "Above this height, in feet, the automatic radius is 100 nm."),
        check(CALLSIGN_OBJECTIDS, "Writes Callsign2ObjectId.txt with the objects of all live aircraft."),
        check(COLLISION_USER_GND, "Removes aircraft that come too close to yours on the ground."),
        check(COLLISION_USER_AIR, "Removes aircraft that come too close to yours in the air."),
        check(COLLISION_LIVE_PARKED_GND, "Removes parked aircraft that a taxiing live one would hit."),
        edit(BLOCK_CALLSIGN, 100, "The live aircraft with this callsign is not shown; press Enter."),
        button(unblockButton, 70, "Shows the blocked aircraft again."),
        edit(CALLSIGN_2_OBJECTID, 95, "Tells the object id of the aircraft with this callsign; press Enter."),
        combo(MAX_PARK_SEL, 55, 144, "The most aircraft that stand at the airport, live and static."),
        combo(MAX_LIVE_SEL, 55, 144, "The most live aircraft in the simulator, parked ones included."),
        edit(DESTINATION, 50, "The ICAO code of your destination, to be populated first; press Enter."),
        combo(AIRP_RANGE, 45, 144, "An airport is populated within this distance, in nautical miles."),
        combo(AIRP_HEIGHT, 70, 230, "An airport is populated while you are below this height, in feet."),
        check(STRAIGHT_PBS_ONLY, "Aircraft are pushed back straight, without turning the tail."),
        check(PARK_FAKE, "Invents parked aircraft for airports of which nothing is known."),
        check(WEEK, "Uses what was seen on any day of the week, not on today's weekday alone."),
        check(PARK_SOFT, "Also uses what was learned without being seen at the stand."),
        edit(parking_percentage, 34, "How many of the stands are to be filled, in percent; press Enter."),
        check(INITIAL_LOAD_ONLY, "Fills the airport once, without a renewal every 20 minutes."),
        edit(MAX_FIT_FL, 34, "How many hours back a parked aircraft may have been seen; press Enter."),
        button(rereadButton, 90, "Reads my_park_airports.txt again, with your stand at this airport."),
        button(flushStaticButton, 90, "Removes all static parked aircraft."),
    }};
    return controls;
}

template <class List>
platform::ControlState comboState(const List& allowed, const std::string& text) {
    platform::ControlState state;
    for (const auto& entry : allowed) {
        if constexpr (std::is_arithmetic_v<std::decay_t<decltype(entry)>>)
            state.items.push_back(std::to_string(entry));
        else
            state.items.push_back(entry);
    }
    state.text = text;
    return state;
}

}  // namespace

std::span<const PanelControl> gf_panelControls() {
    return table();
}

const PanelControl* gf_panelControl(int id) {
    for (const PanelControl& control : table())
        if (control.parameter.controlId == id) return &control;
    return nullptr;
}

std::string gf_controlName(const PanelControl& control) {
    if (const auto* named = dynamic_cast<const Parameter*>(&control.parameter)) return named->name;
    if (const auto* pressed = dynamic_cast<const ButtonParameter*>(&control.parameter))
        return pressed->caption;
    return {};
}

platform::ControlSpec gf_controlSpec(const PanelControl& control) {
    const auto* pressed = dynamic_cast<const ButtonParameter*>(&control.parameter);
    return {control.kind,
            control.parameter.controlId,
            control.parameter.left,
            control.parameter.top,
            control.width,
            control.dropHeight,
            pressed ? pressed->caption : std::string(),
            control.tip};
}

platform::ControlState gf_controlState(const PanelControl& control) {
    platform::ControlState state;
    if (const auto* box = dynamic_cast<const CheckParameter*>(&control.parameter))
        state.checked = box->value;
    else if (const auto* numbers = dynamic_cast<const ComboIntParameter*>(&control.parameter))
        state = comboState(numbers->allowed, std::to_string(numbers->value));
    else if (const auto* texts = dynamic_cast<const ComboStringParameter*>(&control.parameter))
        state = comboState(texts->allowed, texts->get());
    else if (control.kind == ControlKind::edit)
        state.text = gf_editText(control);
    state.enabled = control.parameter.enabled;
    return state;
}

}  // namespace skl
