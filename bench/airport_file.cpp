// Reading the file of a big airport inside the cycle: 300 stands with 60 options each, and a learned file
// that brings as many again to each, half of which the archived one holds already.
#include <fmt/format.h>

#include "airports/airport_file.h"
#include "bench/bench.h"
#include "bench/big_airport.h"
#include "bench/world_data.h"
#include "core/folders.h"
#include "core/log.h"
#include "liveries/reference_db.h"
#include "parking/park_airport.h"
#include "parking/stands.h"

namespace skl::bench {

namespace {

constexpr double goalSeconds = 0.050;
constexpr const char* name = "airports/my_thirdparty/EHAM.xml";

/// The document is archived by its place, and is no handmade one.
void writeArchived(const AirportFile& file) {
    require(gf_writeApf(file, name, ApfMode::learned), "the archived file is not written");
}

void writeLearned(AirportFile file, Sightings& sightings) {
    file.handmade = false;
    for (Stand& stand : file.stands)
        for (int j = 0; j < optionsAStand; j += 2) stand.options[static_cast<size_t>(j)] = sightings.next();
    const fs::path path = gf_learnedPath(name, file.publisher);
    fs::create_directories(path.parent_path());
    require(gf_writeApf(file, path, ApfMode::learned), "the learned file is not written");
}

size_t countOptions() {
    size_t count = 0;
    for (const Stand& stand : stands) count += stand.options.size();
    return count;
}

double readOnce() {
    gf_resetStands();
    const double seconds = secondsOf([] {
        require(gf_readApf(name, airportFile, qualityFactors, stands).empty(), "the file is not read");
    });
    require(stands.size() == standCount && !stands[1].adjacent.empty(), "not all stands came in");
    const size_t archived = size_t{standCount} * optionsAStand;
    require(countOptions() > archived && countOptions() < 2 * archived, "the files are not merged");
    return seconds;
}

}  // namespace

Rows airportFileRows() {
    const WorkFolder folder;
    writeDbase("dbase-plain.xml", manyRegistrations);
    gf_readDbaseXml("dbase-plain.xml");
    fs::create_directories(paths::myThirdparty);
    gf_startLog();
    parkAirport = {.code = "EHAM", .lat = 52.3, .lon = 4.76};
    Sightings sightings(31);
    const AirportFile file = makeAirport(sightings);
    writeArchived(file);
    writeLearned(file, sightings);
    double best = 1e9;
    for (int run = 0; run < runs; ++run) best = std::min(best, readOnce());
    gf_closeLog();
    parkAirport = {};
    gf_resetStands();
    gf_clearDbase();
    return {{fmt::format("Airport file, {} stands, {} options each, merged", standCount, optionsAStand),
             fmt::format("below {:.0f} ms", goalSeconds * 1e3), fmt::format("{:.1f} ms", best * 1e3),
             best < goalSeconds}};
}

}  // namespace skl::bench
