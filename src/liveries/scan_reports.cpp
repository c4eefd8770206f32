#include "liveries/scan_reports.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <system_error>

#include "core/folders.h"
#include "core/log.h"
#include "core/text.h"
#include "liveries/livery_scan.h"

namespace skl {

ScanReports scanReports;

namespace {

using Lines = std::vector<std::string>;

struct ReportKind {
    Lines ScanReports::*list;
    const char* file;
    bool isError;
    bool uniqueLines;
    const char* summary;  ///< count, plural suffix, path
};

constexpr ReportKind kinds[] = {
    {&ScanReports::invalidAirlines, "InvalidAirlineCodes.txt", true, false,
     "{0} invalid airline code{1}, see {2}"},
    {&ScanReports::invalidModels, "InvalidAircraftCodes.txt", true, false,
     "{0} invalid model code{1}, see {2}"},
    {&ScanReports::modelFixLines, "Fixes.txt", true, false, "{0} code fixes, see {2}"},
    {&ScanReports::invalidCfgFiles, "InvalidAircraftCfgFiles.txt", true, false,
     "{0} invalid aircraft.cfg files, see {2}"},
    {&ScanReports::incompleteSections, "IncompleFltsimSections.txt", true, true,
     "{0} incomplete [fltsim.x] sections, see {2}"},
    {&ScanReports::noSectionFiles, "AircraftCfgWithNoFltsimSection.txt", false, false,
     "{0} empty aircraft.cfg files, see {2}"},
    {&ScanReports::conversionLines, "AirlineModelConversions.txt", false, false,
     "{0} liveries updated with real live data from dbase, see {2}"},
};

void writeReport(const ReportKind& kind) {
    Lines& lines = scanReports.*kind.list;
    if (lines.empty()) return;
    std::sort(lines.begin(), lines.end());
    if (kind.uniqueLines) lines.erase(std::unique(lines.begin(), lines.end()), lines.end());
    const fs::path& folder = kind.isError ? paths::errors : paths::info;
    const fs::path path = folder / kind.file;
    lf_writeReport(lines, path);
    gf_log(fmt::format(fmt::runtime(kind.summary), lines.size(), gf_plural(lines.size()), gf_pathText(path)));
}

}  // namespace

void lf_writeReport(const Lines& lines, const fs::path& path) {
    std::error_code ignored;  // the writing tells of a folder that cannot be made
    fs::create_directories(path.parent_path(), ignored);
    std::string text;
    for (const auto& line : lines) text.append(line).append("\n");
    if (!gf_writeText(text, path, false)) gf_logError(fmt::format("could not write {}", gf_pathText(path)));
}

void ScanReports::append(ScanReports&& other) {
    for (const auto& kind : kinds) {
        Lines& from = other.*kind.list;
        Lines& to = this->*kind.list;
        to.insert(to.end(), std::make_move_iterator(from.begin()), std::make_move_iterator(from.end()));
        from.clear();
    }
}

std::vector<std::string> lf_staleReportFiles() {
    std::vector<std::string> files{gf_pathText(paths::info / "AircraftCfgWithNoFltsimSection.txt"),
                                   gf_pathText(paths::liveriesScanned),
                                   gf_pathText(paths::errors / "InlineRegcodes.txt")};
    for (const auto& kind : kinds)
        if (kind.isError) files.push_back(gf_pathText(paths::errors / kind.file));
    return files;
}

void gf_writeScanReports() {
    const bool noErrors = std::none_of(std::begin(kinds), std::end(kinds), [](const ReportKind& kind) {
        return kind.isError && !(scanReports.*kind.list).empty();
    });
    gf_log(noErrors ? "\nNo errors" : "\nErrors:");
    for (const auto& kind : kinds)
        if (kind.isError) writeReport(kind);
    gf_log("\nInformation:");
    for (const auto& kind : kinds)
        if (!kind.isError) writeReport(kind);
}

}  // namespace skl
