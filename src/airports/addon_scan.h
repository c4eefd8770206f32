// The scan of the user's add-on airports: finds scenery files with airports, tells their publisher, and links
// each airport to a file of the data site or generates one. Worker thread, with a pool of threads for the
// files; lf_linkAirport, lf_notRecognised, lf_keepGenerated and lf_scanLog are called on those.
#pragma once

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "airports/airport_file.h"

namespace skl {

/// Set by a link that was written or a file that was generated in this scan.
extern std::atomic<bool> airportsGenerated;

/// The whole scan; afterwards SCAN_AIRPORTS is off. After a stop the switch stays on.
void lf_scanAirports();
/// Whether the folders gave any link or generated file.
bool lf_scanFolders(const std::vector<std::string>& folders);

/// Appends a line to the scan log. Any thread.
void lf_scanLog(std::string line);
/// Fills the publisher and writes the link file when the site has an archived file for this add-on airport.
/// `archivedCount`: the stands of that file, 0 if not told. True when linked.
bool lf_linkAirport(AirportFile& file, int32_t& archivedCount, const std::string& path);
/// An airport in a form that is not read: finds its code by other means and links it.
void lf_notRecognised(const std::string& path);
/// Two packages may hold one airport: calls `write` with a name of its own beside `target` and renames the
/// outcome to `target`, unless the generated file that is there from this scan has more stands, or as many
/// from a path that sorts lower. False when writing or renaming failed.
bool lf_keepGenerated(const AirportFile& file, const std::filesystem::path& target,
                      const std::function<bool(const std::filesystem::path&)>& write);

}  // namespace skl
