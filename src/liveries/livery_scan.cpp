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
#include "core/text.h"
#include "liveries/reference_db.h"
#include "liveries/scan_pool.h"
#include "liveries/scan_reports.h"

namespace skl {

namespace fs = std::filesystem;

std::list<LiveryData> scannedLiveries;
int workerLimit = 1;
StringSet dontUseTitles;

namespace {

constexpr size_t longestPath = 249;  ///< characters

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

size_t countCharacters(std::string_view utf8) {
    return static_cast<size_t>(std::count_if(
        utf8.begin(), utf8.end(), [](char c) { return (static_cast<unsigned char>(c) >> 6) != 2; }));
}

/// The failures of the walk, told apart by the messages that they give.
struct IteratorProblem : std::runtime_error {
    using std::runtime_error::runtime_error;
};
struct CollectProblem : std::runtime_error {
    using std::runtime_error::runtime_error;
};

class Walk {
  public:
    Walk(ScanPool& pool, fs::path root) : pool_(pool), root_(std::move(root)) {}

    void run() {
        std::error_code error;
        const fs::path canonical = fs::canonical(root_, error);
        if (error) throw IteratorProblem(error.message());
        entered_.insert(gf_pathText(canonical));
        walkFolder(root_, canonical);
    }
    /// The path of the entry that was last looked at.
    const std::string& place() const { return place_; }

  private:
    /// In the order of their names: so the same tree gives the same result on every file system.
    static std::vector<fs::directory_entry> entriesOf(const fs::path& folder) {
        std::error_code error;
        std::vector<fs::directory_entry> entries;
        fs::directory_iterator it(folder, error);
        for (; !error && it != fs::directory_iterator(); it.increment(error)) entries.push_back(*it);
        if (error) throw IteratorProblem(error.message());
        std::sort(entries.begin(), entries.end(),
                  [](const auto& a, const auto& b) { return a.path().native() < b.path().native(); });
        return entries;
    }

    void walkFolder(const fs::path& folder, const fs::path& canonical) {
        for (const auto& entry : entriesOf(folder)) {
            if (gf_stopping()) return;
            place_ = gf_pathText(entry.path());
            std::error_code ignored;
            if (isAircraftCfg(place_) && entry.is_regular_file(ignored)) {
                const bool ivao = contains(place_, "ivao_x-csl") || contains(place_, "IVAO_MTL");
                pool_.add({entry.path(), place_, ivao});
                collectReady();
            } else if (entry.is_directory(ignored) && !lf_skipPath(place_)) {
                descend(entry, canonical);
            }
        }
    }

    /// Links are followed; a folder is entered once, so that a loop of links ends.
    void descend(const fs::directory_entry& entry, const fs::path& canonicalParent) {
        std::error_code error;
        const fs::path canonical = entry.is_symlink(error) ? fs::canonical(entry.path(), error)
                                                           : canonicalParent / entry.path().filename();
        if (!error && entered_.insert(gf_pathText(canonical)).second) walkFolder(entry.path(), canonical);
    }

    static bool isAircraftCfg(std::string_view path) {
        constexpr auto separator = static_cast<char>(fs::path::preferred_separator);
        return gf_equalsUpper(path.substr(path.rfind(separator) + 1), "AIRCRAFT.CFG");
    }

    void collectReady() {
        try {
            CfgYield yield;
            while (pool_.takeReady(yield)) addYield(std::move(yield));
        } catch (const std::exception& error) {
            throw CollectProblem(error.what());
        }
    }

    ScanPool& pool_;
    fs::path root_;
    std::string place_;
    StringSet entered_;
};

/// Everything that is ready goes in before a failure ends the walk.
void walkTree(ScanPool& pool, const fs::path& folder) {
    Walk walk(pool, folder);
    try {
        walk.run();
    } catch (const IteratorProblem& problem) {
        gf_showError(fmt::format("liveries search in folder {} aborted because of iterator problem: {}",
                                 gf_pathText(folder), problem.what()));
    } catch (const CollectProblem& problem) {
        gf_showError(fmt::format("liveries search aborted, futs inner, {}", problem.what()));
    } catch (const std::exception& error) {
        gf_showError(fmt::format("liveries search in {} aborted, cause: {}", walk.place(), error.what()));
    }
}

}  // namespace

bool lf_skipPath(std::string_view path) {
    for (const char* word : {"airport", "lvfr", "mkstudios", "simwings", "fsdreamteam", "navigraph",
                             "flytampa", "inibuilds", "_CVT_"})
        if (contains(path, word)) return true;
    return path.size() > longestPath && countCharacters(path) > longestPath;
}

void gf_beginLiveryScan() {
    scannedLiveries.clear();
    titleSet.clear();
    scanReports.clear();
}

void gf_scanLiveryFolder(uint32_t priority, const fs::path& folder) {
    ScanPool pool(workerLimit, [priority](const CfgFile& file, CfgText& buffer, CfgYield& yield) {
        if (file.ivao)
            lf_searchIvaoFile(priority, file, buffer, yield);
        else
            lf_searchLiveriesinFile(priority, file, buffer, yield);
    });
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
