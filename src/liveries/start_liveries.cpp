#include "liveries/start_liveries.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <optional>
#include <span>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "core/errors.h"
#include "core/folders.h"
#include "core/log.h"
#include "core/messages.h"
#include "core/parameter_store.h"
#include "core/parameters.h"
#include "core/run_state.h"
#include "core/text.h"
#include "liveries/catalogue.h"
#include "liveries/liveries_file.h"
#include "liveries/livery_scan.h"
#include "liveries/regcodes.h"
#include "liveries/scan_reports.h"
#include "panel/panel_state.h"

namespace skl {

namespace {

constexpr uint32_t lowestRank = 10;

struct Package {
    std::vector<std::string_view> markers;  ///< one of them stands in the folder's name
    std::string_view name;
};

// The marker of the first package also finds the "-beta" form of its folder.
const Package aig{{"aig-aitraffic-oci"}, "AIG"};
const Package fsltl{{"fsltl-traffic-base"}, "FSLTL"};
const Package jf{{"justflight-aircraft-traffic-fleet", "justflight-fstraffic-module"}, "JF"};
const Package user{{"user-aitraffic"}, "user-aitraffic"};

std::vector<const Package*> packagesInOrder() {
    static const std::pair<const char*, std::vector<const Package*>> orders[] = {
        {"AIG, FSLTL, JF", {&aig, &fsltl, &jf}}, {"AIG, JF, FSLTL", {&aig, &jf, &fsltl}},
        {"FSLTL, AIG, JF", {&fsltl, &aig, &jf}}, {"FSLTL, JF, AIG", {&fsltl, &jf, &aig}},
        {"JF, AIG, FSLTL", {&jf, &aig, &fsltl}}, {"JF, FSLTL, AIG", {&jf, &fsltl, &aig}}};
    const std::string selected = AI_PACKAGE_SELECTOR.get();
    for (const auto& [text, order] : orders)
        if (selected == text) {
            auto packages = order;
            packages.push_back(&user);
            return packages;
        }
    throw std::runtime_error(fmt::format("{} not set", AI_PACKAGE_SELECTOR.name));
}

/// The names in the Community folder, sorted, so that the choice between two is the same everywhere.
std::vector<fs::path> communityEntries() {
    std::vector<fs::path> entries;
    const fs::path community = gf_findExisting(gf_simPath(paths::community));
    if (!fs::is_directory(community)) return entries;
    for (const auto& entry : fs::directory_iterator(community)) entries.push_back(entry.path());
    std::sort(entries.begin(), entries.end());
    return entries;
}

void addPackage(const Package& package, std::span<const fs::path> entries,
                std::vector<std::string>& folders) {
    for (const auto& entry : entries) {
        const std::string name = gf_pathText(entry.filename());
        const bool marked =
            std::any_of(package.markers.begin(), package.markers.end(),
                        [&](std::string_view marker) { return name.find(marker) != std::string::npos; });
        if (!marked || name.find("_CVT_") != std::string::npos) continue;
        folders.push_back(gf_pathText(entry));
        gf_log(fmt::format("Automatic {} scan found folder: '{}'", package.name, folders.back()));
        return;
    }
}

void removeLastReports() {
    try {
        for (const auto& file : lf_staleReportFiles()) fs::remove(gf_pathFromText(file));
        fs::remove_all(paths::errors);
    } catch (const std::exception& error) {
        gf_log(fmt::format("problems with removing previous files: {}", error.what()));
    }
}

/// The folder behind a text of the user, or nothing after a log line.
std::optional<fs::path> usableFolder(const std::string& folder) {
    const fs::path path = gf_findExisting(gf_nativePath(folder));
    std::error_code ignored;
    if (!fs::exists(path, ignored)) {
        gf_log(folder + " does not exist, skipped!");
        return std::nullopt;
    }
    if (!fs::is_directory(path, ignored)) {
        gf_log(folder + " is not a folder name, skipped!");
        return std::nullopt;
    }
    return path;
}

void scanFolder(uint32_t rank, const fs::path& path, const std::string& folder) {
    const size_t before = scannedLiveries.size();
    gf_scanLiveryFolder(rank, path);
    const size_t added = scannedLiveries.size() - before;
    const std::string where = "found in " + folder;
    gf_log(added ? fmt::format("{} liverie{} {}", added, gf_plural(added), where)
                 : fmt::format("No liveries {}", where));
}

void scanFolders(const std::vector<std::string>& folders) {
    uint32_t rank = 0;
    for (const auto& folder : folders) {
        if (folder.empty()) continue;
        const auto path = usableFolder(folder);
        if (!path) continue;
        rank = std::min(rank + 1, lowestRank);
        if (!gf_stopping()) scanFolder(rank, *path, folder);
    }
}

/// Of each airline and type only the liveries of its highest ranking folder stay.
void keepFirstFolders() {
    std::map<std::pair<std::string, std::string>, uint32_t> best;
    for (const auto& livery : scannedLiveries) {
        const auto [it, added] = best.try_emplace({livery.airline, livery.model}, livery.priority);
        it->second = std::min(it->second, livery.priority);
    }
    scannedLiveries.remove_if([&](const LiveryData& livery) {
        return livery.priority > best.at({livery.airline, livery.model});
    });
}

void dropDoubles() {
    scannedLiveries.unique([](const LiveryData& a, const LiveryData& b) {
        return a.title == b.title && a.airline == b.airline && a.model == b.model && a.regcode == b.regcode &&
               a.cargo == b.cargo;
    });
}

[[noreturn]] void throwNothingFound() {
    if (!LIG_AUTOMATIC.value) throw UserErrorException(53, "no liveries found");
    throw UserErrorException(
        43,
        "Automatic scan has not found any liveries, switch off automatic and set lfolder "
        "parameter(-s), Manual 5.1");
}

}  // namespace

void gf_selectLiveryFolders(std::vector<std::string>& folders) {
    folders.reserve(lfolders.size());
    if (!LIG_AUTOMATIC.value) {
        for (const auto& folder : lfolders)
            if (!folder.empty()) folders.push_back(folder.get());
        if (folders.empty())
            throw UserErrorException(48,
                                     "Set lfolder parameter(-s) to your liveries first, see Manual 5.1 (or "
                                     "check Liveries automatic)");
        return;
    }
    if (gf_installPathParameter().empty()) return;
    const auto entries = communityEntries();
    for (const auto* package : packagesInOrder()) addPackage(*package, entries, folders);
}

bool gf_scanLiveries(const std::vector<std::string>& folders) {
    gf_beginLiveryScan();
    removeLastReports();
    gf_readDontUseTitles();
    scanFolders(folders);
    if (gf_stopping()) return true;
    if (scannedLiveries.empty()) {
        g_panel.liveryCount = 0;
        gf_invalidate(Band::status);
        return false;
    }
    if (folders.size() > 1) gf_log(fmt::format("{} in total", scannedLiveries.size()));
    gf_applyDbaseToLiveries();
    if (LIG_PRIORITIZE.value) keepFirstFolders();
    lf_sortScannedLiveries();
    dropDoubles();
    gf_writeLiveriesFile();
    scannedLiveries.clear();
    gf_writeScanReports();
    gf_beginLiveryScan();
    gf_clearMessage();
    gf_invalidate(Band::status);
    return true;
}

void gf_startLiveries() {
    if (clearCatalogueRequested.exchange(false)) gf_clearCatalogue();
    if (gf_stopping()) return;  // an error now would take the place of the stop's reason
    if (!SCAN_LIVERIES.value) {
        gf_loadCatalogue();
        return;
    }
    gf_clearCatalogue();
    gf_showMessage(fmt::format("Scanning {} for liveries ...",
                               LIG_PRIORITIZE.value && !LIG_AUTOMATIC.value ? "prioritized " : ""),
                   false);
    gf_log(fmt::format("\n++++++++++++++++++++++++ liveries scan {} starts ++++++++++++++++++++++++++++++++",
                       LIG_AUTOMATIC.value ? "automatic" : "manual"));
    std::vector<std::string> folders;
    gf_selectLiveryFolders(folders);
    const bool found = gf_scanLiveries(folders);
    // The switch stays on, so that the next run scans anew.
    if (gf_stopping()) return;
    if (!found) throwNothingFound();
    SCAN_LIVERIES.value = false;
    gf_saveParameter(SCAN_LIVERIES);
    gf_invalidate(Band::options);
    gf_log("\n++++++++++++++++++++++++ liveries scan ends ++++++++++++++++++++++++++++++++\n");
    gf_loadCatalogue();
}

}  // namespace skl
