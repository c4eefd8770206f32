// What a terminal shows in place of the panel: the message line as it changes, and a line of figures.
#pragma once

#include <string>

namespace skl {

/// The error, else the message, else nothing.
std::string gf_messageLine();
/// Lamps and counts in one line: links, live aircraft by state and stage, created and removed, records by
/// fate.
std::string gf_statusLine();
/// The airport in sight, its stands and what is parked on them; empty if there is none.
std::string gf_airportLine();

}  // namespace skl
