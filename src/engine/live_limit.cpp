// The user's limit on live aircraft: the farthest one makes room.
#include <algorithm>

#include "core/parameters.h"
#include "engine/engine.h"
#include "engine/engine_state.h"
#include "engine/spawning.h"
#include "simlink/user_aircraft.h"

namespace skl {

size_t lf_countActive() {
    return static_cast<size_t>(std::count_if(liveAcs.begin(), liveAcs.end(), [](const LiveAc& record) {
        return record.simState == SimObjectState::active;
    }));
}

bool lf_removeFarthest(double nm) {
    // So little difference is not worth a removal and a creation.
    constexpr double clearlyFarther = 0.1;
    double best = nm;
    LiveAc* farthest = nullptr;
    for (LiveAc& record : liveAcs) {
        if (record.simState != SimObjectState::active) continue;
        const double distance = gf_distanceNm(engineUser.pos(), record.simPos());
        if (!(distance > best + clearlyFarther)) continue;
        best = distance;
        farthest = &record;
    }
    if (!farthest) return true;
    removeAircraftFromSim(*farthest);
    return false;
}

void lf_enforceMaxLive() {
    const int64_t surplus = static_cast<int64_t>(lf_countActive()) - MAX_LIVE_SEL.value;
    for (int64_t i = 0; i < surplus; ++i) lf_removeFarthest(-1.0);
}

}  // namespace skl
