// Changes of who an aircraft is: route, registration, callsign. A change that shows replaces the object while
// the stream goes on.
#include <fmt/format.h>

#include <exception>

#include "core/log.h"
#include "core/parameters.h"
#include "engine/category_constants.h"
#include "engine/conflicts.h"
#include "engine/engine.h"
#include "engine/engine_state.h"
#include "engine/live_table.h"
#include "engine/spawning.h"
#include "engine/update_cycle.h"
#include "liveries/catalogue.h"
#include "panel/requests.h"
#include "parking/park_airport.h"

namespace skl {

namespace {

void takeOver(std::string& mine, const std::string& theirs) {
    if (!theirs.empty()) mine = theirs;
}

void refreshInBuffer(LiveAc& record, const TrafficUpdate& update) {
    takeOver(record.destination, update.destination);
    takeOver(record.origin, update.origin);
    takeOver(record.regcode, update.regcode);
    if (!update.callsign.empty()) lf_setCallsign(record, update.callsign);
}

/// Fills an empty end of the route; true if it did.
bool fill(std::string& mine, const std::string& theirs) {
    if (!mine.empty() || theirs.empty()) return false;
    mine = theirs;
    return true;
}

/// True if the route has changed. A report without a route takes none away.
bool refreshRoute(LiveAc& record, const TrafficUpdate& update) {
    const bool originFilled = fill(record.origin, update.origin);
    const bool destinationFilled = fill(record.destination, update.destination);
    const bool otherFlight = !update.origin.empty() && !update.destination.empty() &&
                             record.origin != update.origin && record.destination != update.destination;
    // The next flight, told while this one is still coming in.
    const bool stillHere =
        gf_airportInSight() && record.origin == parkAirport.iata && update.destination == record.origin;
    if (!otherFlight || stillHere) return originFilled || destinationFilled;
    record.origin = update.origin;
    record.destination = update.destination;
    if (record.onGround && record.stage != FlightStage::parked && record.stage != FlightStage::parking) {
        gf_setStage(record, FlightStage::taxi);
        record.targetHeading = record.simHeading;
    }
    return true;
}

void becomes(LiveAc& record, const std::string& airline, const std::string& type) {
    record.airline = airline;
    if (record.model == type) return;
    record.model = type;
    gf_fillTypeValues(record);
}

/// The first registration of an aircraft that was known by its callsign alone.
bool takeFirstRegistration(LiveAc& record, const TrafficUpdate& update,
                           const std::optional<DbaseRecord>& known) {
    const auto own = regcodeToTitle.find(update.regcode);
    const bool ownTitle = own != regcodeToTitle.end() && own->second != record.title;
    if (!known) return ownTitle;
    const std::string& airline = known->opr.empty() ? known->airl : known->opr;
    if (!ownTitle && airline == record.airline && known->type == record.model) return false;
    becomes(record, airline, known->type);
    return true;
}

bool takeOtherRegistration(LiveAc& record, const TrafficUpdate& update,
                           const std::optional<DbaseRecord>& known) {
    if (record.regcode == update.regcode || !known) return false;
    if (known->airl == record.airline && known->type == record.model) return false;
    if (!known->opr.empty() && known->opr == record.airline) return false;
    // A registration of another airline than the one that flies is a fault of the feed.
    const auto flies = lf_airlineOfCallsign(update.callsign);
    if (!flies || (*flies != known->airl && *flies != known->opr)) return false;
    becomes(record, known->opr.empty() ? known->airl : known->opr, known->type);
    return true;
}

/// True if airline or type, and so the livery, have changed.
bool refreshRegistration(LiveAc& record, const TrafficUpdate& update) {
    if (update.regcode.empty()) return false;
    bool changed = false;
    // Without respawns the object keeps its livery, and the record what that livery shows.
    if (GUID_CHANGES.value && record.regcode != update.regcode) {
        const auto known = gf_dbaseLookup(update.regcode);
        const bool first = record.regcode.empty() || record.regcode == record.callsign;
        changed = first ? takeFirstRegistration(record, update, known)
                        : takeOtherRegistration(record, update, known);
        if (changed) lf_forgetLivery(record);
    }
    record.regcode = update.regcode;
    return changed;
}

bool otherCallsign(const LiveAc& record, const TrafficUpdate& update) {
    return !update.callsign.empty() && update.callsign != record.callsign &&
           update.callsign != record.regcode;
}

bool refreshActive(LiveAc& record, const TrafficUpdate& update) {
    // Tested first, so that a report which is refused leaves the record as it was.
    if (otherCallsign(record, update) && lf_ghostOfKnown(update.callsign)) return false;
    bool differs = refreshRoute(record, update);
    if (!differs) differs = refreshRegistration(record, update);
    if (otherCallsign(record, update)) {
        lf_setCallsign(record, update.callsign);
        record.coupledIn = update.callsign;
        record.coupledOut.clear();
        // Behind the change: an aircraft that was a ghost itself has just become real and is not to go.
        if (!update.callsign.ends_with('_')) lf_ghostTest(update.callsign);
        differs = true;
    }
    if (!differs || !GUID_CHANGES.value) return true;
    if (LOG.value) gf_logIndented(fmt::format("{} respawns", gf_longForm(record)));
    liveryRespawn(record);
    return false;
}

/// The point from which the new object goes on.
LivePos respawnPoint(LiveAc& record) {
    LivePos& front = record.stream().at(0);
    if (record.stage == FlightStage::parked) {
        record.stream().resize(1);
        front.stopped = true;
        front.track = toDeg(record.simHeading);
        return front;
    }
    LivePos point = front;
    point.lat = record.simLat;
    point.lon = record.simLon;
    point.alt = record.simAlt;
    point.roll = record.simBank;
    front.stopped = lf_samePlace(front.pos(), point.pos());
    return point;
}

}  // namespace

void liveryRespawn(LiveAc& record) {
    try {
        LivePos point = respawnPoint(record);
        point.time = engineTick + 1;
        record.stream().push_front(point);
        record.simState = SimObjectState::liveryrespawn;
        record.respawnHeading = record.simHeading;
        if (lf_forgetWatched(record.objectId)) g_callsignQuery = true;
        if (record.objectId != 0) {
            lf_queueRemoval(record.objectId);
            return;
        }
        gf_log(fmt::format("{} removing act {} with objectid=0 ?", "liveryRespawn", gf_description(record)));
        record.eraseNow = true;  // no object, so no message that it has gone
    } catch (const std::exception& error) {
        gf_log(fmt::format("{}: {}", "liveryRespawn", error.what()));
    }
}

bool lf_refreshIdentity(LiveAc& record, const TrafficUpdate& update) {
    if (record.departing || record.landing) return true;
    if (record.simState == SimObjectState::buffer) {
        refreshInBuffer(record, update);
        return true;
    }
    const bool open = record.simState == SimObjectState::active &&
                      record.stage != FlightStage::pushing_back && record.predictLeft < 1;
    if (!open) return true;
    try {
        return refreshActive(record, update);
    } catch (const std::exception& error) {
        gf_log(fmt::format("{} exception {}", "lf_refreshIdentity", error.what()));
        throw;
    }
}

void lf_forgetLivery(LiveAc& record) {
    liveryMemory.erase(record.hexid);
    record.title = {};
    gf_setStage(record, FlightStage::birth);
}

}  // namespace skl
