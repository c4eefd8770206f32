// Order and units: pitch and bank in radians times 100000, heading in radians, altitude in feet times 1000,
// speed in knots times 1000, latitude and longitude in radians. Pitch, bank and altitude carry no decimals,
// nor an exponent.
#include "standin/realtraffic/position.h"

#include <array>
#include <cmath>
#include <nlohmann/json.hpp>

#include "standin/common/text.h"

namespace realtraffic {

namespace {

constexpr double kDegrees = 180.0 / 3.14159265358979323846;
constexpr double kAngleScale = 100000;
constexpr double kThousandths = 1000;
constexpr std::array<std::size_t, 3> kWholeNumbers{0, 1, 3};

}  // namespace

std::optional<Position> positionOf(std::string_view values) {
    const auto fields = standin::split(values, ';');
    std::array<double, 7> numbers{};
    if (fields.size() != numbers.size()) {
        return std::nullopt;
    }
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        const auto number = standin::numberOf(fields[i]);
        if (!number) {
            return std::nullopt;
        }
        numbers[i] = *number;
    }
    for (const auto i : kWholeNumbers) {
        if (fields[i].find_first_of(".eE") != std::string_view::npos) {
            return std::nullopt;
        }
    }
    const Position position{numbers[0] / kAngleScale * kDegrees,
                            numbers[1] / kAngleScale * kDegrees,
                            numbers[2] * kDegrees,
                            numbers[3] / kThousandths,
                            numbers[4] / kThousandths,
                            numbers[5] * kDegrees,
                            numbers[6] * kDegrees};
    constexpr double kRounding = 1e-4;
    if (std::abs(position.lat) > 90 + kRounding || std::abs(position.lon) > 180 + kRounding) {
        return std::nullopt;
    }
    return position;
}

nlohmann::json Position::report() const {
    return {{"pitch", pitch},       {"bank", bank},    {"heading", heading}, {"altitude", altitude},
            {"groundSpeed", speed}, {"latitude", lat}, {"longitude", lon}};
}

}  // namespace realtraffic
