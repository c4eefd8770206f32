#include "airports/stand_reader.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>

#include "airports/airport_rows.h"
#include "core/errors.h"
#include "core/fnv.h"
#include "core/text.h"
#include "liveries/reference_db.h"

namespace skl {

namespace {

constexpr double nmPerMeter = 0.0005399568034557236;
constexpr double radPerDegree = 0.017453292519943295;
constexpr double largestRadiusMeters = 200;  // wider than any stand or helicopter field

bool flag(const pugi::xml_node& node, const char* attribute) {
    return gf_parseBool(node.attribute(attribute).value());
}

/// Radians; 360 stays a full turn, what lies outside of one is brought into it.
double readHeading(const pugi::xml_node& node, const std::string& id) {
    double degrees = lf_standNumber(node, "heading", id).value_or(0);
    if (degrees < 0 || degrees > 360) {
        gf_logError(fmt::format("Stand {}: heading {} is not within 0 to 360", id, degrees));
        degrees = std::fmod(degrees, 360.0);
        if (degrees < 0) degrees += 360.0;
    }
    return degrees * radPerDegree;
}

int32_t readDay(const pugi::xml_node& node) {
    const auto attribute = node.attribute("day");
    if (!attribute) return 0;
    const int32_t day = lf_readSaturated(attribute.value()).value_or(-1);
    if (day >= 0 && day <= 7) return day;
    gf_logError(fmt::format("Option {}: day '{}' is not within 1 to 7", node.attribute("reg").value(),
                            attribute.value()));
    return 0;
}

void readCallsigns(std::string_view text, StandOption& option) {
    const size_t colon = text.find(':');
    option.cs = text.substr(0, colon);
    if (colon != std::string_view::npos) option.cs2 = text.substr(colon + 1);
}

void readOptions(const pugi::xml_node& node, bool fromArchive, std::vector<StandOption>& options) {
    const auto children = node.children("opt");
    options.reserve(static_cast<size_t>(std::distance(children.begin(), children.end())));
    for (const pugi::xml_node& child : children) {
        options.push_back(lf_readOption(child, fromArchive));
        options.back().optionId = static_cast<int32_t>(options.size());
    }
}

}  // namespace

std::optional<double> lf_standNumber(const pugi::xml_node& node, const char* attribute,
                                     const std::string& id) {
    const auto found = node.attribute(attribute);
    if (!found) return 0.0;
    const auto value = lf_readDecimal(found.value());
    if (!value) gf_logError(fmt::format("Stand {}: {} '{}' is no number", id, attribute, found.value()));
    return value;
}

double lf_standRadius(const pugi::xml_node& node, const std::string& id) {
    const double meters = lf_standNumber(node, "radius", id).value_or(0);
    const double bounded = std::clamp(meters, 0.0, largestRadiusMeters);
    if (bounded != meters)
        gf_logError(fmt::format("Stand {}: radius {} m, {} m is taken", id, meters, bounded));
    return bounded * nmPerMeter;
}

StandOption lf_readOption(const pugi::xml_node& node, bool fromArchive) {
    StandOption option;
    readCallsigns(node.attribute("cs").value(), option);
    option.reg = node.attribute("reg").value();
    const auto record = option.reg.empty() ? std::nullopt : gf_dbaseLookup(option.reg);
    option.airl = record ? record->airl : node.attribute("airl").value();
    option.type = record ? record->type : node.attribute("type").value();
    option.real = !flag(node, "soft");
    option.day = readDay(node);
    option.hours = gf_hours2bitset(node.attribute("hh").value());
    option.fromArchive = fromArchive;
    return option;
}

Stand* lf_readStand(const pugi::xml_node& node, const std::string& id, bool fromArchive,
                    std::vector<Stand>& stands) {
    const auto lat = lf_standNumber(node, "latitude", id);
    const auto lon = lf_standNumber(node, "longitude", id);
    if (!lat || !lon || (*lat == 0 && *lon == 0)) return nullptr;
    if (std::abs(*lat) > 90 || std::abs(*lon) > 180) {
        gf_logError(fmt::format("Stand {}: {}, {} is no position, left out", id, *lat, *lon));
        return nullptr;
    }
    Stand& stand = stands.emplace_back();
    stand.id = id;
    stand.lat = *lat;
    stand.lon = *lon;
    stand.radius = lf_standRadius(node, id);
    readOptions(node, fromArchive, stand.options);
    stand.heli = flag(node, "heli");
    stand.ramp = flag(node, "ramp");
    stand.cargo = flag(node, "cargo");
    stand.heading = readHeading(node, id);
    return &stand;
}

void lf_readStands(const pugi::xml_document& document, std::vector<Stand>& stands) {
    StringSet met;
    for (const pugi::xml_node& node : document.child("parkpositions").children("parkpos")) {
        const std::string id = node.attribute("id").value();
        if (!met.insert(id).second)
            throw UserErrorException(94, fmt::format("Parking position {} appears more than once?", id));
        if (stands.size() >= mostStands) {
            gf_logError(fmt::format("More than {} stands, the others are left out", mostStands));
            return;
        }
        lf_readStand(node, id, true, stands);
    }
}

}  // namespace skl
