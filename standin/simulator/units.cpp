// The table of units, singular and plural as clients write them.
#include "standin/simulator/units.h"

#include <array>
#include <string>

#include "standin/common/text.h"
#include "standin/simulator/geo.h"

namespace simulator {

namespace {

using D = Dimension;
constexpr double kFootSpeed = 0.3048 / kKnotMetresPerSecond;  // knots of a foot a second

constexpr auto kUnits = std::to_array<Unit>({
    {"number", D::Number, 1},
    {"numbers", D::Number, 1},
    {"bool", D::Number, 1},
    {"boolean", D::Number, 1},
    {"mask", D::Number, 1},
    {"enum", D::Number, 1},
    {"flags", D::Number, 1},
    {"scalar", D::Number, 1},
    {"bco16", D::Number, 1},
    {"degree", D::Angle, 1},
    {"degrees", D::Angle, 1},
    {"degree latitude", D::Angle, 1},
    {"degrees latitude", D::Angle, 1},
    {"degree longitude", D::Angle, 1},
    {"degrees longitude", D::Angle, 1},
    {"radian", D::Angle, 180 / kPi},
    {"radians", D::Angle, 180 / kPi},
    {"grad", D::Angle, 0.9},
    {"grads", D::Angle, 0.9},
    {"round", D::Angle, 360},
    {"rounds", D::Angle, 360},
    {"foot", D::Length, 1},
    {"feet", D::Length, 1},
    {"ft", D::Length, 1},
    {"inch", D::Length, 1.0 / 12},
    {"inches", D::Length, 1.0 / 12},
    {"in", D::Length, 1.0 / 12},
    {"yard", D::Length, 3},
    {"yards", D::Length, 3},
    {"centimeter", D::Length, 0.01 * kFeetPerMetre},
    {"centimeters", D::Length, 0.01 * kFeetPerMetre},
    {"cm", D::Length, 0.01 * kFeetPerMetre},
    {"meter", D::Length, kFeetPerMetre},
    {"meters", D::Length, kFeetPerMetre},
    {"m", D::Length, kFeetPerMetre},
    {"kilometer", D::Length, 1000 * kFeetPerMetre},
    {"kilometers", D::Length, 1000 * kFeetPerMetre},
    {"km", D::Length, 1000 * kFeetPerMetre},
    {"mile", D::Length, 5280},
    {"miles", D::Length, 5280},
    {"nautical mile", D::Length, 1852 * kFeetPerMetre},
    {"nautical miles", D::Length, 1852 * kFeetPerMetre},
    {"nmile", D::Length, 1852 * kFeetPerMetre},
    {"nmiles", D::Length, 1852 * kFeetPerMetre},
    {"knot", D::Speed, 1},
    {"knots", D::Speed, 1},
    {"feet per second", D::Speed, kFootSpeed},
    {"foot per second", D::Speed, kFootSpeed},
    {"feet/second", D::Speed, kFootSpeed},
    {"feet per minute", D::Speed, kFootSpeed / 60},
    {"foot per minute", D::Speed, kFootSpeed / 60},
    {"feet/minute", D::Speed, kFootSpeed / 60},
    {"ft/min", D::Speed, kFootSpeed / 60},
    {"meter per second", D::Speed, 1 / kKnotMetresPerSecond},
    {"meters per second", D::Speed, 1 / kKnotMetresPerSecond},
    {"meters/second", D::Speed, 1 / kKnotMetresPerSecond},
    {"m/s", D::Speed, 1 / kKnotMetresPerSecond},
    {"kilometer per hour", D::Speed, 1 / 1.852},
    {"kilometers per hour", D::Speed, 1 / 1.852},
    {"kilometers/hour", D::Speed, 1 / 1.852},
    {"kph", D::Speed, 1 / 1.852},
    {"mile per hour", D::Speed, 1.609344 / 1.852},
    {"miles per hour", D::Speed, 1.609344 / 1.852},
    {"mph", D::Speed, 1.609344 / 1.852},
    {"percent", D::Percent, 1},
    {"percentage", D::Percent, 1},
    {"percent over 100", D::Percent, 100},
    {"position", D::Percent, 100},
    {"position 16k", D::Percent, 100.0 / 16384},
    {"position 32k", D::Percent, 100.0 / 32768},
    {"second", D::Time, 1},
    {"seconds", D::Time, 1},
    {"minute", D::Time, 60},
    {"minutes", D::Time, 60},
    {"hour", D::Time, 3600},
    {"hours", D::Time, 3600},
    {"day", D::Time, 86400},
    {"days", D::Time, 86400},
    {"millibar", D::Pressure, 1},
    {"millibars", D::Pressure, 1},
    {"mbar", D::Pressure, 1},
    {"mbars", D::Pressure, 1},
    {"hectopascal", D::Pressure, 1},
    {"hectopascals", D::Pressure, 1},
    {"pascal", D::Pressure, 0.01},
    {"pascals", D::Pressure, 0.01},
    {"inch of mercury", D::Pressure, 33.8638866667},
    {"inches of mercury", D::Pressure, 33.8638866667},
    {"inhg", D::Pressure, 33.8638866667},
    {"celsius", D::Temperature, 1},
    {"kelvin", D::Temperature, 1, -273.15},
    {"fahrenheit", D::Temperature, 5.0 / 9, -160.0 / 9},
    {"rankine", D::Temperature, 5.0 / 9, -273.15},
    {"degree per second", D::AngularSpeed, 1},
    {"degrees per second", D::AngularSpeed, 1},
    {"radian per second", D::AngularSpeed, 180 / kPi},
    {"radians per second", D::AngularSpeed, 180 / kPi},
    {"rpm", D::AngularSpeed, 6},
    {"feet per second squared", D::Acceleration, 1},
    {"meters per second squared", D::Acceleration, kFeetPerMetre},
    {"gforce", D::Acceleration, 9.80665 * kFeetPerMetre},
    {"pound", D::Weight, 1},
    {"pounds", D::Weight, 1},
    {"lbs", D::Weight, 1},
    {"kilogram", D::Weight, 2.20462262},
    {"kilograms", D::Weight, 2.20462262},
    {"kg", D::Weight, 2.20462262},
    {"hz", D::Frequency, 1},
    {"khz", D::Frequency, 1e3},
    {"mhz", D::Frequency, 1e6},
});

}  // namespace

const Unit* findUnit(std::string_view name) {
    const auto wanted = standin::lowerCase(standin::trimmed(name));
    for (const auto& unit : kUnits) {
        if (unit.name == wanted) {
            return &unit;
        }
    }
    return nullptr;
}

}  // namespace simulator
