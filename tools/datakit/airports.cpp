// airports: the index of airports and their names, merged out of tables and apt.dat files.
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "core/fnv.h"
#include "core/text.h"
#include "tools/datakit/apt_dat.h"
#include "tools/datakit/codes.h"
#include "tools/datakit/commands.h"
#include "tools/datakit/csv.h"
#include "tools/datakit/output_file.h"

namespace skl::datakit {

namespace {

namespace fs = std::filesystem;

struct Entry {
    std::string code, iata, name;
    LaLo place;
    std::optional<double> elevation;
    size_t source = 0;  ///< its number
    uint64_t line = 0;
};

/// All airports, the first source that has one decides where it lies.
class Index {
  public:
    Index(Findings& findings, Progress progress) : findings_(findings), progress_(std::move(progress)) {}

    void beginSource(const std::string& name) { sources_.push_back(name); }

    void add(Entry entry) {
        progress_.step();
        entry.source = sources_.size();
        const auto [found, added] = places_.try_emplace(entry.code, entries_.size());
        if (added) {
            entries_.push_back(std::move(entry));
            return;
        }
        Entry& there = entries_[found->second];
        if (there.source == entry.source) {
            findings_.tell(
                "doubled idents", {sources_.back(), entry.line},
                fmt::format("airport {} stands in line {} already: left out", entry.code, there.line));
            return;
        }
        // What the earlier source leaves open.
        if (there.iata.empty()) there.iata = std::move(entry.iata);
        if (there.name.empty()) there.name = std::move(entry.name);
        if (!there.elevation) there.elevation = entry.elevation;
    }

    /// Ascending by code.
    std::vector<Entry> take() {
        std::sort(entries_.begin(), entries_.end(),
                  [](const Entry& a, const Entry& b) { return a.code < b.code; });
        return std::move(entries_);
    }

  private:
    Findings& findings_;
    Progress progress_;
    std::vector<std::string> sources_;
    std::vector<Entry> entries_;
    StringMap<size_t> places_;
};

void readTable(SourceFile& file, bool keepClosed, Index& index) {
    enum { ident, lat, lon, elevation, name, iata, type };
    CsvTable table(file, {{"ident", true, {"icao", "code"}},
                          {"latitude_deg", true, {"lat_deg", "lat", "latitude"}},
                          {"longitude_deg", true, {"lon_deg", "lon", "longitude"}},
                          {"elevation_ft", false, {"alt", "elevation"}},
                          {"name"},
                          {"iata_code", false, {"iata"}},
                          {"type"}});
    while (table.next()) {
        if (!keepClosed && table[type] == "closed") continue;
        const auto code = airportCode(table[ident]);
        if (!code) {
            file.findings().tell("codes", table.at(),
                                 fmt::format("'{}' is no code of an airport: left out", table[ident]));
            continue;
        }
        const auto place = position(table[lat], table[lon]);
        if (!place) {
            file.findings().tell("positions", table.at(),
                                 fmt::format("airport {}: '{}, {}' is no place on the globe: left out", *code,
                                             table[lat], table[lon]));
            continue;
        }
        Entry entry{
            .code = *code, .name = std::string(table[name]), .place = *place, .line = table.at().line};
        entry.iata = airlineCode(table[iata]).value_or("");
        if (!table[elevation].empty()) {
            const auto feet = wholeNumber(table[elevation]);
            if (feet && isElevation(*feet))
                entry.elevation = feet;
            else
                file.findings().tell("elevations", table.at(),
                                     fmt::format("airport {}: '{}' ft can be no elevation: left open", *code,
                                                 table[elevation]));
        }
        index.add(std::move(entry));
    }
}

void readApt(SourceFile& file, bool keepClosed, Index& index) {
    readAptDat(file, [&](AptAirport&& airport) {
        if (airport.closed && !keepClosed) return;
        if (!airport.place) {
            file.findings().tell(
                "positions", file.at(airport.line),
                fmt::format("airport {} has no position, and nothing to take one from: left out",
                            airport.code));
            return;
        }
        index.add({.code = std::move(airport.code),
                   .iata = std::move(airport.iata),
                   .name = std::move(airport.name),
                   .place = *airport.place,
                   .elevation = airport.elevation,
                   .line = airport.line});
    });
}

std::string indexText(const std::vector<Entry>& entries) {
    std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<airports>\n";
    for (const Entry& entry : entries) {
        xml += "  <airport";
        appendAttribute(xml, "code", entry.code);
        appendAttribute(xml, "lat", fmt::format("{:.6f}", entry.place.lat));
        appendAttribute(xml, "lon", fmt::format("{:.6f}", entry.place.lon));
        appendAttribute(xml, "alt", fmt::format("{:.0f}", entry.elevation.value_or(0)));
        if (!entry.iata.empty()) appendAttribute(xml, "iata", entry.iata);
        xml += "/>\n";
    }
    return xml + "</airports>\n";
}

std::string namesText(const std::vector<Entry>& entries) {
    std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<AirportNames>\n";
    for (const Entry& entry : entries) {
        if (entry.name.empty()) continue;
        xml += "  <airport";
        appendAttribute(xml, "ICAO", entry.code);
        appendAttribute(xml, "name", entry.name);
        xml += "/>\n";
    }
    return xml + "</AirportNames>\n";
}

int makeAirports(Job& job) {
    const fs::path out = job.arguments.needed("--out");
    if (job.arguments.rest().empty()) throw Misuse("datakit airports needs a source");
    Index index(job.findings, Progress(job.notes, "airports: rows"));
    for (const std::string& path : job.arguments.rest()) {
        SourceFile file(path, job.findings);
        index.beginSource(path);
        (isAptDat(path) ? readApt : readTable)(file, job.arguments.has("--keep-closed"), index);
    }
    const auto entries = index.take();
    if (entries.empty()) throw Failure("no airport in any source, nothing is written");
    const auto flat =
        std::count_if(entries.begin(), entries.end(), [](const Entry& entry) { return !entry.elevation; });
    if (flat > 0) job.notes << fmt::format("{} airports without an elevation in any source get 0 ft\n", flat);
    replaceIfChanged(out / "airports_msfs.xml", indexText(entries));
    replaceIfChanged(out / "airports_msfs_names.xml", namesText(entries));
    job.out << fmt::format("{} airports to {}\n", entries.size(), gf_pathText(out));
    return 0;
}

}  // namespace

Command airportsCommand() {
    return {
        {.name = "airports",
         .arguments = "SOURCE ...",
         .summary = "the index of airports and their names, out of CSV and apt.dat",
         .text =
             R"(Merges the sources to DIR/airports_msfs.xml and DIR/airports_msfs_names.xml. A source is a table
with the columns ident, latitude_deg, longitude_deg and, if it has them, elevation_ft, name,
iata_code and type, or an apt.dat of format 1000 to 1200. The order decides: where an airport lies
is told by the first source that has it; later ones add a name, an IATA code or an elevation that it
leaves open.)",
         .options = {{"--out", "DIR", "where the two files go"},
                     {"--keep-closed", "",
                      "takes rows of the type 'closed', and names of apt.dat with [X], too"}}},
        makeAirports};
}

}  // namespace skl::datakit
