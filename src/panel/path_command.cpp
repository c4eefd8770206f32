// The install path that the user types: the simulator's packages folder, or the Community folder in it.
#include <fmt/format.h>

#include <stdexcept>
#include <system_error>

#include "core/folders.h"
#include "core/locks.h"
#include "core/messages.h"
#include "core/parameter_store.h"
#include "core/parameters.h"
#include "core/run_state.h"
#include "panel/command_parts.h"
#include "panel/panel_state.h"

namespace skl {

namespace {

constexpr std::string_view separators = "/\\";

/// An error of the last run stands in the way of every message: the path that is typed is its remedy.
void clearError() {
    {
        LockGuard guard(g_panelLock);
        g_panel.errorText.clear();
    }
    gf_clearMessage();
    gf_invalidate(Band::message);
}

bool isThere(const fs::path& path) {
    std::error_code error;
    const bool there = fs::exists(path, error);
    if (error) throw fs::filesystem_error("exists", path, error);
    return there;
}

void restartForPath(StringParameter& pathParam, const std::string& path) {
    pathParam.set(path);
    gf_saveParameter(pathParam);
    gf_showMessage(fmt::format("Community path found, {} will restart ...", programName), true);
    gf_requestStop(ExitReason::newSettings, 3);
}

bool holdsCommunity(const std::string& path) {
    return isThere(gf_findExisting(gf_findExisting(gf_nativePath(path)) / paths::community));
}

}  // namespace

void lf_newSimPath(StringParameter& pathParam, const std::string& text) {
    clearError();
    if (text.empty()) {
        if (pathParam.empty()) return;
        pathParam.set("");
        gf_saveParameter(pathParam);
        return;
    }
    std::string path = text;
    if (const size_t end = path.find_last_not_of(separators) + 1; end < path.size())
        path = gf_beforeSeparator(path, end);
    if (!isThere(gf_findExisting(gf_nativePath(path)))) {
        gf_showMessage(fmt::format("This install path does not exist: {}", text), true);
        return;
    }
    const size_t last = path.find_last_of(separators);
    const std::string name = last == std::string::npos ? path : path.substr(last + 1);
    if (name != paths::community) {
        if (holdsCommunity(path))
            restartForPath(pathParam, path);
        else
            gf_showMessage("This path exists but is not a path to Community ...", true);
        return;
    }
    const std::string packages = last == std::string::npos ? std::string() : gf_beforeSeparator(path, last);
    if (packages.empty() || !holdsCommunity(packages))
        throw std::runtime_error(fmt::format("lf_newSimPath: no folder holds {}", path));
    restartForPath(pathParam, packages);
}

}  // namespace skl
