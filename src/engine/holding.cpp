// See the header.
#include "engine/holding.h"

#include <algorithm>

#include "core/parameters.h"
#include "engine/engine_state.h"

namespace skl {

namespace {

constexpr double reachFactor = 1.2;  // of the two half spans
constexpr int32_t holdTicks = 3 * ticksPerSecond;
constexpr int32_t ticksPerMinute = 60 * ticksPerSecond;

/// Two aircraft that wait on one place, or one that another is to taxi through.
bool standsInTheWay(const LiveAc& record) {
    return std::any_of(liveAcs.begin(), liveAcs.end(), [&record](const LiveAc& other) {
        return &other != &record && other.simState == SimObjectState::active && other.onGround &&
               other.stage == FlightStage::taxi &&
               gf_distanceNm(record.simPos(), other.simPos()) <=
                   (record.halfSpanNm + other.halfSpanNm) * reachFactor;
    });
}

}  // namespace

bool lf_holdingStep(LiveAc& record) {
    if (standsInTheWay(record)) {
        record.holding = false;
        record.holdStart = 0;
        return false;
    }
    if (record.holding && (engineTick - record.holdStart) / ticksPerMinute > MAX_HOLDING_MINUTES.value)
        return false;
    if (!record.holding) record.holdStart = engineTick;
    record.holding = true;
    LivePos point = record.stream().front();
    point.time += holdTicks;
    point.speed = 0;
    point.stopped = true;
    record.stream().push_back(point);
    record.predictLeft = 1;
    return true;
}

}  // namespace skl
