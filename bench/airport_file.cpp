// Reading the file of a big airport inside the cycle: 300 stands with 60 options each, and a learned file
// that brings as many again to each, half of which the archived one holds already.
#include <fmt/format.h>

#include "airports/airport_file.h"
#include "bench/bench.h"
#include "bench/world_data.h"
#include "core/folders.h"
#include "core/log.h"
#include "liveries/reference_db.h"
#include "parking/park_airport.h"
#include "parking/stands.h"

namespace skl::bench {

namespace {

constexpr int standCount = 300, optionsAStand = 60;
constexpr int fleet = 3000;  // the aircraft that visit the airport within a week
constexpr int standsARow = 20;
constexpr double rowDegrees = 0.002, columnDegrees = 0.0006;  // some of the stands overlap
constexpr double goalSeconds = 0.050;
constexpr const char* name = "airports/my_thirdparty/EHAM.xml";

/// An aircraft of those that visit; some are not in the database.
struct Visitor {
    std::string airl, type, reg;
};

std::vector<Visitor> makeFleet(Choice& choice) {
    std::vector<Visitor> visitors;
    for (int i = 0; i < fleet; ++i)
        visitors.push_back({choice.airline(), choice.type(),
                            choice.chance(0.8) ? choice.registration() : fmt::format("REG{}", i)});
    return visitors;
}

/// What was seen on the stands, one after the other.
class Sightings {
  public:
    explicit Sightings(uint32_t seed) : choice_(seed), visitors_(makeFleet(choice_)) {}
    StandOption next() {
        ++number_;
        const Visitor& visitor = visitors_[number_ * 7919 % visitors_.size()];
        StandOption option{.airl = visitor.airl, .type = visitor.type, .reg = visitor.reg};
        option.cs = fmt::format("{}{}", visitor.airl, number_ % 9000);
        if (choice_.chance(0.5)) option.cs2 = option.cs + "B";
        option.hours = uint64_t{0x3f} << number_ % 40;
        option.optionId = 1;
        option.day = static_cast<int32_t>(number_ % 7) + 1;
        option.real = choice_.chance(0.5);
        return option;
    }

  private:
    Choice choice_;
    std::vector<Visitor> visitors_;
    size_t number_ = 0;
};

AirportFile makeAirport(Sightings& sightings) {
    AirportFile file{.code = "EHAM", .airportName = "Schiphol", .publisher = "Zeta"};
    file.handmade = true;  // so that stands and options are written in full
    for (int i = 0; i < standCount; ++i) {
        Stand& stand = file.stands.emplace_back();
        stand.id = fmt::format("GATE A {}", i);
        stand.lat = 52.3 + i / standsARow * rowDegrees;
        stand.lon = 4.76 + i % standsARow * columnDegrees;
        stand.radius = 25 / metersPerNm;
        for (int j = 0; j < optionsAStand; ++j) stand.options.push_back(sightings.next());
    }
    return file;
}

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
