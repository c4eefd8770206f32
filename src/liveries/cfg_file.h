// One aircraft.cfg file into its liveries: character set, section check, aircraft type, sections. Any thread.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "liveries/aircraft_cfg.h"
#include "liveries/livery_data.h"
#include "liveries/scan_reports.h"

namespace skl {

struct CfgFile {
    std::filesystem::path path;
    std::string text;  ///< the path as UTF-8
    bool ivao = false;
};

struct FoundLivery {
    LiveryData livery;
    std::string head;  ///< path and section header, for reports
    bool ivao = false;
};

struct CfgYield {
    std::vector<FoundLivery> found;
    ScanReports reports;
};

/// Both append to `yield`; a file that fails adds no livery. `buffer` is working room, kept from file to
/// file.
void lf_searchLiveriesinFile(uint32_t priority, const CfgFile& file, CfgText& buffer, CfgYield& yield);
void lf_searchIvaoFile(uint32_t priority, const CfgFile& file, CfgText& buffer, CfgYield& yield);

/// The aircraft type that the lines name; empty, after a report, if there is none.
std::string lf_modelOfFile(CfgLines lines, std::string_view cfgPath, ScanReports& reports);
/// Likewise out of the path of a file of the IVAO packages.
std::string lf_modelOfIvaoPath(std::string_view cfgPath, ScanReports& reports);

}  // namespace skl
