// regcodes: which livery is painted for which aircraft, out of tables.
#include <fmt/format.h>

#include <algorithm>
#include <filesystem>

#include "core/fnv.h"
#include "core/text.h"
#include "liveries/reference_db.h"
#include "tools/datakit/commands.h"
#include "tools/datakit/csv.h"
#include "tools/datakit/database_data.h"
#include "tools/datakit/output_file.h"
#include "tools/datakit/program_log.h"

namespace skl::datakit {

namespace {

constexpr size_t shortestReg = 3;  // what the program takes

struct Livery {
    std::string title;
    std::vector<std::string> regs;
    bool special = false;
    bool named = false;  ///< a row named a registration, good or not: no title that is never to be used
    Place place;
};

class Reader {
  public:
    Reader(Findings& findings, bool databaseLoaded) : findings_(findings), databaseLoaded_(databaseLoaded) {}

    void read(SourceFile& file) {
        enum { title, registrations, special };
        CsvTable table(
            file, {{"title", true}, {"registrations", true, {"registration", "reg", "regs"}}, {"special"}});
        while (table.next()) {
            if (table[title].empty()) {
                findings_.tell("titles", table.at(), "a row without a title: left out");
                continue;
            }
            Livery& livery = ofTitle(std::string(table[title]), table.at());
            livery.special = livery.special || isYes(table[special]);
            for (const std::string& item : itemsOf(table[registrations])) add(livery, item, table.at());
        }
    }

    /// Without those of whose registrations none was left: that would forbid the title.
    std::vector<Livery> take() {
        std::erase_if(liveries_, [this](const Livery& livery) {
            if (!livery.named || !livery.regs.empty()) return false;
            findings_.tell("titles", livery.place,
                           fmt::format("'{}': none of its registrations is left: left out", livery.title));
            return true;
        });
        return std::move(liveries_);
    }

  private:
    /// Rows of one title are one livery: the program refuses a title that follows itself.
    Livery& ofTitle(std::string title, const Place& place) {
        const auto [found, added] = titles_.try_emplace(title, liveries_.size());
        if (added) liveries_.push_back({.title = std::move(title), .place = place});
        return liveries_[found->second];
    }

    void add(Livery& livery, const std::string& item, const Place& place) {
        livery.named = true;
        const auto reg = registrationOf(item);
        if (!reg || reg->size() < shortestReg) {
            findings_.tell("registrations", place, fmt::format("'{}' is no registration: left out", item));
            return;
        }
        const auto [first, added] = regs_.try_emplace(*reg, livery.title);
        if (!added) {
            findings_.tell("doubled registrations", place,
                           fmt::format("{} is tied to '{}' already: left out", *reg, first->second));
            return;
        }
        if (databaseLoaded_ && !gf_dbaseLookup(*reg))
            findings_.tell("unknown registrations", place,
                           fmt::format("{} is not in the database: kept", *reg));
        livery.regs.push_back(*reg);
    }

    Findings& findings_;
    const bool databaseLoaded_;
    std::vector<Livery> liveries_;
    StringMap<size_t> titles_;
    StringMap<std::string> regs_;  ///< to the title
};

std::string regcodesXml(const std::vector<Livery>& liveries) {
    std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<AIG-regcodes>\n";
    for (const Livery& livery : liveries) {
        xml += "  <livery";
        appendAttribute(xml, "title", livery.title);
        std::string regs;
        for (const std::string& reg : livery.regs) regs += regs.empty() ? reg : ',' + reg;
        appendAttribute(xml, "reg", regs);
        if (livery.special) appendAttribute(xml, "special", "true");
        xml += "/>\n";
    }
    return xml + "</AIG-regcodes>\n";
}

int makeRegcodes(Job& job) {
    const std::filesystem::path out = job.arguments.needed("--out");
    if (job.arguments.rest().empty()) throw Misuse("datakit regcodes needs a table");
    const auto database = job.arguments.one("--database");
    if (database) {
        const ProgramLog log;
        gf_readDbaseXml(*database);
    }
    Reader reader(job.findings, database.has_value());
    for (const std::string& path : job.arguments.rest()) {
        SourceFile file(path, job.findings);
        reader.read(file);
    }
    const auto liveries = reader.take();
    const auto never = std::count_if(liveries.begin(), liveries.end(),
                                     [](const Livery& livery) { return livery.regs.empty(); });
    replaceIfChanged(out, regcodesXml(liveries));
    job.out << fmt::format("{} titles to {}, {} of them never to be used\n", liveries.size(),
                           gf_pathText(out), never);
    return 0;
}

}  // namespace

Command regcodesCommand() {
    return {
        {.name = "regcodes",
         .arguments = "TABLE ...",
         .summary = "registration codes: which livery belongs to which aircraft",
         .text =
             R"(Writes AIG-regcodes.xml out of tables with the columns title, registrations (a list) and, if they
have it, special (the livery is for these aircraft alone). A title without registrations is never
used. A registration belongs to the first title that has it.)",
         .options = {{"--out", "FILE", "AIG-regcodes.xml"},
                     {"--database", "FILE", "dbase.xml: tells registrations that it does not know"}}},
        makeRegcodes};
}

}  // namespace skl::datakit
