// The stands of the airport in sight and what the run knows about them. Worker thread only, but for the
// atomics.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "airports/airport_file.h"

namespace skl {

extern std::vector<Stand> stands;
extern AirportFile airportFile;  ///< of the airport in sight; its own `stands` stay empty
extern QualityFactors qualityFactors;
extern std::atomic<bool> g_apfLoaded;  ///< an airport file is in use
extern std::string reservedStand;      ///< id of the stand held free for the user; may be empty
extern int32_t updatesCount;           ///< learned changes that are saved when the airport is left
extern int32_t maxParkCount;           ///< how many aircraft the airport may show in all; below 1: no limit

/// The stand with this ordinal or name; nullptr if there is none. Valid until the airport changes.
Stand* lf_findStand(uint32_t sid);
Stand* lf_findStand(std::string_view id);
/// The stand's name for log lines: "unknown" for none, "sid==0?" for 0.
std::string lf_standName(uint32_t sid);
/// The name of the stand nearest to a place within 55 m, or empty.
std::string lf_standAt(LaLo position);
/// The same for the user, empty in the air; remembered until the user has moved or the stands have changed.
std::string lf_standOfUser(LaLo position);
/// To be called whenever `stands` is filled or emptied.
void lf_standsChanged();
/// One more learned change, shown on the panel.
void lf_countUpdate();
/// Empties all of this: a new run, and tests.
void gf_resetStands();

}  // namespace skl
