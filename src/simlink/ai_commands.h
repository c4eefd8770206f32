// Commands to AI objects. The engine queues them on the worker; the SimConnect thread carries them out once a
// frame.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "liveries/livery_ref.h"
#include "simlink/sim_ids.h"
#include "simlink/simconnect.h"

namespace skl {

/// A pose as the simulator takes it: the eight values of AiPose in their order, then the object.
struct PosEntry {
    double lat, lon;              ///< degrees
    double pitch, bank, heading;  ///< radians
    double alt;                   ///< feet
    double vs;                    ///< feet per second
    double tas;                   ///< knots
    uint32_t objectId;
};

struct SimEvent {
    uint32_t objectId, event, data;
};

struct CreateRequest {
    SimInitPosition position;
    std::string callsign;  ///< the tail number that later identifies the object
    LiveryRef title;
    uint32_t hexid = 0;
};

void simEvent(uint32_t objectId, uint32_t event, uint32_t value);
void simLights(uint32_t objectId, bool nav, bool beacon, bool landing, bool taxi, bool strobe, bool logo,
               bool cabin);
void simCabinLight(uint32_t objectId, bool on);
void simReverse(uint32_t objectId, bool on, bool isFsltl);
void simCreate(CreateRequest request);
void simRemove(uint32_t objectId);
void gf_reserveSimQueues();

/// The engine's hand-over of a tick's poses. `poses` is the write side: swapped with the read side when the
/// lock is free; when it is busy, waited for above 50 frames a second and thrown away below.
void gf_handOverPoses(std::vector<PosEntry>& poses);
/// Poses handed over and not yet sent are dropped: the flight has paused.
void gf_dropPoses();

/// Once a simulator frame, on the SimConnect thread.
void lf_frameOutput();

}  // namespace skl
