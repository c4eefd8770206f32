// What waits between the engine and the simulator. Queues are under g_simLock; the lists of objects on their
// way belong to the SimConnect thread alone.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "simlink/ai_commands.h"

namespace skl {

extern std::vector<PosEntry> posReadSide;  ///< the poses handed over last, sent with the next frame
extern std::vector<SimEvent> eventQueue;
extern std::vector<CreateRequest> createQueue;
extern std::vector<uint32_t> removeQueue;  ///< object ids

/// A creation that the simulator was asked for and has not shown yet.
struct PendingCreate {
    uint32_t packetId = 0;
    uint32_t hexid = 0;
    std::string callsign;  ///< as far as it went out as tail number
    int32_t since = 0;     ///< engineTick of the request
    bool givenUp = false;  ///< the engine knows it as not created: should its object show up, it is removed
};
extern std::vector<PendingCreate> pendingCreates;
extern std::vector<uint32_t> newObjects;  ///< object ids reported as added and not yet identified

/// Empties what waits to be sent. Under g_simLock.
void lf_clearQueues();

}  // namespace skl
