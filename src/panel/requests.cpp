#include "panel/requests.h"

namespace skl {

std::atomic<bool> g_parkingChanged{false};
std::atomic<bool> g_renewRequested{false};
std::atomic<bool> g_blockChanged{false};
std::atomic<bool> g_callsignQuery{false};
std::atomic<bool> g_flushStatic{false};
std::atomic<bool> g_rereadParkAirports{false};
std::atomic<bool> g_waitingForFeed{true};

void gf_resetRequests() {
    for (auto* flag : {&g_parkingChanged, &g_renewRequested, &g_blockChanged, &g_callsignQuery,
                       &g_flushStatic, &g_rereadParkAirports})
        *flag = false;
    g_waitingForFeed = true;
}

}  // namespace skl
