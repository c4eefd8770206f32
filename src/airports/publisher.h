// Who made an add-on airport: told by words in the path of its scenery file, or by the package's
// manifest.json. Reads the reference database only; any thread of the scan.
#pragma once

#include <optional>
#include <string>

namespace skl {

struct PublisherInfo {
    std::string publisher = "unknown";  ///< "simaddon", a publisher's name, or "unknown"
    std::string manufacturer, creator, title;
};

struct ManifestInfo {
    std::string manufacturer, creator, title;  ///< empty where absent or no text
};

PublisherInfo gf_findPublisher(const std::string& path);
/// Of the manifest beside or above a scenery file; nothing if there is none that can be read.
std::optional<ManifestInfo> gf_searchManifest(const std::string& path);
/// Of the bytes of a manifest; nothing if they are no JSON object.
std::optional<ManifestInfo> lf_parseManifest(const std::string& bytes);

}  // namespace skl
