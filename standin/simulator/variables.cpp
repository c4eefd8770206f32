// The table of simulation variables.
#include "standin/simulator/variables.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <ctime>

#include "standin/common/text.h"
#include "standin/simulator/geo.h"
#include "standin/simulator/wire.h"

namespace simulator {

namespace {

// A plain field of the object that can be read and written.
template <double SimObject::*Field>
constexpr NumberGetter kGet = [](const World&, const SimObject& o, unsigned) { return o.*Field; };
template <double SimObject::*Field>
constexpr NumberSetter kSet = [](const World&, SimObject& o, unsigned, double v) { o.*Field = v; };
template <unsigned Bit>
constexpr NumberGetter kLight =
    [](const World&, const SimObject& o, unsigned) -> double { return (o.lights >> Bit) & 1U; };
template <double Value>
constexpr NumberGetter kFixed = [](const World&, const SimObject&, unsigned) -> double { return Value; };

constexpr NumberGetter kLights = [](const World&, const SimObject& o, unsigned) -> double {
    return o.lights;
};
constexpr NumberSetter kSetHeading = [](const World&, SimObject& o, unsigned, double v) {
    o.heading = compass(v);
};
constexpr NumberSetter kSetLon = [](const World&, SimObject& o, unsigned, double v) {
    o.lon = std::remainder(v, 360.0);
};
constexpr NumberSetter kSetLat = [](const World&, SimObject& o, unsigned, double v) {
    o.lat = std::clamp(v, -90.0, 90.0);
};

std::tm calendar(const World& world) {
    const auto seconds = static_cast<std::time_t>(world.utc);
    std::tm parts{};
    gmtime_r(&seconds, &parts);
    return parts;
}

std::size_t engineOf(unsigned index) {
    return index >= 1 && index <= 4 ? index - 1 : 0;
}

constexpr auto N = ValueKind::Number;
constexpr auto T = ValueKind::Text;
constexpr auto S = ValueKind::Structure;
using O = SimObject;

const auto kVariables = std::to_array<Variable>({
    {"PLANE LATITUDE", N, "degrees", kGet<&O::lat>, kSetLat, nullptr, 0, true},
    {"PLANE LONGITUDE", N, "degrees", kGet<&O::lon>, kSetLon, nullptr, 0, true},
    {"PLANE ALTITUDE", N, "feet", kGet<&O::alt>, kSet<&O::alt>, nullptr, 0, true},
    {"PLANE PITCH DEGREES", N, "radians", kGet<&O::pitch>, kSet<&O::pitch>, nullptr, 0, true},
    {"PLANE BANK DEGREES", N, "radians", kGet<&O::bank>, kSet<&O::bank>, nullptr, 0, true},
    {"PLANE HEADING DEGREES TRUE", N, "radians", kGet<&O::heading>, kSetHeading, nullptr, 0, true},
    {"PLANE HEADING DEGREES MAGNETIC", N, "radians", kGet<&O::heading>, kSetHeading, nullptr, 0, true},
    {"MAGVAR", N, "degrees", kFixed<0.0>},
    {"VERTICAL SPEED", N, "feet per second",
     [](const World&, const O& o, unsigned) { return o.verticalSpeed * 0.3048 / kKnotMetresPerSecond; },
     [](const World&, O& o, unsigned, double v) { o.verticalSpeed = v * kKnotMetresPerSecond / 0.3048; }},
    {"AIRSPEED TRUE", N, "knots", kGet<&O::airspeed>, kSet<&O::airspeed>},
    {"AIRSPEED INDICATED", N, "knots", kGet<&O::airspeed>, kSet<&O::airspeed>},
    {"GROUND VELOCITY", N, "knots",
     [](const World&, const O& o, unsigned) { return o.id == kUserId ? o.groundSpeed : o.airspeed; }},
    {"SIM ON GROUND", N, "bool",
     [](const World& w, const O& o, unsigned) -> double { return w.onGround(o) ? 1 : 0; }},
    {"PLANE ALT ABOVE GROUND", N, "feet",
     [](const World& w, const O& o, unsigned) { return o.alt - w.ground(o.lat, o.lon); },
     [](const World& w, O& o, unsigned, double v) { o.alt = w.ground(o.lat, o.lon) + v; }, nullptr, 0, true},
    {"PLANE ALT ABOVE GROUND MINUS CG", N, "feet",
     [](const World& w, const O& o, unsigned) { return w.wheelHeight(o); }},
    {"GROUND ALTITUDE", N, "meters",
     [](const World& w, const O& o, unsigned) { return w.ground(o.lat, o.lon); }},
    {"STATIC CG TO GROUND", N, "feet", kGet<&O::staticHeight>},
    {"STATIC PITCH", N, "radians", kGet<&O::staticPitch>},
    {"LIGHT ON STATES", N, "mask", kLights},
    {"LIGHT STATES", N, "mask", kLights},
    {"LIGHT NAV", N, "bool", kLight<0>},
    {"LIGHT BEACON", N, "bool", kLight<1>},
    {"LIGHT LANDING", N, "bool", kLight<2>},
    {"LIGHT TAXI", N, "bool", kLight<3>},
    {"LIGHT STROBE", N, "bool", kLight<4>},
    {"LIGHT PANEL", N, "bool", kLight<5>},
    {"LIGHT RECOGNITION", N, "bool", kLight<6>},
    {"LIGHT WING", N, "bool", kLight<7>},
    {"LIGHT LOGO", N, "bool", kLight<8>},
    {"LIGHT CABIN", N, "bool", kLight<9>},
    {"SPOILERS HANDLE POSITION", N, "percent", kGet<&O::spoilers>, kSet<&O::spoilers>},
    {"GENERAL ENG THROTTLE LEVER POSITION", N, "percent",
     [](const World&, const O& o, unsigned index) { return o.throttles[engineOf(index)]; },
     [](const World&, O& o, unsigned index, double v) {
         o.throttles[engineOf(index)] = std::clamp(v, -100.0, 100.0);
     }},
    {"GENERAL ENG COMBUSTION", N, "bool",
     [](const World&, const O& o, unsigned) -> double { return o.engines ? 1 : 0; },
     [](const World&, O& o, unsigned, double v) { o.engines = v != 0; }},
    {"ENG COMBUSTION", N, "bool",
     [](const World&, const O& o, unsigned) -> double { return o.engines ? 1 : 0; }},
    {"NUMBER OF ENGINES", N, "number", kFixed<2.0>},
    {"GEAR HANDLE POSITION", N, "bool", kGet<&O::gear>, kSet<&O::gear>},
    {"FLAPS HANDLE PERCENT", N, "percent", kGet<&O::flaps>, kSet<&O::flaps>},
    {"FLAPS HANDLE INDEX", N, "number",
     [](const World&, const O& o, unsigned) { return std::round(o.flaps / 25); },
     [](const World&, O& o, unsigned, double v) { o.flaps = std::clamp(v * 25, 0.0, 100.0); }},
    {"BRAKE PARKING POSITION", N, "bool", kGet<&O::parkingBrake>, kSet<&O::parkingBrake>},
    {"TRANSPONDER CODE", N, "bco16", kGet<&O::transponder>, kSet<&O::transponder>},
    {"IS LATITUDE LONGITUDE FREEZE ON", N, "bool",
     [](const World&, const O& o, unsigned) -> double { return o.freezePlace ? 1 : 0; }},
    {"IS ALTITUDE FREEZE ON", N, "bool",
     [](const World&, const O& o, unsigned) -> double { return o.freezeAltitude ? 1 : 0; }},
    {"IS ATTITUDE FREEZE ON", N, "bool",
     [](const World&, const O& o, unsigned) -> double { return o.freezeAttitude ? 1 : 0; }},
    {"IS USER SIM", N, "bool",
     [](const World&, const O& o, unsigned) -> double { return o.id == kUserId ? 1 : 0; }},
    {"WING SPAN", N, "feet", kFixed<117.45>},
    {"EMPTY WEIGHT", N, "pounds", kFixed<94000.0>},
    {"VELOCITY BODY X", N, "feet per second", kFixed<0.0>},
    {"VELOCITY BODY Y", N, "feet per second",
     [](const World&, const O& o, unsigned) { return o.verticalSpeed * 0.3048 / kKnotMetresPerSecond; }},
    {"VELOCITY BODY Z", N, "feet per second", kGet<&O::airspeed>, kSet<&O::airspeed>},
    {"SIMULATION RATE", N, "number", kFixed<1.0>},
    {"ABSOLUTE TIME", N, "seconds", [](const World& w, const O&, unsigned) { return w.utc + 62135596800.0; }},
    {"ZULU TIME", N, "seconds", [](const World& w, const O&, unsigned) { return std::fmod(w.utc, 86400.0); }},
    {"LOCAL TIME", N, "seconds",
     [](const World& w, const O&, unsigned) { return std::fmod(w.utc, 86400.0); }},
    {"ZULU DAY OF WEEK", N, "number",
     [](const World& w, const O&, unsigned) -> double { return calendar(w).tm_wday; }},
    {"ZULU DAY OF MONTH", N, "number",
     [](const World& w, const O&, unsigned) -> double { return calendar(w).tm_mday; }},
    {"ZULU MONTH OF YEAR", N, "number",
     [](const World& w, const O&, unsigned) -> double { return calendar(w).tm_mon + 1; }},
    {"ZULU DAY OF YEAR", N, "number",
     [](const World& w, const O&, unsigned) -> double { return calendar(w).tm_yday + 1; }},
    {"ZULU YEAR", N, "number",
     [](const World& w, const O&, unsigned) -> double { return calendar(w).tm_year + 1900; }},
    {"SEA LEVEL PRESSURE", N, "millibars", kFixed<1013.25>},
    {"BAROMETER PRESSURE", N, "millibars", kFixed<1013.25>},
    {"KOHLSMAN SETTING MB", N, "millibars", kFixed<1013.25>},
    {"KOHLSMAN SETTING HG", N, "inches of mercury", kFixed<1013.25>},
    {"AMBIENT PRESSURE", N, "inches of mercury", kFixed<1013.25>},
    {"AMBIENT TEMPERATURE", N, "celsius", kFixed<15.0>},
    {"AMBIENT WIND VELOCITY", N, "knots", kFixed<0.0>},
    {"AMBIENT WIND DIRECTION", N, "degrees", kFixed<0.0>},
    {"TITLE", T, "", nullptr, nullptr, [](const O& o) { return o.title; }},
    {"ATC MODEL", T, "", nullptr, nullptr, [](const O& o) { return o.model; }},
    {"ATC TYPE", T, "", nullptr, nullptr,
     [](const O& o) { return std::string(o.id == kUserId ? "Airbus" : ""); }},
    {"ATC ID", T, "", nullptr, nullptr, [](const O& o) { return o.tail; }},
    {"ATC AIRLINE", T, "", nullptr, nullptr, [](const O&) { return std::string(); }},
    {"ATC FLIGHT NUMBER", T, "", nullptr, nullptr, [](const O&) { return std::string(); }},
    {"CATEGORY", T, "", nullptr, nullptr, [](const O&) { return std::string("airplane"); }},
    {"LIVERY NAME", T, "", nullptr, nullptr, [](const O& o) { return o.livery; }},
    {"STRUCT LATLONALT", S, "", nullptr, nullptr, nullptr, kLatLonAlt},
    {"INITIAL POSITION", S, "", nullptr, nullptr, nullptr, kInitPosition, true},
});

}  // namespace

const Variable* findVariable(std::string_view name, unsigned& index) {
    auto wanted = standin::upperCase(standin::trimmed(name));
    index = 0;
    if (const auto colon = wanted.find(':'); colon != std::string::npos) {
        const auto number = standin::numberOf(standin::trimmed(std::string_view(wanted).substr(colon + 1)));
        if (!number || *number < 0 || *number > 99 || *number != std::floor(*number)) {
            return nullptr;
        }
        index = static_cast<unsigned>(*number);
        wanted = standin::trimmed(wanted.substr(0, colon));
    }
    for (const auto& variable : kVariables) {
        if (variable.name == wanted) {
            return &variable;
        }
    }
    return nullptr;
}

}  // namespace simulator
