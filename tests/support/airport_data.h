// Airports and their files for tests: an index in memory, and files of stands on disk.
#pragma once

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "airports/airport_index.h"
#include "tests/support/temp_folder.h"

namespace skl::test {

inline void useAirports(std::vector<Airport> airports) {
    gf_clearAirports();
    airportIndex = std::move(airports);
    std::sort(airportIndex.begin(), airportIndex.end(),
              [](const Airport& a, const Airport& b) { return a.code < b.code; });
}

/// A place that is so many miles away to the last bit; the next latitude north is beyond.
inline LaLo exactlyAway(LaLo from, double nm) {
    for (double lon = from.lon;; lon += 1e-7) {
        double in = from.lat, out = from.lat + nm / 50;
        for (double middle = in; (middle = (in + out) / 2) != in && middle != out;)
            (gf_distanceNm(from, {middle, lon}) <= nm ? in : out) = middle;
        if (gf_distanceNm(from, {in, lon}) == nm) return {in, lon};
    }
}
inline LaLo nextNorth(LaLo place) {
    return {std::nextafter(place.lat, 90.0), place.lon};
}

/// The user's own file of an airport with one stand.
inline void writeAirportFile(const std::string& code, const std::string& stand, LaLo place) {
    const std::string text = fmt::format(
        "<parameters><parameter name='altitude' value='7'/></parameters><parkpositions><parkpos id='{}' "
        "latitude='{:.9f}' longitude='{:.9f}' heading='90' radius='20'/></parkpositions>",
        stand, place.lat, place.lon);
    writeFile(fmt::format("airports/my_thirdparty/{}.xml", code), text);
}

}  // namespace skl::test
