#include "core/locks.h"

namespace skl {

std::recursive_mutex g_trafficLock;
std::recursive_mutex g_eventLock;
std::recursive_mutex g_simLock;
std::recursive_mutex g_panelLock;
std::recursive_mutex g_parameterLock;
std::recursive_mutex g_logLock;

}  // namespace skl
