// Airports in the simulator's binary scenery files (BGL): elevation, helipads and parking positions, from
// which an airport file is generated. Everything else in a file is passed over by its length. Runs on the
// scan's worker threads, one file each; shared are only the scan log and the link step, with locks of their
// own.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace skl {

/// Whether the file's section table names airports: reads the header and the table alone. False for a file
/// that cannot be opened or is no BGL.
bool lf_hasAirportSection(const std::filesystem::path& path);
/// Generates or links every airport of the file. Throws std::out_of_range for a file that ends within a
/// record; airports that were read before it stand.
void lf_processBGLfile(const std::filesystem::path& path);
/// The same for the words of a file, little-endian.
void lf_processBglWords(const std::vector<uint32_t>& words, const std::string& path);
/// The text of a code in base 38 above a field of 5 bits; `valid`: exactly four characters, no blank.
std::string lf_decodeIdentifierOrRegionCode(uint32_t value, bool& valid);

}  // namespace skl
