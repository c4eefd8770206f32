// The SimConnect session: one a run, on a thread of its own.
#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/task.h"
#include "simlink/simconnect.h"

namespace skl {

extern std::unique_ptr<SimConnect> simHandle;  ///< under g_simLock; null while closed
extern std::atomic<float> frameRate;           ///< frames a second, sampled every 30 frames; 0 at first

/// The body of the SimConnect thread; ends when `stop` is set or the run stops. It closes the session on
/// every way out.
std::shared_ptr<Task> gf_simTask(std::shared_ptr<std::atomic<bool>> stop);
/// What every failed request calls: no more requests in this run, which ends with simConnectError.
void gf_simFailed();

// Requests of the worker; each takes g_simLock and does nothing after g_simError or without a session.
void gf_requestUserOnGround();  ///< starts the heartbeat
/// All aircraft within a radius of the user, in metres.
void gf_requestAircraftInRange(double radiusMeters);
/// Static height and pitch of an object.
void gf_requestStaticData(uint32_t objectId);
/// Toggles all lights of an object at once, without the frame's queue.
void gf_allLightsToggle(uint32_t objectId);
/// Gives an object the flight plan of a file. False if the simulator could not be told; the session goes on.
bool gf_sendFlightPlan(uint32_t objectId, std::string_view path);

/// Empties queues, object lists and the user's records: between two runs, and in tests.
void gf_resetSimLink();

}  // namespace skl
