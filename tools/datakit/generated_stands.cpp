#include "tools/datakit/generated_stands.h"

#include <fmt/format.h>

#include <algorithm>
#include <pugixml.hpp>
#include <system_error>

#include "airports/airport_rows.h"
#include "airports/stand_reader.h"
#include "core/errors.h"
#include "core/text.h"
#include "tools/datakit/codes.h"
#include "tools/datakit/output_file.h"

namespace skl::datakit {

namespace fs = std::filesystem;

namespace {

uint64_t lineOfStand(const pugi::xml_document& document, std::string_view text, const std::string& id) {
    const auto node = document.child("parkpositions").find_child_by_attribute("parkpos", "id", id.c_str());
    return lineAt(text, static_cast<size_t>(node.offset_debug()));
}

}  // namespace

std::vector<fs::path> airportFiles(const fs::path& path) {
    std::error_code ignored;
    if (!fs::is_directory(path, ignored)) return {path};
    std::vector<fs::path> files;
    for (const auto& entry : fs::directory_iterator(path))
        if (entry.is_regular_file() && entry.path().extension() == ".xml") files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

uint64_t lineAt(std::string_view text, size_t offset) {
    return 1 + static_cast<uint64_t>(std::count(
                   text.begin(), text.begin() + static_cast<std::ptrdiff_t>(std::min(offset, text.size())),
                   '\n'));
}

std::optional<StandList> standsOfFile(const fs::path& path, ProgramLog& log, Findings& findings) {
    const std::string name = gf_pathText(path);
    const auto code = airportCode(gf_pathText(path.stem()));
    const auto refuse = [&](uint64_t line, std::string_view why) {
        findings.tell("airport files", {name, line}, fmt::format("{}: the file is left out", why));
        return std::nullopt;
    };
    if (!code) return refuse(0, "its name is no code of an airport");
    const std::string text = readWhole(path);
    pugi::xml_document document;
    const auto loaded = document.load_buffer(text.data(), text.size());
    if (!loaded) return refuse(lineAt(text, static_cast<size_t>(loaded.offset)), loaded.description());
    StandList list;
    list.place = {name, 0};
    list.file.code = *code;
    list.file.airportName = lf_rowText(document, "airport_name").value_or("");
    const auto altitude = lf_rowInt(document, "altitude");
    if (!altitude) return refuse(0, "has no row 'altitude' with a number");
    list.file.altitude = *altitude;
    list.file.trafficWeek = lf_rowInt(document, "RT_traffic_week").value_or(0);
    std::vector<Stand> stands;
    try {
        lf_readStands(document, stands);
    } catch (const UserErrorException& error) {
        log.complaints();
        return refuse(0, error.what());
    }
    for (const std::string& complaint : log.complaints())
        findings.tell("airport files", {name, 0}, complaint);
    for (Stand& stand : stands) {
        const Stand* there = standOnPlace(list.file.stands, stand.pos());
        if (there)
            findings.tell("stands on one place", {name, lineOfStand(document, text, stand.id)},
                          fmt::format("stand '{}' lies on stand '{}': left out", stand.id, there->id));
        else
            list.file.stands.push_back(std::move(stand));
    }
    return list;
}

}  // namespace skl::datakit
