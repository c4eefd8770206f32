// A flight plan file for each object whose origin and destination are known: no route, only the two airports.
// The file lives as long as its object, the folder as long as the run.
#pragma once

#include <filesystem>

#include "engine/live_ac.h"

namespace skl {

/// Throws std::filesystem::filesystem_error.
void gf_createFlightPlanFolder();
/// Throws std::filesystem::filesystem_error when it cannot be told whether the folder is there; a folder that
/// cannot be removed is logged and stays.
void gf_removeFlightPlanFolder();
/// Writes the plan of one aircraft; false if the file cannot be written.
bool lf_writeFlightPlan(const std::filesystem::path& path, const LiveAc& record);
/// The object has just been identified: it gets its plan, or a log line says why not. Sets hasFlightPlan.
void lf_attachFlightPlan(LiveAc& record);
/// The object has gone.
void lf_deleteFlightPlan(uint32_t objectId);

}  // namespace skl
