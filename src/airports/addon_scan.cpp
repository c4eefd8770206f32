// The whole scan, its log, and what it leaves behind.
#include "airports/addon_scan.h"

#include <fmt/format.h>

#include <mutex>
#include <system_error>

#include "airports/addon_scan_state.h"
#include "airports/addon_walk.h"
#include "airports/airport_index.h"
#include "airports/offline_learning.h"
#include "core/folders.h"
#include "core/log.h"
#include "core/messages.h"
#include "core/parameter_store.h"
#include "core/parameters.h"
#include "core/run_state.h"
#include "core/text.h"
#include "panel/panel_state.h"

namespace skl {

std::atomic<bool> airportsGenerated{false};

namespace {

constexpr size_t usualLines = 2048;
const fs::path scanLogPath = paths::info / "AirportsScanLog.txt";

std::mutex scanLogLock;
std::vector<std::string> scanLines;  ///< under scanLogLock
std::atomic<uint64_t> scanNumber{0};
thread_local uint64_t ownScan = 0;
thread_local std::vector<std::string>* ownLines = nullptr;

void beginScan() {
    ownScan = ++scanNumber;
    airportsGenerated = false;
    lf_forgetGenerated();
    const std::lock_guard guard(scanLogLock);
    scanLines.clear();
    scanLines.reserve(usualLines);
}

void writeScanLog() {
    std::string text;
    {
        const std::lock_guard guard(scanLogLock);
        for (const std::string& line : scanLines) text += line + '\n';
        scanLines.clear();
    }
    std::error_code error;
    fs::create_directories(scanLogPath.parent_path(), error);
    if (gf_writeText(text, scanLogPath, false))
        gf_log(gf_pathText(scanLogPath) + " written");
    else
        gf_logError("could not write " + gf_pathText(scanLogPath));
}

void scanFolder(const std::string& folder) {
    if (folder.empty()) return;
    const fs::path path = gf_findExisting(gf_nativePath(folder));
    std::error_code error;
    if (!fs::exists(path, error))
        lf_scanLog(folder + " does not exist, skipped!");
    else if (!fs::is_directory(path, error))
        lf_scanLog(folder + " is not a folder name, skipped!");
    else
        lf_walkFolder(path);
}

void emptyOrMake(const fs::path& folder) {
    std::error_code error;
    if (fs::exists(folder, error))
        gf_cleanFolder(folder);
    else
        fs::create_directories(folder, error);
}

std::vector<std::string> foldersToScan() {
    std::vector<std::string> folders;
    if (gf_installPathParameter().empty()) return folders;
    if (sim2020) folders.push_back(gf_pathText(gf_simPath(paths::official)));
    folders.push_back(gf_pathText(gf_simPath(paths::community)));
    return folders;
}

void switchScanOff() {
    SCAN_AIRPORTS.value = false;
    gf_saveParameter(SCAN_AIRPORTS);
    gf_invalidate(Band::options);
}

}  // namespace

uint64_t lf_currentScan() {
    return scanNumber;
}

void lf_workForScan(uint64_t number) {
    ownScan = number;
}

bool lf_scanLeftBehind() {
    return ownScan != scanNumber;
}

void lf_collectScanLog(std::vector<std::string>* sink) {
    ownLines = sink;
}

void lf_scanLog(std::string line) {
    if (ownLines) {
        ownLines->push_back(std::move(line));
        return;
    }
    const std::lock_guard guard(scanLogLock);
    scanLines.push_back(std::move(line));
}

bool lf_scanFolders(const std::vector<std::string>& folders) {
    gf_log(fmt::format("The scan will search {} folder{}", folders.size(), gf_plural(folders.size())));
    std::error_code error;
    fs::remove(scanLogPath, error);
    if (error) gf_logError("problems with removing previous files (maybe still open?)");
    beginScan();
    for (const std::string& folder : folders) scanFolder(folder);
    writeScanLog();
    gf_clearMessage();
    if (gf_stopping()) return airportsGenerated;
    std::vector<std::string> codes;
    for (const std::string& name : gf_listAirportFiles())
        codes.push_back(gf_pathText(gf_pathFromText(name).stem()));
    lf_offlineLearning(codes);
    if (airportsGenerated) gf_log("Airports scan successful");
    return airportsGenerated;
}

void lf_scanAirports() {
    gf_showMessage("Scanning for addon airports ...", false);
    gf_log(
        fmt::format("\n++++++++++++++++++++++++ airports scan {} starts +++++++++++++++++++++++++++++", ""));
    emptyOrMake(paths::offlineLearning);
    const auto folders = foldersToScan();
    gf_readAirportNames();
    if (sim2020) gf_cleanFolder(paths::mySimaddon);
    gf_cleanFolder(paths::myThirdparty);
    const bool found = lf_scanFolders(folders);
    airportNames.clear();
    std::error_code error;
    if (fs::is_empty(paths::offlineLearning, error)) fs::remove(paths::offlineLearning, error);
    // After a stop the switch stays on, so that the next run scans the rest.
    if (gf_stopping()) return;
    if (!found) gf_showMessage("Warning: Scan has not found any add-on airports", true);
    switchScanOff();
    gf_log("-------------------------- airports scan ends    ----------------------------\n");
}

}  // namespace skl
