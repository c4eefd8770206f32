// stands: stock airport files out of apt.dat, generated airport files and sightings.
#include <fmt/format.h>

#include <filesystem>
#include <optional>
#include <pugixml.hpp>

#include "core/fnv.h"
#include "core/text.h"
#include "core/xml_file.h"
#include "liveries/reference_db.h"
#include "tools/datakit/commands.h"
#include "tools/datakit/generated_stands.h"
#include "tools/datakit/output_file.h"
#include "tools/datakit/stand_making.h"

namespace skl::datakit {

namespace {

namespace fs = std::filesystem;

constexpr double largestRadius = 200;  // metres; what the program's reader takes

/// "A=8,C=19": those named are replaced.
Radii radiiOf(const std::vector<std::string>& items) {
    Radii radii = usualRadii;
    for (const std::string& item : items) {
        const auto metres = item.size() > 2 && item[1] == '=' ? wholeNumber(item.substr(2)) : std::nullopt;
        if (!metres || item[0] < 'A' || item[0] > 'F' || *metres <= 0 || *metres > largestRadius)
            throw Misuse(fmt::format("--radii takes LETTER=METRES with A to F, not '{}'", item));
        radii[static_cast<size_t>(item[0] - 'A')] = *metres;
    }
    return radii;
}

/// Without the row of the day on which the document was made.
std::string withoutDate(std::string text) {
    const size_t row = text.find("<info name=\"date\"");
    if (row != text.npos) text.erase(row, text.find('\n', row) - row);
    return text;
}

/// The same stands made on another day are no other file: servers and copies are to see no change.
void writeUnlessSame(const fs::path& path, const std::string& text) {
    std::error_code ignored;
    if (fs::is_regular_file(path, ignored) && withoutDate(readWhole(path)) == withoutDate(text)) return;
    replaceIfChanged(path, text);
}

class StandsJob {
  public:
    explicit StandsJob(Job& job)
        : job_(job),
          out_(job.arguments.needed("--out")),
          publisher_(job.arguments.one("--publisher").value_or("stock")),
          radii_(radiiOf(job.arguments.list("--radii"))),
          progress_(job.notes, "stands: airports") {
        for (const std::string& word : job.arguments.list("--only")) {
            const auto code = airportCode(word);
            if (!code) throw Misuse(fmt::format("--only: '{}' is no code of an airport", word));
            only_.insert(*code);
        }
    }

    int run() {
        if (job_.arguments.rest().empty()) throw Misuse("datakit stands needs a source");
        if (const auto database = job_.arguments.one("--database")) {
            gf_readDbaseXml(*database);
            for (const std::string& complaint : log_.complaints())
                job_.findings.tell("database", {*database, 0}, complaint);
            databaseLoaded_ = true;
        }
        // Else what is named first would have been written already when the next is not found.
        for (const std::string& source : job_.arguments.rest())
            if (std::error_code error; !fs::exists(source, error))
                throw Failure(source + ": is neither a file nor a folder");
        readAllSightings();
        for (const std::string& source : job_.arguments.rest()) readSource(source);
        for (const auto& [code, sightings] : sightings_)
            if (wanted(code) && !done_.contains(code))
                for (const Sighting& sighting : sightings)
                    job_.findings.tell("sightings", sighting.place,
                                       fmt::format("no source has stands of {}: left out", code));
        if (done_.empty()) throw Failure("no airport with stands in any source, nothing is written");
        job_.out << fmt::format("{} airports with {} stands to {}", done_.size(), stands_, gf_pathText(out_));
        job_.out << fmt::format(", {} options on them\n", options_);
        return 0;
    }

  private:
    bool wanted(const std::string& code) const { return only_.empty() || only_.contains(code); }

    void readAllSightings() {
        const std::string airport = only_.size() == 1 ? *only_.begin() : std::string();
        const int week = job_.arguments.number("--week", 1, 1'000'000).value_or(0);
        for (const std::string& path : job_.arguments.all("--sightings")) {
            SourceFile file(path, job_.findings);
            readSightings(file, airport, week, sightings_);
        }
    }

