// Tables: light events by bit, events with an effect, and those that are only known.
#include "standin/simulator/sim_events.h"

#include <algorithm>
#include <array>

namespace simulator {

namespace {

struct LightEvent {
    std::string_view set;
    std::string_view toggle;
    unsigned bit;
};

constexpr auto kLightEvents = std::to_array<LightEvent>({
    {"NAV_LIGHTS_SET", "TOGGLE_NAV_LIGHTS", 0},
    {"BEACON_LIGHTS_SET", "TOGGLE_BEACON_LIGHTS", 1},
    {"LANDING_LIGHTS_SET", "LANDING_LIGHTS_TOGGLE", 2},
    {"TAXI_LIGHTS_SET", "TOGGLE_TAXI_LIGHTS", 3},
    {"STROBES_SET", "STROBES_TOGGLE", 4},
    {"PANEL_LIGHTS_SET", "PANEL_LIGHTS_TOGGLE", 5},
    {"RECOGNITION_LIGHTS_SET", "TOGGLE_RECOGNITION_LIGHTS", 6},
    {"WING_LIGHTS_SET", "TOGGLE_WING_LIGHTS", 7},
    {"LOGO_LIGHTS_SET", "TOGGLE_LOGO_LIGHTS", 8},
    {"CABIN_LIGHTS_SET", "TOGGLE_CABIN_LIGHTS", 9},
});
constexpr std::uint32_t kAllLights = 0x3FF;

using Effect = void (*)(SimObject&, std::uint32_t data);

double percentOfAxis(std::uint32_t data) {
    return std::clamp(static_cast<double>(static_cast<std::int32_t>(data)) * 100 / 16383, -100.0, 100.0);
}

void setFlaps(SimObject& object, double percent) {
    object.flaps = std::clamp(percent, 0.0, 100.0);
}

struct EffectOf {
    std::string_view name;
    Effect effect;
};

constexpr auto kEffects = std::to_array<EffectOf>({
    {"FREEZE_LATITUDE_LONGITUDE_SET", [](SimObject& o, std::uint32_t data) { o.freezePlace = data != 0; }},
    {"FREEZE_LATITUDE_LONGITUDE_TOGGLE", [](SimObject& o, std::uint32_t) { o.freezePlace = !o.freezePlace; }},
    {"FREEZE_ALTITUDE_SET", [](SimObject& o, std::uint32_t data) { o.freezeAltitude = data != 0; }},
    {"FREEZE_ALTITUDE_TOGGLE", [](SimObject& o, std::uint32_t) { o.freezeAltitude = !o.freezeAltitude; }},
    {"FREEZE_ATTITUDE_SET", [](SimObject& o, std::uint32_t data) { o.freezeAttitude = data != 0; }},
    {"FREEZE_ATTITUDE_TOGGLE", [](SimObject& o, std::uint32_t) { o.freezeAttitude = !o.freezeAttitude; }},
    {"ALL_LIGHTS_TOGGLE", [](SimObject& o, std::uint32_t) { o.lights = o.lights == 0 ? kAllLights : 0; }},
    {"GEAR_SET", [](SimObject& o, std::uint32_t data) { o.gear = data != 0 ? 1 : 0; }},
    {"GEAR_UP", [](SimObject& o, std::uint32_t) { o.gear = 0; }},
    {"GEAR_DOWN", [](SimObject& o, std::uint32_t) { o.gear = 1; }},
    {"GEAR_TOGGLE", [](SimObject& o, std::uint32_t) { o.gear = 1 - o.gear; }},
    {"FLAPS_SET", [](SimObject& o, std::uint32_t data) { setFlaps(o, percentOfAxis(data)); }},
    {"FLAPS_UP", [](SimObject& o, std::uint32_t) { setFlaps(o, 0); }},
    {"FLAPS_DOWN", [](SimObject& o, std::uint32_t) { setFlaps(o, 100); }},
    {"FLAPS_INCR", [](SimObject& o, std::uint32_t) { setFlaps(o, o.flaps + 25); }},
    {"FLAPS_DECR", [](SimObject& o, std::uint32_t) { setFlaps(o, o.flaps - 25); }},
    {"SPOILERS_SET",
     [](SimObject& o, std::uint32_t data) { o.spoilers = std::max(0.0, percentOfAxis(data)); }},
    {"SPOILERS_ON", [](SimObject& o, std::uint32_t) { o.spoilers = 100; }},
    {"SPOILERS_OFF", [](SimObject& o, std::uint32_t) { o.spoilers = 0; }},
    {"SPOILERS_TOGGLE", [](SimObject& o, std::uint32_t) { o.spoilers = o.spoilers > 0 ? 0 : 100; }},
    {"THROTTLE_SET", [](SimObject& o, std::uint32_t data) { o.throttles.fill(percentOfAxis(data)); }},
    {"THROTTLE1_SET", [](SimObject& o, std::uint32_t data) { o.throttles[0] = percentOfAxis(data); }},
    {"THROTTLE2_SET", [](SimObject& o, std::uint32_t data) { o.throttles[1] = percentOfAxis(data); }},
    {"THROTTLE3_SET", [](SimObject& o, std::uint32_t data) { o.throttles[2] = percentOfAxis(data); }},
    {"THROTTLE4_SET", [](SimObject& o, std::uint32_t data) { o.throttles[3] = percentOfAxis(data); }},
    {"THROTTLE_FULL", [](SimObject& o, std::uint32_t) { o.throttles.fill(100); }},
    {"THROTTLE_CUT", [](SimObject& o, std::uint32_t) { o.throttles.fill(0); }},
    {"ENGINE_AUTO_START", [](SimObject& o, std::uint32_t) { o.engines = true; }},
    {"ENGINE_AUTO_SHUTDOWN", [](SimObject& o, std::uint32_t) { o.engines = false; }},
    {"PARKING_BRAKES", [](SimObject& o, std::uint32_t) { o.parkingBrake = 1 - o.parkingBrake; }},
    {"PARKING_BRAKE_SET", [](SimObject& o, std::uint32_t data) { o.parkingBrake = data != 0 ? 1 : 0; }},
    {"XPNDR_SET", [](SimObject& o, std::uint32_t data) { o.transponder = data; }},
});

constexpr auto kKnown = std::to_array<std::string_view>({
    "AP_MASTER",         "AUTOPILOT_ON",
    "AUTOPILOT_OFF",     "AP_HDG_HOLD",
    "AP_ALT_HOLD",       "AP_NAV1_HOLD",
    "AP_APR_HOLD",       "AP_ALT_VAR_SET_ENGLISH",
    "AP_SPD_VAR_SET",    "AP_VS_VAR_SET_ENGLISH",
    "HEADING_BUG_SET",   "HEADING_BUG_INC",
    "HEADING_BUG_DEC",   "KOHLSMAN_SET",
    "BAROMETRIC",        "COM_STBY_RADIO_SET",
    "COM_RADIO_SWAP",    "NAV1_STBY_SET",
    "NAV1_RADIO_SWAP",   "SPOILERS_ARM_TOGGLE",
    "SPOILERS_ARM_SET",  "BRAKES",
    "TOGGLE_PUSHBACK",   "KEY_TUG_HEADING",
    "TUG_SPEED",         "ELEVATOR_SET",
    "AILERON_SET",       "RUDDER_SET",
    "AXIS_ELEVATOR_SET", "AXIS_AILERONS_SET",
    "AXIS_RUDDER_SET",   "AXIS_THROTTLE_SET",
    "AXIS_SPOILER_SET",  "AXIS_FLAPS_SET",
    "ELEVATOR_TRIM_SET", "PITOT_HEAT_SET",
    "ANTI_ICE_SET",      "TOGGLE_AIRCRAFT_EXIT",
    "TOGGLE_JETWAY",     "SIM_RATE_INCR",
    "SIM_RATE_DECR",     "SIM_RATE_SET",
    "SIM_RESET",         "SLEW_ON",
    "SLEW_OFF",          "SLEW_TOGGLE",
    "PAUSE_ON",          "PAUSE_OFF",
    "PAUSE_SET",         "PAUSE_TOGGLE",
    "ZULU_HOURS_SET",    "ZULU_MINUTES_SET",
    "ZULU_DAY_SET",      "ZULU_YEAR_SET",
});

}  // namespace

bool isSimEvent(std::string_view name) {
    const auto same = [name](const auto& entry) { return entry.name == name; };
    const auto light = [name](const LightEvent& entry) { return entry.set == name || entry.toggle == name; };
    return name.starts_with('#') || name.find('.') != std::string_view::npos ||
           std::any_of(kEffects.begin(), kEffects.end(), same) ||
           std::any_of(kLightEvents.begin(), kLightEvents.end(), light) ||
           std::find(kKnown.begin(), kKnown.end(), name) != kKnown.end();
}

void applySimEvent(std::string_view name, std::uint32_t data, SimObject& object) {
    for (const auto& light : kLightEvents) {
        const std::uint32_t mask = 1U << light.bit;
        if (light.set == name) {
            object.lights = data != 0 ? object.lights | mask : object.lights & ~mask;
        } else if (light.toggle == name) {
            object.lights ^= mask;
        }
    }
    for (const auto& [known, effect] : kEffects) {
        if (known == name) {
            effect(object, data);
        }
    }
}

}  // namespace simulator
