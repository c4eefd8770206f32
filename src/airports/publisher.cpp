#include "airports/publisher.h"

#include <fmt/format.h>

#include "airports/addon_scan.h"
#include "core/text.h"
#include "liveries/reference_db.h"

namespace skl {

namespace {

constexpr std::string_view unknown = "unknown";

/// Whether one of the manifest's texts names a publisher that is known.
bool takeFrom(const char* key, const std::string& text, PublisherInfo& info) {
    if (text.empty()) return false;
    const std::string publisher = gf_publisherOf(text);
    if (publisher == unknown) return false;
    info.publisher = publisher;
    lf_scanLog(fmt::format("from manifest.json: {} '{}' => publisher '{}'", key, text, publisher));
    return true;
}

}  // namespace

PublisherInfo gf_findPublisher(const std::string& path) {
    lf_scanLog(fmt::format("\nTry find publisher in: {}", path));
    PublisherInfo info;
    const std::string upper = gf_upper(path);
    for (const char* maker : {"MICROSOFT-AIRPORT", "ASOBO-AIRPORT"}) {
        if (upper.find(maker) == std::string::npos) continue;
        info.publisher = "simaddon";
        lf_scanLog(fmt::format("from filename => publisher {}", info.publisher));
        return info;
    }
    info.publisher = gf_publisherOf(path);
    if (info.publisher != unknown) {
        lf_scanLog(fmt::format("publisher '{}' found", info.publisher));
        return info;
    }
    const auto manifest = gf_searchManifest(path);
    if (!manifest) {
        lf_scanLog(fmt::format("{}No publisher found", "===> "));
        return info;
    }
    info.manufacturer = manifest->manufacturer;
    info.creator = manifest->creator;
    info.title = manifest->title;
    if (takeFrom("manufacturer", info.manufacturer, info) || takeFrom("creator", info.creator, info))
        return info;
    lf_scanLog(
        fmt::format("no valid info found in manifest about publisher, manufacturer:'{}', creator:'{}' {}",
                    info.manufacturer, info.creator, path));
    return info;
}

}  // namespace skl
