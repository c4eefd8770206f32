// The index and the plain names, each out of one XML file of the input folder.
#include "airports/airport_index.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <pugixml.hpp>
#include <stdexcept>

#include "airports/airport_file.h"
#include "core/folders.h"
#include "core/log.h"
#include "core/text.h"

namespace skl {

std::vector<Airport> airportIndex;
StringMap<std::string> airportNames;

namespace {

constexpr size_t expectedAirports = 44000;
constexpr double closeNm = 5.0;
constexpr double unknownNm = 100.0;
// A little less than the true length, so that the test by latitude alone never hides an airport at 5.0 nm.
constexpr double nmPerLatitude = 59.9;

bool airportsLoaded = false;

double toNumber(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n\r"), text.size()));
    if (text.starts_with('+')) text.remove_prefix(1);
    double value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec == std::errc::result_out_of_range) throw std::out_of_range("stod argument out of range");
    if (result.ec != std::errc{} || !std::isfinite(value))
        throw std::invalid_argument("invalid stod argument");
    return value;
}

/// A code becomes the name of files.
bool isCode(std::string_view text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) {
        return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' ||
               c == '_';
    });
}

void readEntry(const pugi::xml_node& entry) {
    Airport airport;
    airport.code = entry.attribute("code").value();
    if (!isCode(airport.code)) {
        gf_log(fmt::format("'{}' is no code of an airport", airport.code));
        return;
    }
    const auto lat = entry.attribute("lat"), lon = entry.attribute("lon"), alt = entry.attribute("alt");
    if (!lat || !lon || !alt) {
        gf_log(fmt::format("Missing lat/lon/alt for airport '{}'", airport.code));
        return;
    }
    try {
        airport.alt = toNumber(alt.value());
        airport.lat = toNumber(lat.value());
        airport.lon = toNumber(lon.value());
    } catch (const std::logic_error& error) {
        gf_log(fmt::format("Error parsing coordinates for airport '{}': {}", airport.code, error.what()));
        return;
    }
    airport.iata = entry.attribute("iata").value();
    airportIndex.push_back(std::move(airport));
}

struct NearAirports {
    const Airport* closest = nullptr;
    const Airport* neighbour = nullptr;  ///< the closest one before it, in the order of the codes
};

NearAirports findNear(LaLo position) {
    NearAirports near;
    double best = unknownNm;
    for (const Airport& airport : airportIndex) {
        if (std::abs(airport.lat - position.lat) * nmPerLatitude > closeNm) continue;
        const double distance = gf_distanceNm(position, airport.pos());
        if (distance > closeNm || distance >= best) continue;
        best = distance;
        near.neighbour = near.closest;
        near.closest = &airport;
    }
    return near;
}

}  // namespace

bool gf_readAirports(std::string_view fileName) {
    if (airportsLoaded) return !airportIndex.empty();
    const fs::path path = paths::input / fileName;
    airportIndex.reserve(expectedAirports);
    pugi::xml_document document;
    const auto loaded = document.load_file(path.c_str());
    if (!loaded)
        throw std::runtime_error(fmt::format("{} not loaded: {}", gf_pathText(path), loaded.description()));
    const pugi::xml_node top = document.child("airports");
    if (!top) throw std::runtime_error(fmt::format("Missing <airports> root in: {}", gf_pathText(path)));
    for (const pugi::xml_node& entry : top.children("airport")) readEntry(entry);
    std::stable_sort(airportIndex.begin(), airportIndex.end(),
                     [](const Airport& a, const Airport& b) { return a.code < b.code; });
    gf_log(fmt::format("{} airports read from '{}'", airportIndex.size(), gf_pathText(path)));
    airportIndex.shrink_to_fit();
    airportsLoaded = true;
    return !airportIndex.empty();
}

void gf_readAirportNames() {
    airportNames.clear();
    const fs::path path = paths::input / "airports_msfs_names.xml";
    pugi::xml_document document;
    if (!document.load_file(path.c_str())) {
        gf_logError(fmt::format("Failed to load airport names from '{}'", gf_pathText(path)));
        return;
    }
    const pugi::xml_node top = document.child("AirportNames");
    if (!top) {
        gf_logError("No AirportNames node found.");
        return;
    }
    for (const pugi::xml_node& entry : top.children("airport")) {
        const auto code = entry.attribute("ICAO"), name = entry.attribute("name");
        if (code && name)
            airportNames.emplace(code.value(), name.value());
        else
            gf_log("Skipped airport entry with missing ICAO or name");
    }
    gf_log(fmt::format("{} airport names read from '{}'", airportNames.size(), gf_pathText(path)));
}

std::string gf_airportName(std::string_view code) {
    const auto found = airportNames.find(code);
    return found == airportNames.end() ? std::string() : found->second;
}

const Airport* gf_findAirport(std::string_view code) {
    const auto found = std::lower_bound(
        airportIndex.begin(), airportIndex.end(), code,
        [](const Airport& airport, std::string_view wanted) { return airport.code < wanted; });
    return found != airportIndex.end() && found->code == code ? &*found : nullptr;
}

const Airport* gf_closestAirport(LaLo position) {
    const auto [closest, neighbour] = findNear(position);
    if (!closest || !neighbour) return closest;
    gf_log(fmt::format("Airport {} is closest, neighbour is {}", closest->code, neighbour->code));
    std::string stand, neighbourStand;
    const double nm = gf_readDestApfForClosestStand(closest->code, position, stand);
    const double neighbourNm = gf_readDestApfForClosestStand(neighbour->code, position, neighbourStand);
    if (!(neighbourNm < nm)) return closest;
    gf_log(fmt::format(
        "Airport {} is closest, but stand {} at neighbouring airport {} is closer at {:.0F} meters ...",
        closest->code, neighbourStand, neighbour->code, neighbourNm * metersPerNm));
    return neighbour;
}

std::string gf_airportDisplayId(const Airport& airport) {
    return airport.iata.empty() ? airport.code : fmt::format("{} ({})", airport.code, airport.iata);
}

void gf_clearAirports() {
    airportIndex.clear();
    airportNames.clear();
    airportsLoaded = false;
}

}  // namespace skl
