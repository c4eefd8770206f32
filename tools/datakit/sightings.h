// Sightings: which aircraft was seen at which airport, on which weekday and in which half hours, and on which
// stand where that was seen.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/fnv.h"
#include "tools/datakit/source_file.h"

namespace skl::datakit {

struct Sighting {
    Place place;
    std::string reg;  ///< or the callsign where no registration is known
    std::string airl, type, cs, cs2;
    std::string stand;   ///< empty: seen on the ground, not on which stand
    int32_t day = 0;     ///< 1 Monday to 7 Sunday
    uint64_t hours = 0;  ///< bit n: the half hour that begins n * 30 minutes after midnight UTC
    int32_t week = 0;    ///< of the traffic; 0: not told
};

using SightingsByAirport = StringMap<std::vector<Sighting>>;

/// Appends what a file holds. `airport`: whose sightings they are where the file has no such column. `week`:
/// the same for the week. A row that makes no sense is told and left out.
void readSightings(SourceFile& file, const std::string& airport, int32_t week, SightingsByAirport& sightings);
/// "1", "Mon", "monday,sat" or "1-5": bit n is day n; 0 for a text with anything else in it.
uint32_t weekdaysOf(std::string_view text);
struct HalfHours {
    uint64_t today = 0, tomorrow = 0;
    bool operator==(const HalfHours&) const = default;
};
/// "0,1,47", "12-17" or "44-3", which runs over midnight, divided by commas, semicolons or blanks; nothing
/// set for a text with anything else in it.
HalfHours halfHoursOf(std::string_view text);

}  // namespace skl::datakit
