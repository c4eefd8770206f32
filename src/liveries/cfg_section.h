// One [fltsim.x] section of an aircraft.cfg into one livery. Any thread: what is found suspicious goes to the
// caller's own reports, and whether a title was seen before is not asked here.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "liveries/aircraft_cfg.h"
#include "liveries/livery_data.h"
#include "liveries/scan_reports.h"

namespace skl {

/// The livery of a section of a normal file; an empty title means none. The first line is the section's
/// header.
LiveryData lf_procesFltSimSection(uint32_t priority, CfgLines lines, std::string_view model,
                                  std::string_view cfgPath, ScanReports& reports);
/// Likewise for a file of the two IVAO packages; `folder` holds the file and its texture folders.
LiveryData lf_procesIvaoSection(uint32_t priority, CfgLines lines, std::string_view model,
                                std::string_view cfgPath, const std::filesystem::path& folder,
                                ScanReports& reports);

}  // namespace skl
