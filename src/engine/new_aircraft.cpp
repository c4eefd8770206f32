// A report of a transponder id that the table does not hold becomes a record in "buffer", or is refused by
// its type, its category or its height.
#include <fmt/format.h>

#include <cmath>
#include <exception>

#include "core/log.h"
#include "core/parameters.h"
#include "engine/category_constants.h"
#include "engine/live_table.h"
#include "engine/spawning.h"
#include "parking/park_airport.h"

namespace skl {

namespace {

/// The type of the report, or the one that the database knows for the registration; empty if the type is
/// unknown.
std::string knownType(const TrafficUpdate& update) {
    std::string model = update.model;
    if (model.empty() && !update.regcode.empty())
        if (const auto known = gf_dbaseLookup(update.regcode)) model = known->type;
    if (gf_isAircraftType(model)) return model;
    if (update.regcode.empty()) return {};
    const auto known = gf_dbaseLookup(update.regcode);
    return known ? known->type : std::string();
}

void addRecord(const TrafficUpdate& update) {
    const std::string model = knownType(update);
    if (model.empty() || !lf_categoryWanted(gf_category(model)) || lf_atFieldHeight(update.pos.alt)) return;
    LiveAc record;
    record.airline = update.airline;
    record.model = model;
    record.origin = update.origin;
    record.destination = update.destination;
    record.callsign = record.coupledIn = update.callsign;
    record.regcode = update.regcode;
    record.hexid = update.hexid;
    record.lastFeedTime = update.feedTime;
    gf_fillTypeValues(record);
    record.stream().push_back(update.pos);
    lf_addLive(std::move(record));
}

}  // namespace

bool lf_categoryWanted(AcCategory category) {
    switch (category) {
        case AcCategory::Light:
            return LIGHT_AIRCRAFT.value;
        case AcCategory::HighPerf:
            return HIGH_PERF_AIRCRAFT.value;
        case AcCategory::Rotorcraft:
            return HELICOPTERS.value;
        case AcCategory::Buzjets:
        case AcCategory::Large:
        case AcCategory::Heavy:
            return true;
    }
    return false;
}

bool lf_atFieldHeight(double alt) {
    return gf_airportInSight() && alt > 0 && alt < 10000 && std::abs(alt - parkAirport.alt) <= 120;
}

void lf_newAircraft(const TrafficUpdate& update) {
    try {
        addRecord(update);
    } catch (const std::exception& error) {
        gf_log(fmt::format("{} exception {}", "lf_newAircraft", error.what()));
        throw;
    }
}

}  // namespace skl
