#include "liveries/cfg_section.h"

#include <fmt/format.h>

#include <algorithm>
#include <system_error>

#include "core/folders.h"
#include "core/log.h"
#include "core/parameters.h"
#include "core/text.h"
#include "liveries/livery_scan.h"
#include "liveries/reference_db.h"

namespace skl {

namespace {

constexpr std::string_view genericAirline = "ZZZ";
constexpr size_t shortestAtcId = 5;
constexpr size_t longestRegistration = 12;

bool contains(std::string_view text, std::string_view piece) {
    return text.find(piece) != std::string_view::npos;
}

bool isKnownAirline(std::string_view code) {
    return code == genericAirline || gf_isIcaoAirline(code);
}

/// What the lines of one section say so far.
struct Section {
    std::string_view path, header;
    bool ivao;
    ScanReports& reports;
    std::string title, airline, parkingTypes, regcode, texture;

    void incomplete(std::string text) { reports.incompleteSections.push_back(std::move(text)); }
    void invalidAirline(std::string_view code) {
        reports.invalidAirlines.push_back(fmt::format("{:12} in {} {}", code, path, header));
    }
};

/// What a line means for its section.
enum class Verdict { goOn, failed, dropped };

bool isBannedTitle(std::string_view title) {
    return contains(title, "FenixA320") || contains(title, "PMDG 737") ||
           (SUPPRESS_STUB.value && title.ends_with("-STUB"));
}

Verdict takeTitle(Section& section, std::string_view value) {
    if (!section.title.empty()) {
        section.incomplete(fmt::format("{} {} has more than one title key", section.path, section.header));
        return Verdict::failed;
    }
    const auto raw = lf_unquoted(value);
    section.title = lf_trimmed(raw);
    if (section.ivao && section.title.size() < raw.size())
        gf_log(fmt::format("removed spaces around title '{}' --> '{}'", raw, section.title));
    return isBannedTitle(section.title) ? Verdict::dropped : Verdict::goOn;
}

Verdict takeAirline(Section& section, std::string_view value) {
    std::string code = gf_upper(lf_plainValue(value));
    if (code.empty() || code == "ZZZZ") code = genericAirline;
    if (code.size() == 4 && (code[3] == 'X' || code[3] == 'C')) code.pop_back();
    if (isKnownAirline(code)) {
        section.airline = std::move(code);
        return Verdict::goOn;
    }
    if (code == "RFO") return Verdict::dropped;
    section.invalidAirline(code);
    return Verdict::goOn;
}

bool isRegistration(std::string_view piece) {
    return !piece.empty() && piece != " " && piece.size() <= longestRegistration && !contains(piece, "*");
}

/// One good registration is the section's; several good ones say nothing; a bad one is reported.
void takeRegcode(Section& section, std::string_view value) {
    if (!section.ivao) value = lf_trimmed(value.substr(0, value.find(';')));
    size_t pieces = 0;
    for (size_t start = 0; start <= value.size(); ++pieces) {
        const size_t end = std::min(value.find(',', start), value.size());
        if (!isRegistration(value.substr(start, end - start))) {
            section.incomplete(
                fmt::format("invalid atc_id={} in{} {}", value, section.ivao ? "" : ":", section.title));
            return;
        }
        start = end + 1;
    }
    if (pieces == 1) section.regcode = value;
}

/// The tests of one line; the first that applies acts.
Verdict takeLine(Section& section, std::string_view line) {
    const bool mayBeKey = contains(line, "=");
    const auto valueOf = [&](std::string_view key) {
        return mayBeKey ? lf_keyValue(line, key) : std::optional<std::string_view>();
    };
    if (const auto value = valueOf("title")) return takeTitle(section, *value);
    if (!section.ivao) {
        if (section.airline.empty()) {
            if (const auto value = valueOf("icao_airline")) return takeAirline(section, *value);
        } else if (contains(line, "icao_airline")) {
            section.incomplete(
                fmt::format("{} {} has more than one icao_airline key", section.path, section.header));
            return Verdict::failed;
        }
    }
    if (section.parkingTypes.empty()) {
        if (const auto value = valueOf("atc_parking_types")) {
            section.parkingTypes = gf_upper(lf_plainValue(*value));
            return Verdict::goOn;
        }
    } else if (contains(line, "atc_parking_types")) {
        section.incomplete(
            fmt::format("{} {} has more than one atc_parking_types key", section.path, section.header));
        return Verdict::failed;
    }
    if (section.regcode.empty()) {
        const auto value = valueOf("atc_id");
        if (value && lf_plainValue(*value).size() >= shortestAtcId) {
            takeRegcode(section, lf_plainValue(*value));
            return Verdict::goOn;
        }
    } else if (contains(line, "atc_id=")) {
        section.incomplete(fmt::format("{}, {}, has more than one atc_id key", section.path, section.header));
        return Verdict::failed;
    }
    if (section.ivao && section.texture.empty())
        if (const auto value = valueOf("texture")) section.texture = lf_plainValue(*value);
    return Verdict::goOn;
}

CfgLines withoutTrailingBlanks(CfgLines lines) {
    while (!lines.empty() && (lines.back().empty() || lines.back().starts_with("//")))
        lines = lines.first(lines.size() - 1);
    return lines;
}

/// False when the section failed or was dropped.
bool takeLines(Section& section, CfgLines lines) {
    return std::all_of(lines.begin(), lines.end(),
                       [&](std::string_view line) { return takeLine(section, line) == Verdict::goOn; });
}

/// An airline for a section that names none; false, after a report, if an airliner stays without one.
bool findAirline(Section& section, std::string_view model) {
    if (!section.regcode.empty()) {
        const auto record = gf_dbaseLookup(section.regcode);
        if (record && !record->airl.empty()) {
            section.airline = record->airl;
            return true;
        }
        if (gf_category(model) == AcCategory::Heavy) {
            section.incomplete(fmt::format("'{}' '{}' has no airline and regcode not in dbase", section.path,
                                           section.header));
            return false;
        }
        section.airline = "PVT";
        return true;
    }
    if (gf_category(model) == AcCategory::Heavy) {
        section.incomplete(
            fmt::format("'{}' '{}' has no airline and no regcode info", section.path, section.header));
        return false;
    }
    section.airline = "PVT";
    section.regcode = gf_regInTitle(section.title).value_or("");
    return true;
}

LiveryData finished(Section& section, uint32_t priority, std::string_view model, bool cargo) {
    return {.airline = std::move(section.airline),
            .model = std::string(model),
            .title = std::move(section.title),
            .regcode = std::move(section.regcode),
            .priority = priority,
            .cargo = cargo};
}

/// The three characters behind `start` and blanks in a title of one line; nothing if it does not begin that
/// way.
std::optional<std::string_view> codeBehind(std::string_view title, std::string_view start) {
    if (!title.starts_with(start) || contains(title, "\r")) return std::nullopt;
    const size_t place = title.find_first_not_of(" \t\v\f", start.size());
    if (place == std::string_view::npos || place + 3 > title.size()) return std::nullopt;
    const auto code = title.substr(place, 3);
    if (!std::all_of(code.begin(), code.end(), lf_isWordCharacter)) return std::nullopt;
    return code;
}

/// Titles of these models have a letter behind the type.
std::string_view titleSuffix(std::string_view path) {
    for (const char* folder :
         {"IVAO_B738WLfa", "IVAO_B739WLfa", "IVAO_A320wCFM", "IVAO_A320wIAE", "IVAO_A319fIAEw"})
        if (contains(path, folder)) return "W";
    return "";
}

}  // namespace

LiveryData lf_procesFltSimSection(uint32_t priority, CfgLines lines, std::string_view model,
                                  std::string_view cfgPath, ScanReports& reports) {
    try {
        lines = withoutTrailingBlanks(lines);
        if (lines.empty()) return {};
        Section section{.path = cfgPath, .header = lines.front(), .ivao = false, .reports = reports};
        if (!takeLines(section, lines)) return {};
        if (section.airline.empty())
            section.incomplete(fmt::format("{} {} icao_airline is missing, or it has invalid info ",
                                           section.path, section.header));
        if (section.title.empty()) {
            section.incomplete(fmt::format("{} {} misses title", section.path, section.header));
            return {};
        }
        if (dontUseTitles.contains(section.title)) return {};
        if (section.airline == genericAirline) section.regcode.clear();
        if (section.airline.empty() && !findAirline(section, model)) return {};
        const bool cargo = contains(section.parkingTypes, "CARGO") && !contains(section.parkingTypes, "GATE");
        return finished(section, priority, model, cargo);
    } catch (const std::exception& error) {
        gf_log(fmt::format("Exception in lf_procesFltSimSection: {}, file: {}", error.what(), cfgPath));
        throw;
    }
}

LiveryData lf_procesIvaoSection(uint32_t priority, CfgLines lines, std::string_view model,
                                std::string_view cfgPath, const std::filesystem::path& folder,
                                ScanReports& reports) {
    lines = withoutTrailingBlanks(lines);
    if (lines.empty()) return {};
    Section section{.path = cfgPath, .header = lines.front(), .ivao = true, .reports = reports};
    if (!takeLines(section, lines)) return {};
    const std::string head = fmt::format("{} {}", cfgPath, section.header);
    std::error_code ignored;  // a name that no file can have is no folder either
    if (!std::filesystem::is_directory(
            gf_findExisting(folder / gf_pathFromText("texture." + section.texture)), ignored)) {
        section.incomplete(head + " does not exist");
        return {};
    }
    if (section.title.empty()) {
        section.incomplete(head + " misses title");
        return {};
    }
    if (dontUseTitles.contains(section.title)) return {};
    const std::string start = fmt::format("{}{}", model, titleSuffix(cfgPath));
    if (const auto code = codeBehind(section.title, start)) {
        section.airline = *code;
        if (!isKnownAirline(section.airline)) {
            section.invalidAirline(section.airline);
            return {};
        }
        if (section.airline == genericAirline) section.regcode.clear();
    } else if (section.regcode.empty()) {
        section.incomplete(
            fmt::format("{} misses airlinecode in title: {}, and no regcode", head, section.title));
        return {};
    } else if (const auto record = gf_dbaseLookup(section.regcode)) {
        section.airline = record->airl;
    } else {
        section.incomplete(fmt::format("{} misses airlinecode in title: {}, and regcode unknown {}", head,
                                       section.title, section.regcode));
        return {};
    }
    return finished(section, priority, model, false);
}

}  // namespace skl
