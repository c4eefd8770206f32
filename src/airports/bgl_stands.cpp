// Helipads and parking positions of a BGL file.
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <unordered_map>

#include "airports/addon_scan.h"
#include "airports/bgl_airport.h"

namespace skl {

namespace {

constexpr double nmPerMeter = 0.0005399568034557236, radPerDegree = 0.017453292519943295;
constexpr double fullCircle = 6.283185307179586;
constexpr double noSpot = 0.0001;  // degrees
constexpr std::string_view duplicateSuffixes = "abcdef";

double longitudeOf(uint32_t value) {
    return value * 4.470348358154297e-7 - 180;
}
double latitudeOf(uint32_t value) {
    return 90 - value * 3.3527612686157227e-7;
}

bool validPlace(LaLo place) {
    const bool inside = place.lat >= -90 && place.lat <= 90 && place.lon >= -180 && place.lon <= 180;
    return inside && !(std::abs(place.lat) <= noSpot && std::abs(place.lon) <= noSpot);
}

std::string placeText(LaLo place) {
    return fmt::format("{:.6f},{:.6f}", place.lat, place.lon);
}

std::string nameText(uint32_t code) {
    static constexpr std::array<const char*, 12> names{"",   "r",   "p",  "np",  "ep", "sep",
                                                       "sp", "swp", "wp", "nwp", "g",  ""};
    return code < names.size() ? names[code] : std::string(1, static_cast<char>(code + 53));
}

/// What the type of a parking position says.
struct Kind {
    bool used, ramp, cargo;
};
Kind kindOf(uint32_t type) {
    if (type == 0 || type == 12 || type == 13) return {false, false, false};
    if (type == 5) return {true, true, true};
    const bool ramp = (type >= 1 && type <= 4) || type == 6 || type == 7 || type == 14;
    return {true, ramp, false};
}

/// One parking position: a head of 14 words, then its airlines.
struct Entry {
    static constexpr uint64_t headWords = 14;
    uint32_t head = 0;
    float radius = 0, heading = 0;
    LaLo place;
    uint64_t words() const { return headWords + (head >> 24); }
    std::string name() const { return nameText(head & 63) + std::to_string((head >> 12) & 0xFFF); }
    Kind kind() const { return kindOf((head >> 8) & 15); }
};

Entry entryAt(const BglRecord& record, uint64_t offset) {
    return {record.at(offset),
            record.real(offset + 1),
            record.real(offset + 2),
            {latitudeOf(record.at(offset + 8)), longitudeOf(record.at(offset + 7))}};
}

/// The name, or one with a letter behind it that is free; empty when all are taken.
std::string uniqueId(BglAirport& airport, const std::string& name) {
    if (airport.ids.insert(name).second) return name;
    airport.duplicates = true;
    for (const char suffix : duplicateSuffixes)
        if (std::string id = name + suffix; airport.ids.insert(id).second) return id;
    return {};
}

/// Straight north is a whole turn; what lies outside of one is brought into it.
double headingOf(float degrees) {
    if (degrees == 0) return fullCircle;
    const double radians = degrees * radPerDegree;
    return degrees > 0 && degrees <= 360 ? radians : normalizeRad(radians);
}

void takeEntry(const Entry& entry, BglAirport& airport, const std::string& path) {
    if (!(entry.radius > 1.0f && entry.radius < 200.0f)) {
        lf_scanLog(fmt::format("Skipped position with radius {:.1F} m in {}", entry.radius, path));
        return;
    }
    const Kind kind = entry.kind();
    if (!kind.used) return;
    if (!validPlace(entry.place)) {
        lf_scanLog(fmt::format("LatLon {} invalid (skipped)", placeText(entry.place)));
        return;
    }
    if (!std::isfinite(entry.heading)) {
        lf_scanLog(fmt::format("Skipped position with heading {} in {}", entry.heading, path));
        return;
    }
    const std::string name = entry.name();
    const std::string id = uniqueId(airport, name);
    if (id.empty()) {
        lf_scanLog(fmt::format("{}Warning: more than 6 duplicate IDs {} in {}", "===> ", name, path));
        return;
    }
    Stand stand;
    stand.id = id;
    stand.lat = entry.place.lat;
    stand.lon = entry.place.lon;
    stand.heading = headingOf(entry.heading);
    stand.radius = entry.radius * nmPerMeter;
    stand.cargo = kind.cargo;
    stand.ramp = kind.ramp;
    stand.duplicateId = id != name;
    airport.file.stands.push_back(std::move(stand));
}

using StandsById = std::unordered_map<std::string, Stand*>;

/// The stands of one name, largest first.
std::vector<Stand*> takeGroup(StandsById& byId, const std::string& base) {
    std::vector<Stand*> group;
    const auto take = [&](const std::string& id) {
        const auto found = byId.find(id);
        if (found == byId.end()) return;
        found->second->duplicateId = false;
        group.push_back(found->second);
        byId.erase(found);
    };
    take(base);
    for (const char suffix : duplicateSuffixes) take(base + suffix);
    std::stable_sort(group.begin(), group.end(),
                     [](const Stand* a, const Stand* b) { return a->radius > b->radius; });
    return group;
}

}  // namespace

void lf_readHelipad(const BglRecord& record, BglAirport& airport) {
    if (!record.holds(7)) {
        lf_scanLog("Skipped helipad of " + airport.file.code + ", its record is too short");
        return;
    }
    const LaLo place{latitudeOf(record.at(4)), longitudeOf(record.at(3))};
    if (!validPlace(place)) {
        lf_scanLog("lat/lon helipad incorrect (skipped): " + placeText(place));
        return;
    }
    const float size = record.real(7);
    if (!(size > 0) || !std::isfinite(size)) {
        lf_scanLog(fmt::format("Skipped helipad of {} with size {:.1F} m", airport.file.code, size));
        return;
    }
    // One step of a coordinate is more than the 1e-8 degrees within which two places count as one.
    if (!airport.helipads.insert(uint64_t{record.at(3)} << 32 | record.at(4)).second) {
        lf_scanLog(fmt::format("double helipad {} (skipped) {}", airport.file.code, placeText(place)));
        return;
    }
    Stand stand;
    stand.id = fmt::format("helipad{}", airport.nextHelipad++);
    stand.lat = place.lat;
    stand.lon = place.lon;
    stand.radius = size * 0.5 * nmPerMeter;
    stand.heli = true;
    airport.file.stands.push_back(std::move(stand));
}

void lf_readTaxiwayParking(const BglRecord& record, BglAirport& airport, const std::string& path) {
    const uint32_t count = record.at(1) >> 16;
    uint64_t offset = 2;
    for (uint32_t i = 0; i < count; ++i) {
        if (!record.holds(offset + Entry::headWords - 1)) {
            lf_scanLog(fmt::format("Only {} of {} positions in {}, the record is too short", i, count, path));
            return;
        }
        const Entry entry = entryAt(record, offset);
        takeEntry(entry, airport, path);
        offset += entry.words();
    }
}

void lf_sortOutDuplicates(AirportFile& file) {
    StandsById byId;
    for (Stand& stand : file.stands) byId.emplace(stand.id, &stand);
    for (Stand& stand : file.stands) {
        if (!stand.duplicateId) continue;
        const std::string base = stand.id.substr(0, stand.id.size() - 1);
        const auto group = takeGroup(byId, base);
        for (size_t i = 0; i < group.size(); ++i)
            group[i]->id = i == 0 ? base : base + duplicateSuffixes[i - 1];
        for (Stand* member : group) byId.emplace(member->id, member);
    }
}

}  // namespace skl
