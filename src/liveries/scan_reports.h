// What a livery scan finds suspicious: lists of lines, each with its report file and its line in the log. A
// worker fills lists of its own; the walker joins them.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace skl {

struct ScanReports {
    std::vector<std::string> invalidAirlines, invalidModels, modelFixLines, invalidCfgFiles,
        incompleteSections;
    std::vector<std::string> noSectionFiles, conversionLines;

    /// Moves all lines of `other` behind these.
    void append(ScanReports&& other);
    void clear() { *this = {}; }
};

/// The reports of the scan under way, on the walker's thread.
extern ScanReports scanReports;

/// Writes the lines into a file in one step, making its folder; a failure is a log line.
void lf_writeReport(const std::vector<std::string>& lines, const std::filesystem::path& path);

/// The files of the last scan that the next one removes, relative to the working folder.
std::vector<std::string> lf_staleReportFiles();

}  // namespace skl
