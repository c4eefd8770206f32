// Ghosts: an aircraft whose callsign is another one's with a "_" behind it.
#include <fmt/format.h>

#include <algorithm>

#include "core/log.h"
#include "core/parameters.h"
#include "engine/conflicts.h"
#include "engine/engine.h"
#include "engine/engine_state.h"
#include "parking/stands.h"

namespace skl {

namespace {

/// The first in table order that is not on its way out.
LiveAc* staying(std::string_view callsign) {
    if (!lf_findLiveByCallsign(callsign)) return nullptr;  // nearly always, and by index
    const auto found = std::find_if(liveAcs.begin(), liveAcs.end(), [callsign](const LiveAc& record) {
        return record.callsign == callsign && record.simState != SimObjectState::removingfromsim;
    });
    return found == liveAcs.end() ? nullptr : &*found;
}

}  // namespace

void lf_ghostTest(const std::string& callsign) {
    LiveAc* ghost = staying(callsign + '_');
    if (!ghost) return;
    if (LOG.value) {
        const std::string text =
            fmt::format("{:8} is a ghost and will be removed, continue with {}", ghost->callsign, callsign);
        if (ghost->stage == FlightStage::parked)
            gf_log(fmt::format("{:8}: {}", lf_standName(ghost->standId), text));
        else
            gf_logIndented(text);
    }
    if (std::find(ghostList.begin(), ghostList.end(), ghost->callsign) == ghostList.end())
        ghostList.push_back(ghost->callsign);
    removeAircraftFromSim(*ghost);
}

bool lf_liveCallsignExists(std::string_view callsign) {
    return !callsign.empty() && staying(callsign.substr(0, callsign.size() - 1)) != nullptr;
}

}  // namespace skl
