// The process-wide locks and the order in which they may be taken together:
// g_trafficLock or g_eventLock, then g_simLock, then g_panelLock, then g_parameterLock, then g_logLock.
#pragma once

#include <mutex>

namespace skl {

extern std::recursive_mutex g_trafficLock;    ///< the traffic inbox, g_acceptTraffic and the callsign set
extern std::recursive_mutex g_eventLock;      ///< the sim inbox and the objects pending activation
extern std::recursive_mutex g_simLock;        ///< the SimConnect handle, the output queues, simUser
extern std::recursive_mutex g_panelLock;      ///< the texts of PanelState
extern std::recursive_mutex g_parameterLock;  ///< parameters.xml and the text values of parameters
extern std::recursive_mutex g_logLock;        ///< the log stream

using LockGuard = std::lock_guard<std::recursive_mutex>;

}  // namespace skl
