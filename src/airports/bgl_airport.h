// One airport record of a BGL file: from its sub-records to the generated file.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_set>
#include <vector>

#include "airports/airport_file.h"
#include "airports/bgl_record.h"

namespace skl {

/// An airport while it is read.
struct BglAirport {
    AirportFile file;
    std::unordered_set<uint64_t> helipads;  ///< places met so far, as the file holds them
    int32_t nextHelipad = 1;
    std::unordered_set<std::string> ids;  ///< of the stands so far
    bool duplicates = false;              ///< a stand's name was met twice
};

/// Links the airport, or generates its file when there is no link or the link knows fewer stands.
void lf_readBglAirport(const BglRecord& record, const std::vector<uint32_t>& words, const std::string& code,
                       const std::string& path);
void lf_readHelipad(const BglRecord& record, BglAirport& airport);
void lf_readTaxiwayParking(const BglRecord& record, BglAirport& airport, const std::string& path);
/// Of stands with one name the largest gets the plain name, the next ones "a", "b" and so on behind it.
void lf_sortOutDuplicates(AirportFile& file);

}  // namespace skl