    void readSource(const std::string& source) {
        std::error_code ignored;
        if (!fs::is_directory(source, ignored) && isAptDat(source)) {
            readApt(source);
            return;
        }
        for (const fs::path& path : airportFiles(source)) {
            if (path.extension() != ".xml")
                throw Failure(gf_pathText(path) + ": is neither an apt.dat nor an airport file (.xml)");
            if (auto list = standsOfFile(path, log_, job_.findings)) take(std::move(*list));
        }
    }

    void readApt(const std::string& source) {
        SourceFile file(source, job_.findings);
        StringMap<uint64_t> met;
        readAptDat(file, [&](AptAirport&& airport) {
            const auto [first, added] = met.try_emplace(airport.code, airport.line);
            if (!added) {
                job_.findings.tell("doubled idents", file.at(airport.line),
                                   fmt::format("airport {} stands in line {} already: left out", airport.code,
                                               first->second));
                return;
            }
            if (wanted(airport.code) && !airport.closed && !done_.contains(airport.code))
                take(standsOfApt(airport, radii_, job_.arguments.has("--hangars"), file));
        });
    }

    void take(StandList list) {
        progress_.step();
        AirportFile& file = list.file;
        if (file.stands.empty() || !wanted(file.code) || done_.contains(file.code)) return;
        file.publisher = publisher_;
        const auto sightings = sightings_.find(file.code);
        static const std::vector<Sighting> none;
        addSightings(list, sightings == sightings_.end() ? none : sightings->second, databaseLoaded_,
                     job_.findings);
        pugi::xml_document document;
        if (!lf_apfDocument(file, ApfMode::stock, document))
            throw Failure(fmt::format("the file of {} could not be made", file.code));
        writeUnlessSame(out_ / (file.code + ".xml"), lf_xmlText(document));
        stands_ += file.stands.size();
        for (const Stand& stand : file.stands) options_ += stand.options.size();
        done_.insert(file.code);
    }

    Job& job_;
    const fs::path out_;
    const std::string publisher_;
    const Radii radii_;
    Progress progress_;
    ProgramLog log_;
    StringSet only_, done_;
    SightingsByAirport sightings_;
    bool databaseLoaded_ = false;
    size_t stands_ = 0, options_ = 0;
};

}  // namespace

Command standsCommand() {
    return {
        {.name = "stands",
         .arguments = "SOURCE ...",
         .summary = "stock airport files, out of apt.dat, generated airport files and sightings",
         .text =
             R"(Writes DIR/<code>.xml for each airport that has stands in a source: an apt.dat (rows 15, 1300 and
1301), an airport file such as the program generates from scenery, or a folder of those. The first
source with stands of an airport has it whole. Radii follow the size letters; a stand without one
takes the letter that its kind and aircraft suggest. Sightings are a table with the columns airport,
registration, airline, type, callsign, weekday (1 Monday), half_hours (0 to 47, such as "12-17,40"),
stand and, if it has it, week. Where the stand is empty, one is looked for that fits, which needs
--database; such options are soft ones. Quality factors and traffic week are those of the sightings
that were used.)",
         .options = {{"--out", "DIR", "where the files go"},
                     {"--sightings", "FILE", "what was seen; may be given several times"},
                     {"--week", "N", "week of the traffic, for sightings without that column"},
                     {"--database", "FILE", "dbase.xml: spans, types and registrations"},
                     {"--only", "CODES", "these airports alone, a comma list"},
                     {"--publisher", "NAME", "'stock' by default"},
                     {"--radii", "LIST",
                      "such as A=8,C=19: metres by size letter; 7.5, 12, 18, 26, 32.5, 40"},
                     {"--hangars", "", "takes stands inside of hangars too"}}},
        [](Job& job) { return StandsJob(job).run(); }};
}

}  // namespace skl::datakit
