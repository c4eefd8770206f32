// The scan of aircraft.cfg files: a folder tree in, LiveryData and reports out. The walk runs on the worker
// thread, the files on a pool of threads.
#pragma once

#include <filesystem>
#include <list>
#include <string>
#include <string_view>
#include <vector>

#include "core/fnv.h"
#include "liveries/livery_data.h"

namespace skl {

extern std::list<LiveryData> scannedLiveries;  ///< worker thread only
extern int workerLimit;                        ///< threads of a scan, at least 1; set at a run's start

extern StringSet dontUseTitles;  ///< titles that a scan leaves out; constant while it runs

/// Empties what the last scan left: liveries, titles seen, report lists.
void gf_beginLiveryScan();
/// Walks one tree and appends to scannedLiveries. Ends early when a stop is asked for.
void gf_scanLiveryFolder(uint32_t priority, const std::filesystem::path& folder);
/// Whether the walk goes into a folder, by its whole path as UTF-8.
bool lf_skipPath(std::string_view path);
/// Corrections of scannedLiveries by the reference database.
void gf_applyDbaseToLiveries();
/// The report files and their summary in the log.
void gf_writeScanReports();

}  // namespace skl
