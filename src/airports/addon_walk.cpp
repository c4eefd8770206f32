#include "airports/addon_walk.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <system_error>

#include "airports/addon_scan.h"
#include "airports/addon_scan_state.h"
#include "airports/bgl.h"
#include "core/log.h"
#include "core/scan_pool.h"
#include "core/text.h"
#include "core/time_text.h"
#include "core/tree_walk.h"
#include "liveries/livery_scan.h"

namespace skl {

namespace fs = std::filesystem;

namespace {

constexpr size_t longestPath = 249;  ///< characters

constexpr std::array<std::string_view, 14> packagesWithoutAirports{
    "fs-base",    "tutorials",       "aircraft",      "bushtrip",           "discovery", "point-of-interest",
    "simobjects", "vcockpits",       "aig-aitraffic", "justflight-aicraft", "fsltl",     "gsx-pro",
    "gsx-world",  "landingchallenge"};
constexpr std::array<std::string_view, 3> filesWithoutAirports{"statics", "AFCAD Updates", "_heliports"};

template <size_t Count>
bool holdsAny(std::string_view path, const std::array<std::string_view, Count>& words) {
    return std::any_of(words.begin(), words.end(),
                       [&](std::string_view word) { return path.find(word) != std::string_view::npos; });
}

bool skipsPath(std::string_view path) {
    return (path.size() > longestPath && gf_countCharacters(path) > longestPath) ||
           holdsAny(path, packagesWithoutAirports);
}

/// What a file gives back are its lines for the scan log: its airports go to the folders.
using Lines = std::vector<std::string>;
using Pool = ScanPool<fs::path, Lines>;

struct InnerProblem : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// One scenery file; a broken one costs itself.
void readFile(const fs::path& path, Lines& lines) {
    lf_collectScanLog(&lines);
    try {
        lf_processBGLfile(path);
    } catch (const std::exception& error) {
        lf_scanLog(fmt::format("Exception in lf_processBGLfile: {} in {}", error.what(), gf_pathText(path)));
    }
    lf_collectScanLog(nullptr);
}

class Files {
  public:
    Files()
        : pool_(
              workerLimit,
              [number = lf_currentScan()](const fs::path& path, Lines& lines) {
                  lf_workForScan(number);
                  readFile(path, lines);
              },
              1) {}

    void add(const fs::path& path) {
        pool_.add(path);
        ++waiting_;
        if (waiting_ <= static_cast<size_t>(workerLimit)) return;
        try {
            take();
        } catch (const std::exception& error) {
            throw InnerProblem(error.what());
        }
    }
    void takeRest() {
        pool_.flush();
        while (take()) {
        }
    }

  private:
    bool take() {
        Lines lines;
        --waiting_;
        if (!pool_.takeNext(lines)) return false;
        for (std::string& line : lines) lf_scanLog(std::move(line));
        return true;
    }
    Pool pool_;
    size_t waiting_ = 0;
};

void visit(const fs::directory_entry& entry, const std::string& path, Files& files) {
    if (!path.ends_with(".bgl") && !path.ends_with(".BGL")) return;
    std::error_code ignored;
    if (skipsPath(path) || holdsAny(path, filesWithoutAirports) || !entry.is_regular_file(ignored)) return;
    if (lf_hasAirportSection(entry.path())) files.add(entry.path());
}

}  // namespace

void lf_walkFolder(const fs::path& folder) {
    const std::string name = gf_pathText(folder);
    lf_scanLog("Scanning for addon airports in " + name);
    Files files;
    std::string place;
    try {
        const TreeVisitor visitor{skipsPath,
                                  [&files](const fs::directory_entry& entry, const std::string& path) {
                                      visit(entry, path, files);
                                  },
                                  true};
        gf_walkTree(folder, visitor, place);
    } catch (const TreeWalkProblem& problem) {
        gf_logError(fmt::format("{} airports search in folder {} aborted because of iterator problem: {}",
                                gf_timeOfDay(), name, problem.what()));
    } catch (const InnerProblem& problem) {
        gf_logError(fmt::format("{} airports search aborted, futs inner, \n{}\n{}\n{}", gf_timeOfDay(),
                                problem.what(), place, name));
    } catch (const std::exception& error) {
        gf_logError(fmt::format("{} airports search in folder {} aborted, cause: {}", gf_timeOfDay(), name,
                                error.what()));
    }
    try {
        files.takeRest();
    } catch (const std::exception& error) {
        gf_logError(fmt::format("{} airports search in {} aborted, futs outer error: {}", gf_timeOfDay(),
                                name, error.what()));
    }
}

}  // namespace skl
