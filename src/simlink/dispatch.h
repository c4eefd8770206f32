// The messages of the simulator, each to the one it concerns. SimConnect thread only.
#pragma once

#include <cstdint>

#include "simlink/simconnect.h"

namespace skl {

extern int32_t frameCount;  ///< frames since the frame rate was sampled last

/// Handles one message. A message that lacks fields or holds no numbers is a log line. Throws
/// UserErrorException 71, 77, 95 and 73, which end the session.
void lf_dispatch(const SimRecv& message);
/// Whether a flight runs, for everybody and for the panel.
void lf_setFlightRunning(bool running);

}  // namespace skl
