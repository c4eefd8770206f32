// The walk over a folder tree. It hands the files to the pool and takes their yields back in walk order, so
// that the result does not depend on the threads.
#include "liveries/livery_scan.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>
#include <system_error>

#include "core/log.h"
#include "core/messages.h"
#include "core/run_state.h"
#include "core/scan_pool.h"
#include "core/text.h"
#include "core/tree_walk.h"
#include "liveries/cfg_file.h"
#include "liveries/reference_db.h"
#include "liveries/scan_reports.h"

namespace skl {

namespace fs = std::filesystem;

std::list<LiveryData> scannedLiveries;
int workerLimit = 1;
StringSet dontUseTitles;

namespace {

constexpr size_t longestPath = 249;  ///< characters
constexpr size_t filesPerBatch = 32;

using Pool = ScanPool<CfgFile, CfgYield>;

StringSet titleSet;  ///< all titles of this scan; the first section that brings a title has it

void addYield(CfgYield&& yield) {
    scanReports.append(std::move(yield.reports));
    for (auto& found : yield.found) {
        if (titleSet.insert(found.livery.title).second) {
            scannedLiveries.push_back(std::move(found.livery));
            continue;
        }
        const auto& title = found.livery.title;
        scanReports.incompleteSections.push_back(
            found.ivao ? fmt::format("{} title already exists: {}", found.head, title)
                       : fmt::format("{} title '{}' already exists", found.head, title));
    }
}

bool contains(std::string_view text, std::string_view piece) {
    return text.find(piece) != std::string_view::npos;
}

/// A failure of a worker, told apart from one of the walk by its message.
struct CollectProblem : std::runtime_error {
    using std::runtime_error::runtime_error;
};

bool isAircraftCfg(std::string_view path) {
    constexpr std::string_view separators = fs::path::preferred_separator == '/' ? "/" : "/\\";
    return gf_equalsUpper(path.substr(path.find_last_of(separators) + 1), "AIRCRAFT.CFG");
}

void collectReady(Pool& pool) {
    try {
        CfgYield yield;
        while (pool.takeReady(yield)) addYield(std::move(yield));
    } catch (const std::exception& error) {
        throw CollectProblem(error.what());
    }
}

void addFile(Pool& pool, const fs::directory_entry& entry, const std::string& path) {
    std::error_code ignored;
    if (!isAircraftCfg(path) || !entry.is_regular_file(ignored)) return;
    const bool ivao = contains(path, "ivao_x-csl") || contains(path, "IVAO_MTL");
    pool.add({entry.path(), path, ivao});
    collectReady(pool);
}

/// Everything that is ready goes in before a failure ends the walk.
void walkTree(Pool& pool, const fs::path& folder) {
    std::string place;
    try {
        gf_walkTree(folder,
                    {lf_skipPath, [&pool](const fs::directory_entry& entry,
                                          const std::string& path) { addFile(pool, entry, path); }},
                    place);
    } catch (const TreeWalkProblem& problem) {
        gf_showError(fmt::format("liveries search in folder {} aborted because of iterator problem: {}",
                                 gf_pathText(folder), problem.what()));
    } catch (const CollectProblem& problem) {
        gf_showError(fmt::format("liveries search aborted, futs inner, {}", problem.what()));
    } catch (const std::exception& error) {
        gf_showError(fmt::format("liveries search in {} aborted, cause: {}", place, error.what()));
    }
}

}  // namespace

bool lf_skipPath(std::string_view path) {
    for (const char* word : {"airport", "lvfr", "mkstudios", "simwings", "fsdreamteam", "navigraph",
                             "flytampa", "inibuilds", "_CVT_"})
        if (contains(path, word)) return true;
    return path.size() > longestPath && gf_countCharacters(path) > longestPath;
}

void gf_beginLiveryScan() {
    scannedLiveries.clear();
    titleSet.clear();
    scanReports.clear();
}

void gf_scanLiveryFolder(uint32_t priority, const fs::path& folder) {
    const auto search = [priority](const CfgFile& file, CfgYield& yield) {
        thread_local CfgText buffer;  // working room, kept from file to file
        if (file.ivao)
            lf_searchIvaoFile(priority, file, buffer, yield);
        else
            lf_searchLiveriesinFile(priority, file, buffer, yield);
    };
    Pool pool(workerLimit, search, filesPerBatch);
    walkTree(pool, folder);
    try {
        pool.flush();
        CfgYield yield;
        while (pool.takeNext(yield)) addYield(std::move(yield));
    } catch (const std::exception& error) {
        gf_showError(fmt::format("liveries search aborted, futs outer, {}", error.what()));
    }
}

void gf_applyDbaseToLiveries() {
    const auto change = [](const LiveryData& livery, std::string_view what, const auto& before,
                           const auto& after) {
        scanReports.conversionLines.push_back(
            fmt::format("{:80} {} {} {} => {}", livery.title, livery.regcode, what, before, after));
    };
    for (auto& livery : scannedLiveries) {
        const auto record = livery.regcode.empty() ? std::nullopt : gf_dbaseLookup(livery.regcode);
        if (!record) continue;
        if (record->cargo != livery.cargo) {
            change(livery, "cargo", livery.cargo, record->cargo);
            livery.cargo = record->cargo;
        }
        const std::string& airline = record->opr.empty() ? record->airl : record->opr;
        if (!airline.empty() && airline != livery.airline) {
            change(livery, "airl", livery.airline, airline);
            livery.airline = airline;
        }
        if (!record->type.empty() && record->type != livery.model) {
            change(livery, "model", livery.model, record->type);
            livery.model = record->type;
        }
    }
}

}  // namespace skl
