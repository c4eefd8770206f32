// What a scenery file's airport becomes: a link to a file of the data site, or a generated file. On the
// scan's threads, one at a time.
#include <fmt/format.h>

#include <mutex>
#include <system_error>
#include <unordered_map>

#include "airports/addon_scan.h"
#include "airports/addon_scan_state.h"
#include "airports/airport_index.h"
#include "airports/publisher.h"
#include "core/folders.h"
#include "core/log.h"
#include "core/text.h"
#include "liveries/reference_db.h"

namespace skl {

namespace {

constexpr size_t codeLength = 4;

struct Generated {
    size_t stands = 0;
    std::string bglPath;
};

std::mutex linkLock;
std::unordered_map<std::string, Generated> generated;  ///< by target, of this scan; under linkLock
uint64_t lastBeside = 0;                               ///< number of the last temporary file; under linkLock

std::string withoutBlanks(const std::string& publisher) {
    std::string text;
    for (const char c : publisher)
        if (c == ' ')
            text += "%20";
        else
            text += c;
    return text;
}

bool writeLink(const fs::path& folder, const std::string& code, const std::string& archived) {
    std::error_code error;  // tells itself when the file is written
    fs::create_directories(folder, error);
    const fs::path path = folder / gf_pathFromText(code + ".txt");
    if (gf_writeText(archived, path, true)) {
        airportsGenerated = true;
        return true;
    }
    lf_scanLog(fmt::format("{}Writing {} did not succeed", "===> ", gf_pathText(path)));
    return false;
}

bool linkSimaddon(const std::string& code) {
    if (!simAddons20.contains(code)) {
        lf_scanLog(fmt::format("{} does not exist as simaddon", code));
        return false;
    }
    const std::string archived = fmt::format("archive/simaddon/{}.xml", code);
    if (!writeLink(paths::mySimaddon, code, archived)) return false;
    lf_scanLog(fmt::format("{} airport {} linked to {}", "simaddon", code, archived));
    return true;
}

/// The number of stands of the archived file of a publisher's airport; nothing if the site has none.
std::optional<int32_t> archivedStands(const std::string& publisher, const std::string& code) {
    for (const ThirdPartyRow& row : sim2020 ? thirdParties20 : thirdParties24) {
        if (row.pub != publisher) continue;
        for (const std::string& entry : row.arpts) {
            if (!entry.starts_with(code)) continue;
            if (const auto count = gf_readInt(std::string_view(entry).substr(codeLength))) return count;
            gf_log(fmt::format("{} {} {} {}", row.pub, code, entry, "invalid number"));
        }
    }
    return std::nullopt;
}

bool linkThirdparty(const AirportFile& file, int32_t& archivedCount) {
    const auto stands = archivedStands(file.publisher, file.code);
    if (!stands) {
        lf_scanLog(fmt::format("thirdparty {} {} does not exist", file.publisher, file.code));
        return false;
    }
    const std::string archived =
        fmt::format("archive/thirdparty/{}/{}.xml", withoutBlanks(file.publisher), file.code);
    if (!writeLink(paths::myThirdparty, file.code, archived)) return false;
    archivedCount = *stands;
    lf_scanLog(fmt::format("thirdparty airport {} linked to {}", file.code, archived));
    return true;
}

/// The code of an airport that cannot be read, out of what its file and its package are called.
std::string codeByNames(const std::string& path) {
    std::string stem = gf_pathText(gf_pathFromText(path).stem());
    if (stem.size() == codeLength && gf_findAirport(stem)) {
        lf_scanLog(fmt::format("Not recognised airport has ICAO code '{}' as BGL stem", stem));
        return stem;
    }
    if (const auto manifest = gf_searchManifest(path); manifest && !manifest->title.empty()) {
        const std::string start = gf_upper(std::string_view(manifest->title).substr(0, codeLength));
        for (const Airport& airport : airportIndex) {
            if (!start.starts_with(airport.code)) continue;
            lf_scanLog(fmt::format("Not recognised airport has ICAO '{}' in title '{}' of manifest",
                                   airport.code, manifest->title));
            return airport.code;
        }
    }
    for (const Airport& airport : airportIndex) {
        if (path.find(fmt::format("-{}-", airport.code)) == std::string::npos) continue;
        lf_scanLog(fmt::format("Not recognised airport has ICAO '{}' in BGL path '{}'", airport.code, path));
        return airport.code;
    }
    return {};
}

/// Whether the file of this scan that is there is to stay: it has more stands, or comes first.
bool staysInstead(const Generated& there, const AirportFile& file) {
    if (there.stands != file.stands.size()) return there.stands > file.stands.size();
    return there.bglPath <= file.bglPath;
}

}  // namespace

bool lf_linkAirport(AirportFile& file, int32_t& archivedCount, const std::string& path) {
    const std::lock_guard guard(linkLock);
    file.bglPath = path;
    PublisherInfo info = gf_findPublisher(path);
    file.publisher = std::move(info.publisher);
    file.manufacturer = std::move(info.manufacturer);
    file.creator = std::move(info.creator);
    archivedCount = 0;
    if (file.publisher == "unknown" || lf_scanLeftBehind()) return false;
    return file.publisher == "simaddon" ? linkSimaddon(file.code) : linkThirdparty(file, archivedCount);
}

void lf_notRecognised(const std::string& path) {
    lf_scanLog(fmt::format("\n==> Not recognised airport {}", path));
    AirportFile file;
    file.code = codeByNames(path);
    if (file.code.empty()) {
        lf_scanLog(fmt::format("==================> Not recognised airport lost ... '{}'", path));
        return;
    }
    int32_t archived = 0;
    lf_linkAirport(file, archived, path);
}

bool lf_keepGenerated(const AirportFile& file, const fs::path& target,
                      const std::function<bool(const fs::path&)>& write) {
    fs::path beside = target;
    {
        const std::lock_guard guard(linkLock);
        beside += fmt::format(".{}.new", ++lastBeside);
    }
    if (!write(beside)) return false;
    const std::lock_guard guard(linkLock);
    std::error_code error;
    const auto there = generated.find(gf_pathText(target));
    if (lf_scanLeftBehind() || (there != generated.end() && staysInstead(there->second, file))) {
        fs::remove(beside, error);
        return true;
    }
    fs::rename(beside, target, error);
    if (error) {
        std::error_code ignored;
        fs::remove(beside, ignored);
        return false;
    }
    generated[gf_pathText(target)] = {file.stands.size(), file.bglPath};
    return true;
}

void lf_forgetGenerated() {
    const std::lock_guard guard(linkLock);
    generated.clear();
}

}  // namespace skl
