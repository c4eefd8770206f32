// The two plans of a big airport that are made at one go inside the cycle: the first one, and a renewal with
// the statics of the first one on their stands. More is wanted than can be found, so that both classes are
// searched to the last half hour.
#include <fmt/format.h>

#include <utility>

#include "airports/stand_neighbours.h"
#include "bench/bench.h"
#include "bench/big_airport.h"
#include "core/log.h"
#include "core/parameters.h"
#include "core/random.h"
#include "engine/engine_state.h"
#include "liveries/reference_db.h"
#include "parking/park_airport.h"
#include "parking/stand_fit.h"
#include "parking/stands.h"
#include "parking/static_ac.h"
#include "parking/statics.h"

namespace skl::bench {

namespace {

constexpr double goalSeconds = 0.005;
constexpr WeekSlot morning{3, 20}, later{3, 21};
constexpr int32_t searchedToTheEnd = 48;

void setTheScene() {
    writeDbase("dbase-plain.xml", 50000);
    gf_readDbaseXml("dbase-plain.xml");
    gf_startLog();
    parkAirport = {.code = "EHAM", .lat = 52.3, .lon = 4.76};
    MAX_PARK_SEL.value = 500;
    CUSTOM_PARKING_PERCENTAGE.value = 100;
    MAX_FIT.value = 47;
    RANDOM.value = PARK_SOFT.value = true;
    LOG.value = false;
}

void clearTheScene() {
    gf_resetStatics();
    gf_resetStandFit();
    gf_resetStands();
    gf_resetEngine();
    parkAirport = {};
    gf_resetParameters();
    gf_closeLog();
    gf_clearDbase();
}

std::vector<Stand> makeStands() {
    Sightings sightings(31);
    std::vector<Stand> made = makeAirport(sightings).stands;
    lf_numberStands(made);
    for (Stand& stand : made) {
        int32_t number = 0;
        for (StandOption& option : stand.options) option.optionId = ++number;
    }
    return made;
}

/// The plan has been carried out.
void placeAll() {
    for (const Candidate& candidate : std::exchange(candidates, {})) {
        StaticAc& parked = staticAcs.emplace_back();
        const Stand& stand = *lf_findStand(candidate.sid);
        parked.hexid = parked.objectId = static_cast<uint32_t>(staticAcs.size());
        parked.airline = candidate.airl;
        parked.model = candidate.type;
        parked.callsign = lf_detcs(candidate);
        parked.coupledIn = candidate.cs;
        parked.coupledOut = candidate.cs2;
        parked.regcode = candidate.reg;
        parked.standId = candidate.sid;
        parked.standPos = stand.pos();
        parked.parkedAt = lf_slotBack(morning, candidate.offset);
        parked.simState = SimObjectState::active;
    }
}

double firstFillOnce(const std::vector<Stand>& made) {
    gf_resetEngine();
    gf_resetStatics();
    staticAcs.clear();
    stands = made;
    lf_standsChanged();
    gf_storeNow(morning);
    const double seconds = secondsOf(lf_firstFill);
    require(lastFitReal == searchedToTheEnd && lastFitSoft == searchedToTheEnd, "the search ended early");
    require(candidates.size() > standCount / 4, "few stands are filled");
    return seconds;
}

double renewOnce() {
    const size_t before = candidates.size();
    placeAll();
    gf_storeNow(later);
    const double seconds = secondsOf(lf_renewParking);
    require(lastFitReal == searchedToTheEnd && lastFitSoft == searchedToTheEnd, "the renewal ended early");
    const auto leaving =
        static_cast<size_t>(std::count_if(staticAcs.begin(), staticAcs.end(), [](const StaticAc& parked) {
            return parked.simState == SimObjectState::removingfromsim;
        }));
    require(leaving > 0 && leaving < before && !candidates.empty(), "no usual renewal");
    return seconds;
}

Row planRow(const char* work, double seconds) {
    return {fmt::format("{}, {} stands, {} options each, both classes", work, standCount, optionsAStand),
            fmt::format("no tick more than {:.0f} ms late", goalSeconds * 1e3),
            fmt::format("{:.1f} ms", seconds * 1e3), seconds < goalSeconds};
}

}  // namespace

Rows parkingRows() {
    const WorkFolder folder;
    setTheScene();
    gf_seedRandom(7);
    const std::vector<Stand> made = makeStands();
    double fill = 1e9, renewal = 1e9;
    for (int run = 0; run < runs; ++run) {
        fill = std::min(fill, firstFillOnce(made));
        renewal = std::min(renewal, renewOnce());
    }
    clearTheScene();
    return {planRow("First fill", fill), planRow("Renewal", renewal)};
}

}  // namespace skl::bench
