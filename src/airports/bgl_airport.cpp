#include "airports/bgl_airport.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <system_error>

#include "airports/addon_scan.h"
#include "airports/airport_index.h"
#include "core/folders.h"
#include "core/text.h"

namespace skl {

namespace {

constexpr uint32_t helipadRecord = 38, parkingRecord = 231;
constexpr uint64_t elevationWord = 5, firstSubRecord = 17;
constexpr double feetPerMillimeter = 3.2808399 / 1000;
constexpr double highestAirport = 10000;  // feet; a negative elevation reads as more, too

int32_t altitudeOf(uint32_t millimeters) {
    const double feet = std::round(millimeters * feetPerMillimeter);
    return feet > highestAirport ? 0 : static_cast<int32_t>(feet);
}

void readSubRecords(const BglRecord& record, const std::vector<uint32_t>& words, BglAirport& airport,
                    const std::string& path) {
    for (uint64_t index = record.begin() + firstSubRecord; index + 1 < record.end();) {
        const BglRecord part(words, index, record.end());
        if (part.id() == helipadRecord) lf_readHelipad(part, airport);
        if (part.id() == parkingRecord) {
            lf_readTaxiwayParking(part, airport, path);
            if (airport.duplicates) lf_sortOutDuplicates(airport.file);
            return;
        }
        if (!part.advances()) return;
        index = part.next();
    }
}

void lf_generateApf(BglAirport& airport) {
    AirportFile& file = airport.file;
    if (file.stands.empty()) return;
    const std::string name = file.code + ".xml";
    const int32_t helipads = airport.nextHelipad - 1;
    const auto plural = [](auto count) { return gf_plural(static_cast<uint64_t>(count)); };
    lf_scanLog(
        fmt::format("Generated {}: {} position{}{}", name, file.stands.size(), plural(file.stands.size()),
                    helipads > 0 ? fmt::format(", of which {} helipad{}", helipads, plural(helipads)) : ""));
    std::sort(file.stands.begin(), file.stands.end(),
              [](const Stand& a, const Stand& b) { return a.id < b.id; });
    const fs::path folder = file.publisher == "simaddon" ? paths::mySimaddon : paths::myThirdparty;
    std::error_code error;  // tells itself when the file is written
    fs::create_directories(folder, error);
    const fs::path path = folder / gf_pathFromText(name);
    const bool written = lf_keepGenerated(file, path, [&file](const fs::path& beside) {
        return gf_writeApf(file, beside, ApfMode::generated);
    });
    if (written)
        airportsGenerated = true;
    else
        lf_scanLog(fmt::format("{}Generating {} did not succeed", "===> ", gf_pathText(path)));
}

}  // namespace

void lf_readBglAirport(const BglRecord& record, const std::vector<uint32_t>& words, const std::string& code,
                       const std::string& path) {
    BglAirport airport;
    AirportFile& file = airport.file;
    file.code = code;
    int32_t archived = 0;
    const bool linked = lf_linkAirport(file, archived, path);
    if (linked && !sim2020) return;
    file.altitude = altitudeOf(record.at(elevationWord));
    file.airportName = gf_airportName(code);
    readSubRecords(record, words, airport, path);
    const auto count = static_cast<int64_t>(file.stands.size());
    const bool simaddon = file.publisher == "simaddon";
    if (count > archived && !simaddon)
        lf_scanLog(
            fmt::format("{}{} has {} parkpos while archived one has {}", "===> ", code, count, archived));
    if (!linked || (count > archived && !simaddon)) lf_generateApf(airport);
}

}  // namespace skl
