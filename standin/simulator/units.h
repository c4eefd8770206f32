// Units by name. Each belongs to a dimension, whose values are kept in one unit: degrees, feet, knots,
// percent, seconds, millibars, degrees Celsius, degrees a second, feet a second squared, pounds, hertz.
#pragma once

#include <string_view>

namespace simulator {

enum class Dimension {
    Number,
    Angle,
    Length,
    Speed,
    Percent,
    Time,
    Pressure,
    Temperature,
    AngularSpeed,
    Acceleration,
    Weight,
    Frequency
};

struct Unit {
    std::string_view name;
    Dimension dimension;
    double factor;  // kept value of one of this unit
    double offset = 0;

    double fromKept(double value) const { return (value - offset) / factor; }
    double toKept(double value) const { return value * factor + offset; }
};

// In any case; nullptr for a unit that is not known.
const Unit* findUnit(std::string_view name);

}  // namespace simulator
