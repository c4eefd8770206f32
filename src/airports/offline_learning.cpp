#include "airports/offline_learning.h"

#include <fmt/format.h>

#include <system_error>

#include "airports/airport_file.h"
#include "core/folders.h"
#include "core/log.h"
#include "core/run_state.h"
#include "core/text.h"
#include "panel/panel_state.h"
#include "platform/system.h"

namespace skl {

namespace {

constexpr std::string_view maintainers = "the maintainers of the data site";

bool setAside(const fs::path& from, const fs::path& to) {
    std::error_code error;
    platform::copyOver(from, to, error);
    if (!error) {
        gf_log(fmt::format("{} copied to {}", gf_pathText(from), gf_pathText(to)));
        return true;
    }
    gf_logError(fmt::format("'{}' failed to copy '{}'", gf_pathText(from), gf_pathText(to)));
    return false;
}

bool learn(const std::string& code) {
    const fs::path file = paths::myThirdparty / gf_pathFromText(code + ".xml");
    std::error_code ignored;
    if (code == "KMCI" && gf_publisherOfFile(file) == "TropicalSim") {
        fs::remove(file, ignored);
        return false;
    }
    if (!gf_offlineLearnable(code) || !gf_manifestInfoOfFile(file).empty()) return false;
    if (!setAside(file, paths::offlineLearning / gf_pathFromText(code + ".xml"))) return false;
    // The link serves the program, the copy the maintainers.
    if (fs::exists(paths::myThirdparty / gf_pathFromText(code + ".txt"), ignored)) fs::remove(file, ignored);
    return true;
}

}  // namespace

void lf_offlineLearning(const std::vector<std::string>& codes) {
    uint64_t copied = 0;
    for (const std::string& code : codes) {
        if (gf_stopping()) return;
        if (learn(code)) ++copied;
    }
    g_panel.offlineLearningCount = copied;
    if (copied > 0) {
        gf_log(fmt::format("\nzip folder '{}', and mail to {}", gf_pathText(paths::offlineLearning),
                           maintainers));
        return;
    }
    gf_log("All your third party airports are done, no off line learning needed.");
    std::error_code ignored;
    fs::remove_all(paths::offlineLearning, ignored);
}

}  // namespace skl
