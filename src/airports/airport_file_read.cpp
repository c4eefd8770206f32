// Reading the file of the airport in sight: fetched or local, merged with the learned one, its stands
// numbered.
#include <fmt/format.h>

#include <algorithm>
#include <pugixml.hpp>
#include <system_error>

#include "airports/airport_file.h"
#include "airports/airport_rows.h"
#include "airports/airport_settings.h"
#include "airports/site_documents.h"
#include "airports/stand_neighbours.h"
#include "airports/stand_reader.h"
#include "core/errors.h"
#include "core/folders.h"
#include "core/log.h"
#include "core/parameters.h"
#include "core/text.h"
#include "panel/controls.h"
#include "panel/requests.h"
#include "parking/park_airport.h"
#include "parking/stands.h"
#include "parking/statics.h"

namespace skl {

namespace {

constexpr std::string_view routine = "gf_readApf";
constexpr double unknownNm = 100.0;
// Far beyond the lowest and the highest airport of the world, feet.
constexpr int32_t lowestAltitude = -2000, highestAltitude = 20000;

bool isLocal(std::string_view name) {
    return name.starts_with("airports");
}

pugi::xml_parse_result parseSiteDocument(const std::string& text, pugi::xml_document& document) {
    return document.load_buffer(text.data(), text.size());
}

/// Fetches and parses; empty on success, else the reason. The user finds the site's file beside the lists.
std::string load(const std::string& name, pugi::xml_document& document) {
    pugi::xml_parse_result loaded;
    if (isLocal(name)) {
        loaded = document.load_file(gf_nativePath(name).c_str());
    } else if (const std::string* text = lf_siteDocument(name)) {
        gf_writeText(*text, paths::airports / "park_airport.xml", false);
        loaded = parseSiteDocument(*text, document);
    } else {
        std::string reason = fmt::format("failed to download: '{}'", lf_siteDocumentUrl(name));
        gf_log(reason);
        return reason;
    }
    if (loaded) return {};
    return fmt::format("{}: could not load file: {}", name, loaded.description());
}

/// Feet. A row without a sensible number is told, and the index's elevation stays.
int32_t readAltitude(const pugi::xml_document& document) {
    constexpr std::string_view row = "altitude";
    if (!lf_rowText(document, row)) throw UserErrorException(65, fmt::format("Parameter {} not found", row));
    const auto known = static_cast<int32_t>(parkAirport.alt);
    const auto altitude = lf_rowInt(document, row);
    if (!altitude) return known;
    if (*altitude >= lowestAltitude && *altitude <= highestAltitude) return *altitude;
    gf_logError(fmt::format("Parameter {} {} is no elevation, {} ft is taken", row, *altitude, known));
    return known;
}

int32_t readFactor(const pugi::xml_document& document, std::string_view row) {
    return std::clamp(lf_rowInt(document, row).value_or(-1), -1, 100);
}

void readRows(const pugi::xml_document& document, AirportFile& file) {
    file.code = parkAirport.code;
    file.trafficWeek = lf_rowInt(document, "RT_traffic_week").value_or(0);
    file.publisher = lf_rowText(document, "publisher").value_or("");
    file.altitude = readAltitude(document);
    file.airportName = lf_rowText(document, "airport_name").value_or("");
    parkAirport.alt = file.altitude;
}

void mergeLearned(AirportFile& file, QualityFactors& quality, std::vector<Stand>& stands) {
    std::error_code error;
    if (!fs::exists(file.learnedPath, error)) {
        lf_setParkingPercentage(parking_percentage.defaultValue);
        gf_log(fmt::format("{:24}: {}%", parking_percentage.name, parking_percentage.value.load()));
        return;
    }
    lf_readLearned(file.learnedPath, file, stands, file.handmade);
    quality = gf_qualityFactors(stands);
    if (file.handmade) gf_log("A handmade airport file overruled the archived file!");
}

void putInUse() {
    g_apfLoaded = true;
    gf_enableControl(flushStaticButton, !staticsLock);
    g_parkingChanged = false;
}

void logRead(const std::string& name, const AirportFile& file, QualityFactors quality, size_t standCount) {
    gf_log(fmt::format("Airport file read from '{}' for {}",
                       file.handmade ? gf_pathText(file.learnedPath) : name, file.airportName));
    lf_logRow("publisher", file.publisher);
    gf_log(fmt::format("{:24}: {} ft", "altitude", file.altitude));
    lf_logRow("num_parkpos", standCount);
    lf_logRow("quality factor", gf_qualityText(quality));
    lf_logRow("RT traffic week", file.trafficWeek);
}

/// The stand of the document that is closest, within 100 nm.
double closestStand(const pugi::xml_document& document, LaLo position, std::string& standId) {
    double best = unknownNm;
    for (const pugi::xml_node& node : document.child("parkpositions").children("parkpos")) {
        const auto lat = lf_readDecimal(node.attribute("latitude").value());
        const auto lon = lf_readDecimal(node.attribute("longitude").value());
        if (!lat || !lon) continue;
        const double nm = gf_distanceNm(position, {*lat, *lon});
        if (!(nm < best)) continue;
        best = nm;
        standId = node.attribute("id").value();
    }
    return best;
}

}  // namespace

std::string gf_readApf(const std::string& fileName, AirportFile& file, QualityFactors& quality,
                       std::vector<Stand>& list) {
    if (fileName.empty()) return fmt::format("{}: xml is empty", routine);
    if (!gf_airportInSight()) return fmt::format("{}: no park airport set", routine);
    try {
        pugi::xml_document document;
        std::string reason = load(fileName, document);
        if (!reason.empty()) return reason;
        readRows(document, file);
        lf_readStands(document, list);
        quality = {readFactor(document, "Qf_real"), readFactor(document, "Qf_soft")};
        file.learnedPath = gf_learnedPath(fileName, file.publisher);
        mergeLearned(file, quality, list);
        lf_addFakeOptions(file.code, list);
        file.qfReal = quality.real;
        file.qfSoft = quality.soft;
        lf_numberStands(list);
        putInUse();
        logRead(fileName, file, quality, list.size());
        return list.empty() ? "no stands found" : "";
    } catch (const UserErrorException&) {
        throw;
    } catch (const std::exception& error) {
        return fmt::format("{}: {}", routine, error.what());
    }
}

double gf_readDestApfForClosestStand(const std::string& code, LaLo position, std::string& standId) {
    standId.clear();
    try {
        const std::string name = gf_findAirportFile(code);
        if (name.empty()) return unknownNm;
        pugi::xml_document document;
        if (isLocal(name)) {
            if (!document.load_file(gf_nativePath(name).c_str())) return unknownNm;
        } else {
            const std::string* text = lf_siteDocument(name);
            if (!text || !parseSiteDocument(*text, document)) return unknownNm;
        }
        return closestStand(document, position, standId);
    } catch (const std::exception& error) {
        gf_log(fmt::format("{}: {}", "gf_readDestApfForClosestStand", error.what()));
        return unknownNm;
    }
}

}  // namespace skl
