// The folder tree of the working folder, the user's folders, and small services on files.
#include "core/folders.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <fstream>

#include "core/errors.h"
#include "core/log.h"
#include "core/parameter_store.h"
#include "core/parameters.h"
#include "core/run_state.h"
#include "core/text.h"
#include "platform/system.h"

namespace skl {

std::atomic<bool> sim2020{true};

namespace {

/// The only entry of `folder` that equals `name` without case; empty if there is none, or more than one.
fs::path onlyEntryWithoutCase(const fs::path& folder, const fs::path& name) {
    const std::string wanted = gf_pathText(name);
    fs::path found;
    std::error_code error;
    fs::directory_iterator entry(folder.empty() ? fs::path(".") : folder, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        if (!gf_equalsUpper(gf_pathText(entry->path().filename()), wanted)) continue;
        if (!found.empty()) return {};
        found = entry->path().filename();
    }
    return found;
}

}  // namespace

std::string_view gf_simKey() {
    return sim2020 ? "MSFS" : "MSFS2024";
}

fs::path gf_appDataPath() {
    fs::path path = platform::roamingAppData();
    if (path.empty()) gf_logError("Could not find the AppData path");
    return path;
}

fs::path gf_localAppDataPath() {
    fs::path path = platform::localAppData();
    if (path.empty()) gf_logError("Could not find the a Local Appdata path");
    return path;
}

fs::path gf_programDataPath() {
    return gf_appDataPath() / programName;
}

std::string gf_beforeSeparator(std::string_view path, size_t at) {
    const bool root = at == 0 || path[at - 1] == ':';
    return std::string(path.substr(0, root ? at + 1 : at));
}

fs::path gf_nativePath(std::string_view text) {
    std::string native(text);
    if constexpr (fs::path::preferred_separator == '/') std::replace(native.begin(), native.end(), '\\', '/');
    return gf_pathFromText(native);
}

fs::path gf_findExisting(const fs::path& path) {
    std::error_code error;
    if (path.empty() || fs::exists(path, error)) return path;
    fs::path found;
    for (const fs::path& component : path) {
        fs::path next = found / component;
        if (!fs::exists(next, error)) {
            const fs::path entry = onlyEntryWithoutCase(found, component);
            if (entry.empty()) return path;
            next = found / entry;
        }
        found = std::move(next);
    }
    return found;
}

void gf_ensureFolders() {
    for (const fs::path& folder : {paths::output, paths::info, paths::errors, paths::airports, paths::learned,
                                   paths::learnedStock, paths::learnedSimaddon, paths::learnedThirdparty,
                                   paths::mySimaddon, paths::myThirdparty, paths::myRegcodes})
        if (!fs::is_directory(folder)) fs::create_directories(folder);
    for (const char* stale : {"AIG-regcodes0.xml", "AIG-regcodes00.xml"}) fs::remove(paths::input / stale);
}

StringParameter& gf_installPathParameter() {
    return sim2020 ? MSFS_INSTALL_PATH : MSFS_2024_INSTALL_PATH;
}

void gf_stripCommunity() {
    constexpr std::string_view separators = "/\\";
    StringParameter& parameter = gf_installPathParameter();
    std::string path = parameter.get();
    path.erase(path.find_last_not_of(separators) + 1);
    const size_t last = path.find_last_of(separators);
    if (last == std::string::npos || path.substr(last + 1) != paths::community) return;
    parameter.set(gf_beforeSeparator(path, last));
    gf_saveParameter(parameter);
}

fs::path gf_simPath(std::string_view subPath) {
    return gf_findExisting(gf_nativePath(gf_installPathParameter().get()) / gf_nativePath(subPath));
}

bool gf_writeText(std::string_view text, const fs::path& path, bool newLine, bool append) {
    std::string content(text);
    if (newLine) content.push_back('\n');
    if (!append) {
        std::string error;
        return platform::replaceFile(path, content, error);
    }
    std::ofstream file(path, std::ios::binary | std::ios::app);
    file.write(content.data(), static_cast<std::streamsize>(content.size()));
    file.close();
    return !file.fail();
}

void gf_cleanFolder(const fs::path& folder) {
    gf_log(fmt::format("Cleaning folder: {}", gf_pathText(folder)));
    try {
        std::vector<fs::path> files;
        for (const auto& entry : fs::directory_iterator(folder))
            if (entry.is_symlink() || !entry.is_directory()) files.push_back(entry.path());
        for (const auto& file : files) fs::remove(file);
    } catch (const fs::filesystem_error& error) {
        throw UserErrorException(5, fmt::format("Filesystem error: {}", error.what()));
    } catch (const std::exception& error) {
        throw UserErrorException(5, error.what());
    }
}

int gf_countEntries(const fs::path& folder) {
    if (!fs::exists(folder)) return 0;
    return static_cast<int>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

std::vector<std::string> gf_listAirportFiles() {
    std::vector<std::string> names;
    if (!fs::exists(paths::myThirdparty)) return names;
    for (const auto& entry : fs::directory_iterator(paths::myThirdparty))
        if (gf_equalsUpper(gf_pathText(entry.path().extension()), ".XML"))
            names.push_back(gf_pathText(entry.path().filename()));
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace skl
