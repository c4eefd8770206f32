// The document of the reference database.
#include <fmt/format.h>

#include <algorithm>
#include <set>

#include "tools/datakit/database_data.h"
#include "tools/datakit/output_file.h"

namespace skl::datakit {

namespace {

constexpr size_t namesInARow = 16;
constexpr std::string_view nobody = "ZZZZ";

std::string joined(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names) {
        if (!text.empty()) text += ',';
        text += name;
    }
    return text;
}

class Document {
  public:
    explicit Document(Findings& findings) : findings_(findings) {
        xml_ = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    }

    /// A section of comma lists.
    void list(std::string_view section, std::string_view element, std::string_view attribute,
              std::vector<std::string> names) {
        if (names.empty()) {
            findings_.tell(
                "empty lists", {"dbase.xml", 0},
                fmt::format("nothing for the list '{}': the program refuses an empty one, so it holds "
                            "{}, which is nothing that flies",
                            section, nobody));
            names.emplace_back(nobody);
        }
        begin(section);
        for (size_t at = 0; at < names.size(); at += namesInARow) {
            const size_t end = std::min(at + namesInARow, names.size());
            row(element, {{attribute, joined({names.begin() + static_cast<std::ptrdiff_t>(at),
                                              names.begin() + static_cast<std::ptrdiff_t>(end)})}});
        }
        end(section);
    }

    using Attributes = std::initializer_list<std::pair<std::string_view, std::string_view>>;
    void row(std::string_view element, const Attributes& attributes) {
        xml_ += "  <";
        xml_ += element;
        for (const auto& [name, value] : attributes)
            if (!value.empty()) appendAttribute(xml_, name, value);
        xml_ += "/>\n";
    }
    void begin(std::string_view section) { xml_ += fmt::format("<{}>\n", section); }
    void end(std::string_view section) { xml_ += fmt::format("</{}>\n", section); }
    std::string take() { return std::move(xml_); }

  private:
    Findings& findings_;
    std::string xml_;
};

template <class Keep>
std::vector<std::string> typesWhere(const Database& database, Keep keep) {
    std::vector<std::string> names;
    for (const auto& [name, entry] : database.types)
        if (keep(entry)) names.push_back(name);
    return names;
}

std::vector<std::string> ofCategory(const Database& database, Category category) {
    return typesWhere(database, [category](const TypeEntry& entry) { return entry.category == category; });
}

/// Those marked, or where none is, those with registrations that carry cargo.
std::vector<std::string> cargoTypesOf(const Database& database) {
    auto marked = typesWhere(database, [](const TypeEntry& entry) { return entry.cargo; });
    if (!marked.empty()) return marked;
    std::set<std::string> seen;
    for (const Registration& row : database.registrations)
        if (row.cargo) seen.insert(row.type);
    return {seen.begin(), seen.end()};
}

std::vector<std::string> cargoOperatorsOf(const Database& database) {
    std::set<std::string> names;
    for (const auto& [name, entry] : database.airlines)
        if (entry.cargo) names.insert(name);
    if (names.empty())
        for (const Registration& row : database.registrations)
            if (row.cargo && !row.airl.empty()) names.insert(row.airl);
    return {names.begin(), names.end()};
}

void writeSimilar(const Database& database, Document& document) {
    std::set<std::string> rows;
    for (const auto& [name, entry] : database.types) {
        if (entry.similar.empty()) continue;
        std::set<std::string> row(entry.similar.begin(), entry.similar.end());
        row.insert(name);
        rows.insert(joined({row.begin(), row.end()}));
    }
    document.begin("similar_types");
    for (const std::string& row : rows) document.row("similar", {{"types", row}});
    document.end("similar_types");
}

void writePublications(const std::vector<Publication>& rows, std::string_view section,
                       std::string_view element, Document& document) {
    document.begin(section);
    for (const Publication& row : rows)
        document.row(element, {{"pub", row.publisher}, {"arpts", joined(row.airports)}});
    document.end(section);
}

}  // namespace

void checkDatabase(Database& database, Findings& findings) {
    // As the program reckons: with no span at all it has no mean either.
    const bool anySpan = std::any_of(database.types.begin(), database.types.end(),
                                     [](const auto& type) { return type.second.span.has_value(); });
    const std::string_view instead = anySpan ? "they take the mean span of its category, or else of all types"
                                             : "no type has one, so they fit on every stand";
    for (auto& [name, entry] : database.types) {
        if (entry.aircraft > 0 && !entry.span)
            findings.tell(
                "missing spans", entry.place,
                fmt::format("type {} has no span and {} aircraft: {}", name, entry.aircraft, instead));
        std::erase_if(entry.similar, [&](const std::string& other) {
            if (database.types.contains(other)) return false;
            findings.tell("unknown types", entry.place,
                          fmt::format("type {} is said to be similar to '{}', which is no type: left out",
                                      name, other));
            return true;
        });
    }
}

std::string databaseXml(const Database& database, Findings& findings) {
    if (database.types.empty()) throw Failure("no type in any table of types, nothing is written");
    if (database.airlines.empty()) throw Failure("no airline in any table of airlines, nothing is written");
    Document document(findings);
    document.list("aircrafts", "aircraft", "types",
                  typesWhere(database, [](const TypeEntry&) { return true; }));
    document.list("high_performance", "hpf", "types", ofCategory(database, Category::highPerformance));
    document.list("heavy", "hvy", "types", ofCategory(database, Category::heavy));
    document.list("large", "lar", "types", ofCategory(database, Category::large));
    document.list("buzjet", "bzj", "types", ofCategory(database, Category::business));
    document.list("rotorcraft", "rot", "types", ofCategory(database, Category::rotorcraft));
    document.list("cargo_types", "cargo_type", "types", cargoTypesOf(database));
    writeSimilar(database, document);
    std::vector<std::string> airlines;
    for (const auto& [name, entry] : database.airlines) airlines.push_back(name);
    document.list("ICAO_airlines", "ICAO", "codes", std::move(airlines));
    document.list("cargo_operators", "ICAO", "codes", cargoOperatorsOf(database));
    document.begin("publishers");
    for (const auto& names : database.publishers) document.row("pub", {{"names", joined(names)}});
    document.end("publishers");
    document.begin("wingspans");
    for (const auto& [name, entry] : database.types)
        if (entry.span)
            document.row("wingspan", {{"type", name}, {"meters", fmt::format("{:.2f}", *entry.span)}});
    document.end("wingspans");
    document.begin("fixes");
    for (const Fix& fix : database.fixes) document.row("fx", {{"wro", fix.wrong}, {"cor", fix.right}});
    document.end("fixes");
    document.list("simaddons20", "simaddon20", "arpts", database.simAirports);
    writePublications(database.publications20, "thirdparties20", "thirdpartie20", document);
    writePublications(database.publications24, "thirdparties24", "thirdpartie24", document);
    document.begin("dbase");
    for (const Registration& row : database.registrations)
        document.row("db", {{"reg", row.reg},
                            {"airl", row.airl},
                            {"type", row.type},
                            {"opr", row.opr},
                            {"cargo", row.cargo ? "true" : ""}});
    document.end("dbase");
    return document.take();
}

}  // namespace skl::datakit
