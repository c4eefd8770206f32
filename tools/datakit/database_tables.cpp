// The smaller tables of the reference database.
#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "core/text.h"
#include "tools/datakit/codes.h"
#include "tools/datakit/csv.h"
#include "tools/datakit/database_data.h"

namespace skl::datakit {

namespace {

constexpr double shortestSpan = 1, longestSpan = 130;  // metres
constexpr int32_t mostStandsOfAnAirport = 5000;

struct CategoryName {
    std::string_view name;
    Category category;
};
constexpr std::array<CategoryName, 12> categoryNames{{{"LIGHT", Category::light},
                                                      {"BUSINESS", Category::business},
                                                      {"BUZJET", Category::business},
                                                      {"BIZJET", Category::business},
                                                      {"LARGE", Category::large},
                                                      {"HEAVY", Category::heavy},
                                                      {"HIGH_PERFORMANCE", Category::highPerformance},
                                                      {"HIGHPERF", Category::highPerformance},
                                                      {"MILITARY", Category::highPerformance},
                                                      {"ROTORCRAFT", Category::rotorcraft},
                                                      {"HELICOPTER", Category::rotorcraft},
                                                      {"", Category::light}}};

std::optional<Category> categoryOf(std::string_view text) {
    const std::string name = gf_upper(text);
    for (const CategoryName& row : categoryNames)
        if (row.name == name) return row.category;
    return std::nullopt;
}

/// What the public list of designators tells: "L2J" and the like, and the class of wake turbulence. It tells
/// neither business jets nor fighters from others of their weight.
std::optional<Category> categoryOf(std::string_view description, std::string_view wake) {
    const std::string kind = gf_upper(description.substr(0, 1)), weight = gf_upper(wake.substr(0, 1));
    if (kind == "H" || kind == "G") return Category::rotorcraft;
    if (weight == "H" || weight == "J") return Category::heavy;
    if (weight == "M") return Category::large;
    return weight == "L" ? std::optional(Category::light) : std::nullopt;
}

/// A name that stands in a comma list.
std::string withoutCommas(std::string_view text) {
    std::string name(text);
    std::replace(name.begin(), name.end(), ',', ' ');
    return gf_trim(name);
}

}  // namespace

void readTypes(SourceFile& file, Database& database) {
    enum { type, category, span, cargo, similar, description, wake };
    CsvTable table(file, {{"type", true, {"icao", "icao_type", "designator"}},
                          {"category"},
                          {"span", false, {"span_m", "wingspan", "wingspan_m"}},
                          {"cargo"},
                          {"similar"},
                          {"description"},
                          {"wake", false, {"wtc"}}});
    const auto tell = [&](std::string_view text) { file.findings().tell("types", table.at(), text); };
    const bool byWake = !table.has(category);
    if (byWake && !table.has(wake))
        throw Failure(table.at().text() + ": has no column 'category', nor 'wake' to take it from");
    if (byWake) tell("no column 'category': taken from description and wake: none is Buzjet or HighPerf");
    while (table.next()) {
        const auto code = typeCode(table[type]);
        if (!code) {
            tell(fmt::format("'{}' is no designator of a type: left out", table[type]));
            continue;
        }
        const auto known = byWake ? categoryOf(table[description], table[wake]) : categoryOf(table[category]);
        if (!known && byWake)
            tell(
                fmt::format("type {}: neither description nor wake tells a category: taken as light", *code));
        else if (!known)
            tell(fmt::format(
                "type {}: '{}' is none of light, business, large, heavy, high_performance, rotorcraft: "
                "taken as light",
                *code, table[category]));
        TypeEntry entry{
            .category = known.value_or(Category::light), .cargo = isYes(table[cargo]), .place = table.at()};
        if (!table[span].empty()) {
            const auto metres = wholeNumber(table[span]);
            if (metres && *metres >= shortestSpan && *metres <= longestSpan)
                entry.span = metres;
            else
                tell(fmt::format("type {}: '{}' m can be no span: left open", *code, table[span]));
        }
        for (const std::string& item : itemsOf(table[similar])) entry.similar.push_back(gf_upper(item));
        const auto [there, added] = database.types.try_emplace(*code, std::move(entry));
        if (!added)
            file.findings().tell(
                "doubled types", table.at(),
                fmt::format("type {} stands in {} already: left out", *code, there->second.place.text()));
    }
}

void readAirlines(SourceFile& file, Database& database) {
    enum { icao, cargo };
    CsvTable table(file, {{"icao", true, {"code", "airline", "icao_code"}}, {"cargo"}});
    while (table.next()) {
        if (table[icao].empty()) continue;  // lists of airlines hold many without a code
        const auto code = airlineCode(table[icao]);
        if (!code) {
            file.findings().tell("airlines", table.at(),
                                 fmt::format("'{}' is no code of three letters: left out", table[icao]));
            continue;
        }
        // Codes pass from an airline that has ended to a new one: the same code twice is no mistake.
        AirlineEntry& entry = database.airlines[*code];
        entry.cargo = entry.cargo || isYes(table[cargo]);
        if (!entry.line) entry.line = table.at().line;
    }
}

void readFixes(SourceFile& file, Database& database) {
    enum { wrong, right };
    CsvTable table(file, {{"wrong", true, {"wro"}}, {"right", true, {"cor", "correct"}}});
    StringSet met;
    const auto tell = [&](std::string_view text) { file.findings().tell("fixes", table.at(), text); };
    for (const Fix& fix : database.fixes) met.insert(fix.wrong);
    while (table.next()) {
        Fix fix{std::string(table[wrong]), gf_upper(table[right])};
        if (fix.wrong.empty())
            tell("a fix of nothing: left out");
        else if (!database.types.contains(fix.right))
            tell(fmt::format("fix {} to {}: the latter is no type: left out", fix.wrong, fix.right));
        else if (database.types.contains(fix.wrong))
            tell(fmt::format("fix {} to {}: the former is a type itself: left out", fix.wrong, fix.right));
        else if (!met.insert(fix.wrong).second)
            tell(fmt::format("a second fix of {}: left out", fix.wrong));
        else
            database.fixes.push_back(std::move(fix));
    }
}

void readPublishers(SourceFile& file, Database& database) {
    enum { name, aliases };
    CsvTable table(file, {{"name", true, {"publisher"}}, {"aliases", false, {"spellings"}}});
    StringSet met;
    for (const auto& row : database.publishers) met.insert(row.front());
    while (table.next()) {
        std::vector<std::string> names{withoutCommas(table[name])};
        if (names[0].empty() || !met.insert(names[0]).second) {
            file.findings().tell(
                "publishers", table.at(),
                fmt::format("publisher '{}' has no name, or stands there twice: left out", names[0]));
            continue;
        }
        for (std::string& item : itemsOf(table[aliases], ",;")) names.push_back(std::move(item));
        database.publishers.push_back(std::move(names));
    }
}

void readSimAirports(SourceFile& file, Database& database) {
    CsvTable table(file, {{"airport", true, {"icao", "code"}}});
    while (table.next()) {
        if (auto code = airportCode(table[0]))
            database.simAirports.push_back(std::move(*code));
        else
            file.findings().tell("codes", table.at(),
                                 fmt::format("'{}' is no code of an airport: left out", table[0]));
    }
}

void readPublications(SourceFile& file, Database& database) {
    enum { publisher, airport, stands, simulator };
    CsvTable table(file,
                   {{"publisher", true}, {"airport", true}, {"stands", true}, {"simulator", true, {"sim"}}});
    const auto tell = [&](std::string_view text) { file.findings().tell("publications", table.at(), text); };
    while (table.next()) {
        const std::string name = withoutCommas(table[publisher]);
        const auto code = airportCode(table[airport]);
        const auto count = wholeNumber(table[stands]);
        const bool is20 = table[simulator].ends_with("20"), is24 = table[simulator].ends_with("24");
        const auto known = std::any_of(database.publishers.begin(), database.publishers.end(),
                                       [&](const auto& row) { return row.front() == name; });
        if (!known)
            tell(fmt::format("'{}' is no publisher of the publishers' table: left out", name));
        else if (!code || code->size() != 4)
            tell(fmt::format("'{}' is no code of four letters: left out", table[airport]));
        else if (!count || *count < 1 || *count > mostStandsOfAnAirport)
            tell(fmt::format("{} of {}: '{}' is no number of stands: left out", *code, name, table[stands]));
        else if (!is20 && !is24)
            tell(fmt::format("{} of {}: '{}' is neither 2020 nor 2024: left out", *code, name,
                             table[simulator]));
        else {
            auto& rows = is20 ? database.publications20 : database.publications24;
            auto row = std::find_if(rows.begin(), rows.end(),
                                    [&](const Publication& p) { return p.publisher == name; });
            if (row == rows.end()) row = rows.insert(rows.end(), {name, {}});
            row->airports.push_back(fmt::format("{}{:.0f}", *code, *count));
        }
    }
}

}  // namespace skl::datakit
