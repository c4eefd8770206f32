// Where the files of an airport lie: the user's folders, link files in them, the site, and the learned files.
#include <fmt/format.h>

#include <algorithm>
#include <fstream>
#include <system_error>

#include "airports/airport_file.h"
#include "airports/site_documents.h"
#include "core/folders.h"
#include "core/log.h"
#include "core/text.h"

namespace skl {

namespace {

constexpr std::string_view byteOrderMark = "\xef\xbb\xbf";
constexpr std::string_view ending = ".xml";
constexpr std::string_view learnedFolder = "airports/learned";
constexpr std::string_view archiveFolder = "archive/";

bool exists(const std::string& name) {
    std::error_code error;
    return fs::is_regular_file(gf_nativePath(name), error);
}

std::string placeOf(const fs::path& folder, const std::string& file) {
    return folder.generic_string() + '/' + file;
}

std::string stockName(const std::string& code) {
    return "archive/stock/" + code + std::string(ending);
}

/// The file of the site that a link file names; empty if there is none, or it names nothing. It must lie in
/// the archive: what is learned of the airport is kept under the same name, and any other would lead
/// elsewhere.
std::string readLink(const fs::path& folder, const std::string& code) {
    const std::string place = placeOf(folder, code + ".txt");
    std::ifstream file(gf_nativePath(place), std::ios::binary);
    std::string line;
    if (!file || !std::getline(file, line)) return {};
    if (line.starts_with(byteOrderMark)) line.erase(0, byteOrderMark.size());
    line = gf_trim(line);
    std::replace(line.begin(), line.end(), '\\', '/');
    line.erase(0, line.find_first_not_of('/'));
    const size_t end = line.rfind(ending);
    if (end == std::string::npos) return {};
    line.erase(end + ending.size());
    if (line.starts_with(archiveFolder) && line.find("..") == std::string::npos) return line;
    gf_logError(fmt::format("{}: '{}' leads out of the archive, left out", place, line));
    return {};
}

/// The link file of a folder, else the file generated into it.
std::string findIn(const fs::path& folder, const std::string& code) {
    std::string linked = readLink(folder, code);
    if (!linked.empty()) return linked;
    const std::string generated = placeOf(folder, code + std::string(ending));
    return exists(generated) ? generated : std::string();
}

/// Whether the system takes it in a name; on Windows a colon would even begin the name of something else.
bool fitsName(char c) {
    constexpr std::string_view never = fs::path::preferred_separator == '\\' ? "/\\<>:\"|?*" : "/\\";
    return !gf_isControl(c) && never.find(c) == std::string_view::npos;
}

/// As the name of one folder: a publisher comes out of a file that anybody may have written.
std::string cleanPublisher(std::string_view publisher) {
    std::string name;
    std::copy_if(publisher.begin(), publisher.end(), std::back_inserter(name), fitsName);
    for (size_t at = 0; (at = name.find("..")) != std::string::npos;) name.erase(at, 2);
    name = gf_trim(name);
    return name == "." ? std::string() : name;
}

/// The first occurrence; whether there was one.
bool replaceFirst(std::string& text, std::string_view from, std::string_view to) {
    const size_t at = text.find(from);
    if (at == std::string::npos) return false;
    text.replace(at, from.size(), to);
    return true;
}

}  // namespace

std::string gf_findAirportFile(const std::string& code) {
    for (const fs::path& folder : {paths::myThirdparty, paths::mySimaddon}) {
        std::string found = findIn(folder, code);
        if (!found.empty()) return found;
    }
    const std::string stock = stockName(code);
    return lf_siteHolds(stock) ? stock : std::string();
}

bool gf_airportFileKnown(const std::string& code) {
    for (const fs::path& folder : {paths::myThirdparty, paths::mySimaddon})
        for (const char* extension : {".xml", ".txt"})
            if (exists(placeOf(folder, code + extension))) return true;
    return lf_siteHolds(stockName(code));
}

fs::path gf_learnedPath(std::string_view fileName, std::string_view publisher) {
    std::string name(fileName);
    if (replaceFirst(name, "archive", learnedFolder)) {
        while (replaceFirst(name, "%20", " ")) {
        }
    } else if (name.starts_with("airports")) {
        replaceFirst(name, "airports", learnedFolder);
        const std::string folder = "thirdparty/" + cleanPublisher(publisher);
        if (!replaceFirst(name, "my_thirdparty2024", folder) && !replaceFirst(name, "my_thirdparty", folder))
            replaceFirst(name, "my_simaddon", "simaddon");
    }
    return gf_nativePath(name);
}

}  // namespace skl
