// manifest.json of a package: beside a scenery file or above it.
#include <fmt/format.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <system_error>
#include <vector>

#include "airports/addon_scan.h"
#include "airports/publisher.h"
#include "core/charset.h"
#include "core/folders.h"
#include "core/text.h"

namespace skl {

namespace {

const fs::path manifestName = "manifest.json";
constexpr int levelsBelowCommunity = 2;

std::string textOf(const nlohmann::json& object, const char* key) {
    const auto found = object.find(key);
    return found != object.end() && found->is_string() ? found->get<std::string>() : std::string();
}

bool holdsManifest(const fs::path& folder) {
    std::error_code error;
    return fs::is_regular_file(folder / manifestName, error);
}

std::optional<ManifestInfo> readManifest(const fs::path& folder) {
    const fs::path path = folder / manifestName;
    lf_scanLog(gf_pathText(path) + " found");
    std::vector<std::string> lines;
    if (!gf_readLines(gf_detectCharset(path), path, lines)) return std::nullopt;
    std::string text;
    for (const std::string& line : lines) text += line;
    return lf_parseManifest(text);
}

/// The folder two levels below "Community"; empty if the path does not go so deep.
fs::path packageFolder(const fs::path& path) {
    fs::path folder;
    int below = -1;  // not yet in Community
    for (const fs::path& element : path) {
        folder /= element;
        if (below >= 0 && ++below == levelsBelowCommunity) return folder;
        if (below < 0 && element == paths::community) below = 0;
    }
    return {};
}

std::optional<ManifestInfo> search(const fs::path& path) {
    if (const fs::path package = packageFolder(path); !package.empty() && holdsManifest(package))
        return readManifest(package);
    for (fs::path folder = path.parent_path(); folder.has_relative_path(); folder = folder.parent_path())
        if (holdsManifest(folder)) return readManifest(folder);
    return std::nullopt;
}

}  // namespace

std::optional<ManifestInfo> lf_parseManifest(const std::string& text) {
    const auto object = nlohmann::json::parse(text, nullptr, false);
    if (!object.is_object()) return std::nullopt;
    return ManifestInfo{textOf(object, "manufacturer"), textOf(object, "creator"), textOf(object, "title")};
}

std::optional<ManifestInfo> gf_searchManifest(const std::string& path) {
    try {
        return search(gf_pathFromText(path));
    } catch (const std::exception& error) {
        lf_scanLog(fmt::format("exception in gf_searchManifest: {}", error.what()));
        return std::nullopt;
    }
}

}  // namespace skl
