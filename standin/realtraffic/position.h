// The position report of the program: "Qs121=" and seven numbers between semicolons.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string_view>

namespace realtraffic {

struct Position {
    double pitch = 0, bank = 0, heading = 0;  // degrees
    double altitude = 0;                      // feet
    double speed = 0;                         // knots
    double lat = 0, lon = 0;                  // degrees
    nlohmann::json report() const;
};

// `values` is what stands behind the equals sign; nothing when it is no position.
std::optional<Position> positionOf(std::string_view values);

}  // namespace realtraffic
