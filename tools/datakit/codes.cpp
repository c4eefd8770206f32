#include "tools/datakit/codes.h"

#include <algorithm>
#include <cmath>

#include "core/text.h"
#include "tools/datakit/source_file.h"

namespace skl::datakit {

namespace {

constexpr double lowestFeet = -2000, highestFeet = 20000;  // what the program's reader takes

bool isAlphanumeric(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

/// In upper case, if its length lies within the bounds and all its characters are letters, digits or `other`.
std::optional<std::string> codeOf(std::string_view text, size_t shortest, size_t longest,
                                  std::string_view other = {}) {
    std::string code = gf_upper(text);
    if (code.size() < shortest || code.size() > longest) return std::nullopt;
    const bool plain = std::all_of(code.begin(), code.end(), [other](char c) {
        return isAlphanumeric(c) || other.find(c) != std::string_view::npos;
    });
    return plain ? std::optional(std::move(code)) : std::nullopt;
}

}  // namespace

std::optional<std::string> airportCode(std::string_view text) {
    return codeOf(text, 2, 10, "-_");
}

std::optional<std::string> airlineCode(std::string_view text) {
    return codeOf(text, 3, 3);
}

std::optional<std::string> typeCode(std::string_view text) {
    return codeOf(text, 2, 4);
}

std::optional<LaLo> position(std::string_view lat, std::string_view lon) {
    const auto latitude = wholeNumber(lat), longitude = wholeNumber(lon);
    if (!latitude || !longitude || std::abs(*latitude) > 90 || std::abs(*longitude) > 180)
        return std::nullopt;
    const LaLo place{*latitude, *longitude};
    return positionKnown(place) ? std::optional(place) : std::nullopt;
}

bool isElevation(double feet) {
    return feet >= lowestFeet && feet <= highestFeet;
}

double metresBetween(LaLo a, LaLo b) {
    return gf_distanceNm(a, b) * metersPerNm;
}

}  // namespace skl::datakit
