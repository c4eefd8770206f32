#include "distribution/updates.h"

#include <fmt/format.h>

#include <fstream>
#include <limits>
#include <nlohmann/json.hpp>
#include <optional>
#include <system_error>

#include "core/folders.h"
#include "core/log.h"
#include "core/messages.h"
#include "core/parameter_store.h"
#include "core/parameters.h"
#include "core/run_state.h"
#include "core/text.h"
#include "core/version.h"
#include "distribution/site.h"
#include "distribution/zip_pack.h"

namespace skl {

namespace {

using Json = nlohmann::json;

const fs::path versionsFile = "versions.json";
const fs::path packFile = "my_simaddon2024.zip";
constexpr std::string_view packOnSite = "mysimaddon24/my_simaddon2024.zip";

/// A data file of the site, by the member of the version file that tells of it.
struct DataFile {
    const char* member;
    const char* name;  ///< on the site
    const fs::path& path;
    StringParameter& version;
};

void sayUpToDate(const char* member) {
    gf_log(fmt::format("{} version up-to-date", member));
}

void sayUpdated(const char* member, VersionData version) {
    gf_log(fmt::format("{} updated to {}", member, version.text()));
}

void store(StringParameter& parameter, VersionData version) {
    parameter.set(version.text());
    gf_saveParameter(parameter);
}

bool isThere(const fs::path& path) {
    std::error_code error;
    const bool there = fs::exists(path, error);
    if (error) throw fs::filesystem_error("exists", path, error);
    return there;
}

void updateFile(const Json& versions, const DataFile& file) {
    const auto remote = lf_toldVersion(versions, file.member);
    if (!remote || gf_stopping()) return;
    if (*remote <= VersionData::parse(file.version.get()) && isThere(file.path)) {
        sayUpToDate(file.member);
        return;
    }
    if (!gf_fetchFile(file.name, file.path)) return;  // the next start tries again
    store(file.version, *remote);
    sayUpdated(file.member, *remote);
}

bool makeEmpty(const fs::path& folder) {
    std::error_code error;
    if (fs::exists(folder, error)) {
        gf_cleanFolder(folder);
        return true;
    }
    fs::create_directories(folder, error);
    if (error)
        gf_logError(fmt::format("Could not create directory {}: {}", gf_pathText(folder), error.message()));
    return !error;
}

size_t writePack(const std::vector<PackFile>& files) {
    size_t written = 0;
    for (const PackFile& file : files) {
        const fs::path path = paths::mySimaddon / gf_pathFromText(file.stem + ".txt");
        if (gf_writeText(file.text, path, false))
            ++written;
        else
            gf_logError(fmt::format("Failed to write file: {}", gf_pathText(path)));
    }
    return written;
}

std::string bytesOf(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void removePack() {
    std::error_code error;
    fs::remove(packFile, error);
    if (error) gf_logError(fmt::format("Warning: could not remove downloaded zip: {}", error.message()));
}

void updatePack(const Json& versions) {
    const auto remote = lf_toldVersion(versions, "simaddon");
    if (!remote || gf_stopping()) return;
    if (lf_updateSimAddon(*remote))
        sayUpdated("simaddon", *remote);
    else
        sayUpToDate("simaddon");
}

}  // namespace

std::optional<VersionData> lf_toldVersion(const Json& versions, const char* member) {
    VersionData version;
    bool told = versions.is_object() && versions.contains(member) && versions[member].is_object();
    for (const auto& [part, number] :
         {std::pair{"major", &version.major}, {"minor", &version.minor}, {"patch", &version.patch}}) {
        told = told && versions[member].contains(part) && versions[member][part].is_number_integer();
        const int64_t value = told ? versions[member][part].get<int64_t>() : 0;
        told = told && value >= 0 && value <= std::numeric_limits<int32_t>::max();
        *number = static_cast<int32_t>(value);
    }
    if (told) return version;
    gf_logError(fmt::format("{} version not found", member));
    return std::nullopt;
}

bool lf_simAddonMissing() {
    std::error_code error;
    return !fs::is_directory(paths::mySimaddon, error) || fs::is_empty(paths::mySimaddon, error);
}

bool lf_updateSimAddon(VersionData remote) {
    if (remote <= VersionData::parse(MYSIMADDON24_VERSION.get()) && !lf_simAddonMissing()) return false;
    bool installed = false;
    if (gf_download(gf_siteFileUrl(packOnSite), packFile, true)) {
        // Opened before the folder is emptied: what is no zip costs nothing that is there.
        if (const auto files = lf_readPack(bytesOf(packFile))) {
            if (!makeEmpty(paths::mySimaddon)) return false;
            const size_t written = writePack(*files);
            gf_showMessage(fmt::format("{} unzipped {} files", gf_pathText(packFile), written), true);
            store(MYSIMADDON24_VERSION, remote);
            installed = true;
        } else {
            gf_logError(fmt::format("Could not open {}", gf_pathText(packFile)));
        }
    }
    removePack();
    return installed;
}

bool gf_fetchFile(const std::string& name, const fs::path& path) {
    const bool fetched = gf_download(gf_siteFileUrl(name), path, true);
    if (fetched)
        gf_log(fmt::format("Downloaded '{}' to '{}'", name, gf_pathText(path)));
    else
        gf_logError(fmt::format("Downloading '{}' failed !", name));
    return fetched;
}

void gf_updateDataFiles() {
    if (!gf_siteKnown()) return;
    if (!gf_download(gf_siteFileUrl("versions.json"), versionsFile)) {
        gf_logError("Downloading version info from my web site failed!");
        return;
    }
    std::ifstream file(versionsFile);
    if (!file) {
        gf_logError("Cannot open versions.json");
        return;
    }
    lf_applyVersions(file);
}

void lf_applyVersions(std::istream& text) {
    const Json versions = Json::parse(text);
    if (!sim2020) updatePack(versions);
    updateFile(versions, {"aig", "AIG-regcodes.enc", paths::regcodesEnc, AIG_VERSION});
    updateFile(versions, {"dbase", "dbase.enc", paths::dbaseEnc, DBASE_VERSION});
}

}  // namespace skl
