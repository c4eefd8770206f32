// The life of static aircraft: placed one by one out of the plan, renewed every 20 minutes, removed with the
// airport. Worker thread only, but for staticsLock.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

#include "airports/airport_file.h"
#include "core/run_state.h"
#include "parking/stand_fit.h"
#include "parking/static_ac.h"

namespace skl {

/// A static aircraft that may stay.
struct KeptStatic {
    std::string callsign, coupledIn, coupledOut, regcode, airline, model;
    WeekSlot parkedAt;
    uint32_t standId = 0;
    bool switchCallsign = false;  ///< it is to show its second callsign from now on
};
struct StaticToRemove {
    std::string callsign;
    uint32_t standId = 0;
};

extern std::vector<KeptStatic> keptStatics;
extern std::vector<StaticToRemove> removalList;  ///< those that go at the end of a renewal
extern std::atomic<bool> staticsLock;  ///< statics are being worked on: the parking controls are disabled
extern int32_t staticCounter;          ///< the number of the last one, 1 to 9999, then 0

// --- placing
/// On: disables the parking controls. Off: enables them (Re-read only without a destination).
void lf_lockStatics(bool on);
/// A fill or renewal is to come: callsigns are collected from now on.
void lf_announceStatics(bool showMessage);
/// One candidate becomes a creation request, or is dropped. Nothing while statics are leaving (30 s at most)
/// or a renewal is about to make a new plan.
void lf_addNextStatic();
/// The callsign that a planned static shows; empty, with a line, when there is none.
std::string lf_detcs(const Candidate& candidate);

// --- renewing
/// Every 15 s: the two passes of a requested renewal.
void lf_serveRenewal();
/// Between the two passes: the airport in sight is not to change.
bool lf_renewalUnderWay();
/// Neither asked for nor under way any more; nor are callsigns collected unless an airport is to be loaded.
void lf_dropRenewal();
/// The second pass of a renewal.
void lf_renewParking();
/// Keeps or lists for removal each static, against the plan.
void lf_sortStatics(WeekSlot now);
/// Plan, kept ones and parked live aircraft cut to the wanted number, in this order.
void lf_trimToWanted(int64_t wanted);
/// Once a second: the user's flush.
void lf_serveFlush();

// --- the rest
/// One made-up option a stand, for an airport without history.
void lf_addFakeOptions(const std::string& code, std::vector<Stand>& stands);
/// Whether an aircraft is neither too large nor far too small for a stand.
bool lf_standFits(const Stand& stand, double halfSpanNm);
void gf_resetStatics();

}  // namespace skl
