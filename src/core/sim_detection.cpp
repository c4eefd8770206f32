// Where the selected simulator keeps its packages: first the folder of a Steam install, then the path that
// one of the simulator's own settings files names.
#include <fmt/format.h>

#include <array>
#include <optional>

#include "core/charset.h"
#include "core/folders.h"
#include "core/log.h"
#include "core/text.h"

namespace skl {

namespace {

constexpr std::string_view pathKey = "InstalledPackagesPath";

const char* steamFolder() {
    return sim2020 ? "Microsoft Flight Simulator" : "Microsoft Flight Simulator 2024";
}

const char* storeFolder() {
    return sim2020 ? "Microsoft.FlightSimulator_8wekyb3d8bbwe" : "Microsoft.Limitless_8wekyb3d8bbwe";
}

bool holdsFolder(const fs::path& folder, std::string_view name) {
    std::error_code error;
    return fs::is_directory(gf_findExisting(folder / name), error);
}

bool isPackagesFolder(const fs::path& candidate) {
    std::error_code error;
    return !candidate.empty() && fs::exists(candidate, error) && holdsFolder(candidate, paths::community) &&
           holdsFolder(candidate, sim2020 ? paths::official : paths::official2024);
}

fs::path steamCandidate() {
    fs::path candidate = gf_appDataPath() / steamFolder() / "Packages";
    std::error_code error;
    if (fs::exists(candidate, error)) gf_log(fmt::format("Steam packages:{}", gf_pathText(candidate)));
    return candidate;
}

fs::path findUserCfg() {
    constexpr const char* name = "UserCfg.opt";
    const fs::path roaming = gf_appDataPath();
    const fs::path local = gf_localAppDataPath();
    const std::array<std::pair<const char*, fs::path>, 4> tries{
        {{"MSFS detection, no Store:{}", local / "Packages" / storeFolder() / "LocalCache" / name},
         {"MSFS detection, no Steam1:{}", roaming / steamFolder() / name},
         {"MSFS detection, no Steam2:{}",
          local / "Packages" / "Microsoft.FlightDashboard_8wekyb3d8bbwe" / "LocalCache" / name},
         {"MSFS detection, no Boxed:{}", local / "MSFSPackages" / name}}};
    for (const auto& [miss, path] : tries) {
        std::error_code error;
        if (fs::exists(path, error)) return path;
        gf_log(fmt::format(fmt::runtime(miss), gf_pathText(path)));
    }
    gf_log("No UserCfg.opt found?");
    return {};
}

/// What the settings file names, empty without a line of it.
std::string readPackagesPath(const fs::path& userCfg) {
    const Charset charset = gf_detectCharset(userCfg);
    std::vector<std::string> lines;
    if (charset == Charset::noneFound || !gf_readLines(charset, userCfg, lines)) return {};
    for (const auto& line : lines)
        if (line.find(pathKey) != std::string::npos) return gf_betweenQuotes(line);
    return {};
}

fs::path userCfgCandidate() {
    const fs::path userCfg = findUserCfg();
    if (userCfg.empty()) return {};
    const std::string value = readPackagesPath(userCfg);
    gf_log(fmt::format("UserCfg.opt: {}={}", pathKey, value.empty() ? "???" : value));
    fs::path candidate = gf_nativePath(value);
    std::error_code error;
    return fs::exists(candidate, error) ? candidate : fs::path();
}

}  // namespace

fs::path gf_detectInstallPath() {
    for (auto candidateOf : {steamCandidate, userCfgCandidate}) {
        fs::path candidate = candidateOf();
        if (isPackagesFolder(candidate)) return candidate;
    }
    return {};
}

}  // namespace skl
