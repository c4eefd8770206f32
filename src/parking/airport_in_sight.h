// Which airport is populated: the one that the user stands at, or the nearest of the user's list within range
// and below a height. Worker thread only.
#pragma once

#include <string>

namespace skl {

extern bool loadPending;  ///< the airport was just set; the next pass loads its stands

/// One pass, every 16 s; `forced` at the start of the cycle.
void lf_airportInSight(bool forced);
/// False when the index does not know the code.
bool lf_setParkAirport(const std::string& code);
/// The stands of the airport in sight; empty on success, else the reason.
std::string lf_readParkedFile();
/// The user's list read again and the reserved stand with it. False: a code is unknown. A text that is not
/// empty is for the user.
bool lf_rereadParkAirports(std::string& message);
/// The airport is given up: its statics and what stands or taxies there are removed.
void lf_leaveParkAirport();
/// Forgets the airport and its stands.
void lf_closeParkAirport();
/// Removes what stands on the stand held free for the user.
void lf_clearReservedStand();
/// Once a second: the text of the stand under the user, for the panel.
void lf_updateUserStand();
/// The end of a run: the stand under the user joins the list and its file.
void lf_rememberUserStand();
void gf_resetAirportInSight();

}  // namespace skl
