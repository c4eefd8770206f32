// The update of the data files at the start of a process: the site's version file is compared with the
// versions in the parameters, and what is newer or missing is fetched beside and renamed when whole. Without
// a site the program goes on with what it has. Worker thread, before the reference database is read.
#pragma once

#include <filesystem>
#include <iosfwd>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>

#include "core/version.h"

namespace skl {

/// The update step. Throws nlohmann::json::exception for a version file that is no JSON or has a number
/// beyond all bounds, and std::filesystem::filesystem_error when a local file cannot be looked at.
void gf_updateDataFiles();
/// Fetches what the text of a version file tells to be newer than what is here. Throws as gf_updateDataFiles.
void lf_applyVersions(std::istream& text);
/// One file of the site, with its log lines; an old file stays when that fails.
bool gf_fetchFile(const std::string& name, const std::filesystem::path& path);
/// The version that a version file tells of a member; nothing, with a log line, if it does not.
std::optional<VersionData> lf_toldVersion(const nlohmann::json& versions, const char* member);
/// The pack of add-on airports for MSFS 2024; true when it was installed.
bool lf_updateSimAddon(VersionData remote);
/// Whether its folder is not there, or empty.
bool lf_simAddonMissing();

}  // namespace skl
