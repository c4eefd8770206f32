// The summary of the livery matching in the log. Entries of sets are sorted, so that two runs can be
// compared.
#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <vector>

#include "core/log.h"
#include "core/parameters.h"
#include "engine/engine_state.h"
#include "liveries/catalogue.h"

namespace skl {

namespace {

std::vector<std::string> sorted(const StringSet& set) {
    std::vector<std::string> entries(set.begin(), set.end());
    std::sort(entries.begin(), entries.end());
    return entries;
}

void logMatches() {
    if (std::all_of(matchCounters.begin(), matchCounters.end(), [](uint64_t hits) { return hits < 1; }))
        return;
    const std::string stars(31, '*');
    gf_log(fmt::format("\n{} live traffic livery matching summary {}", stars, stars));
    gf_log("Matches at step: ");
    for (size_t n = 1; n <= matchCounters.size(); ++n)
        gf_log(fmt::format("  {}: {}", n, matchCounters[n - 1]));
    if (!uncreatableKeys.empty()) {
        gf_log("\nCould not be created by MSFS:");
        for (const auto& key : sorted(uncreatableKeys)) gf_log("  " + key);
    }
    gf_log(std::string(100, '*') + "\n");
}

}  // namespace

void gf_logMatchSummary() {
    logMatches();
    // Also when nothing matched at all: that is when the user needs it most.
    gf_logUnmatched();
}

void gf_logUnmatched() {
    if (!LOG.value || unmatchedKeys.empty()) return;
    gf_log("\nNo match found for:");
    for (const auto& key : sorted(unmatchedKeys)) gf_log(key);
    gf_log("");
}

}  // namespace skl
