// Writing an airport file: a generated one with its stands, a learned one with what the archived lacks, or a
// stock one with all there is.
#include <fmt/format.h>

#include <algorithm>
#include <pugixml.hpp>

#include "airports/airport_file.h"
#include "airports/airport_rows.h"
#include "airports/airport_settings.h"
#include "core/xml_file.h"
#include "liveries/reference_db.h"

namespace skl {

namespace {

constexpr double metersToWrite = 1852;
constexpr double degreesPerRad = 57.29577951308232;

/// How much of a stand goes into the file.
enum class Part { nothing, options, changes, all };

bool carriesOption(const Stand& stand) {
    return std::any_of(stand.options.begin(), stand.options.end(),
                       [](const StandOption& option) { return option.optionId != 0; });
}

Part partOf(const Stand& stand, const AirportFile& file, ApfMode mode) {
    if (mode != ApfMode::learned || file.handmade || stand.manual) return Part::all;
    if (stand.radiusChanged || stand.cargoChanged) return Part::changes;
    return carriesOption(stand) ? Part::options : Part::nothing;
}

void set(pugi::xml_node node, const char* attribute, const std::string& value) {
    node.append_attribute(attribute) = value.c_str();
}

void setFlag(pugi::xml_node node, const char* attribute, bool value) {
    set(node, attribute, value ? "true" : "false");
}

std::string radiusText(const Stand& stand) {
    return fmt::format("{:.1f}", stand.radius * metersToWrite);
}

void writeAll(pugi::xml_node node, const Stand& stand) {
    set(node, "latitude", fmt::format("{:.6f}", stand.lat));
    set(node, "longitude", fmt::format("{:.6f}", stand.lon));
    set(node, "heading", fmt::format("{:.1f}", stand.heading * degreesPerRad));
    set(node, "radius", radiusText(stand));
    if (stand.heli)
        setFlag(node, "heli", true);
    else
        setFlag(node, "cargo", stand.cargo);
    setFlag(node, "ramp", stand.ramp);
    if (stand.manual) setFlag(node, "manual", true);
}

void writeChanges(pugi::xml_node node, const Stand& stand) {
    if (stand.radiusChanged) {
        setFlag(node, "radius_change", true);
        set(node, "radius", radiusText(stand));
    }
    if (stand.cargoChanged) {
        setFlag(node, "cargo_change", true);
        setFlag(node, "cargo", stand.cargo);
    }
}

void writeOption(pugi::xml_node node, const StandOption& option, ApfMode mode) {
    set(node, "reg", option.reg);
    // Whoever reads a stock file may have another database.
    if (mode == ApfMode::stock || !gf_dbaseLookup(option.reg)) {
        set(node, "airl", option.airl);
        set(node, "type", option.type);
    }
    if (!option.real) setFlag(node, "soft", true);
    set(node, "day", std::to_string(option.day));
    set(node, "hh", gf_bitset2hours(option.hours));
    if (!option.cs.empty()) set(node, "cs", option.cs2.empty() ? option.cs : option.cs + ':' + option.cs2);
}

void writeStand(pugi::xml_node parent, const Stand& stand, Part part, ApfMode mode) {
    pugi::xml_node node = parent.append_child("parkpos");
    set(node, "id", stand.id);
    if (part == Part::all) writeAll(node, stand);
    if (part == Part::changes) writeChanges(node, stand);
    if (mode == ApfMode::generated) return;
    for (const StandOption& option : stand.options)
        if (option.optionId != 0) writeOption(node.append_child("opt"), option, mode);
}

void writeRows(pugi::xml_node parameters, const AirportFile& file, size_t standCount, ApfMode mode) {
    const bool handmade = mode == ApfMode::learned && file.handmade;
    lf_appendRow(parameters, "airport_name", file.airportName);
    lf_appendRow(parameters, "publisher", file.publisher);
    if (handmade) lf_appendRow(parameters, "handmade", "true");
    if (handmade || mode != ApfMode::learned)
        lf_appendRow(parameters, "altitude", std::to_string(file.altitude));
    lf_appendRow(parameters, "num_parkpos", std::to_string(standCount));
    if (handmade || mode == ApfMode::stock) {
        lf_appendRow(parameters, "Qf_real", std::to_string(file.qfReal));
        lf_appendRow(parameters, "Qf_soft", std::to_string(file.qfSoft));
    }
    if (mode == ApfMode::stock && file.trafficWeek > 0)
        lf_appendRow(parameters, "RT_traffic_week", std::to_string(file.trafficWeek));
    if (file.publisher == "unknown") {
        lf_appendRow(parameters, "BGLpath", file.bglPath);
        lf_appendRow(parameters, "manufacturer", file.manufacturer);
        lf_appendRow(parameters, "creator", file.creator);
    }
    if (mode == ApfMode::learned) lf_appendAirportSettings(parameters);
}

}  // namespace

bool lf_apfDocument(const AirportFile& file, ApfMode mode, pugi::xml_document& document) {
    if (!gf_writeMeta(document)) return false;
    pugi::xml_node parameters = document.append_child("parameters");
    pugi::xml_node parkpositions = document.append_child("parkpositions");
    size_t written = 0;
    for (const Stand& stand : file.stands) {
        const Part part = partOf(stand, file, mode);
        if (part == Part::nothing) continue;
        writeStand(parkpositions, stand, part, mode);
        ++written;
    }
    writeRows(parameters, file, written, mode);
    return true;
}

bool gf_writeApf(const AirportFile& file, const std::filesystem::path& path, ApfMode mode) {
    pugi::xml_document document;
    return lf_apfDocument(file, mode, document) && gf_saveXml(document, path);
}

}  // namespace skl
