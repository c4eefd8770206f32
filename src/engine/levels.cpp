// See the header.
#include "engine/levels.h"

#include <array>

#include "core/log.h"
#include "simlink/ai_commands.h"
#include "simlink/sim_ids.h"

namespace skl {

void gf_setFlaps(AcBase& record, uint32_t index) {
    static constexpr std::array<uint32_t, 4> values{0, 3072, 10240, 16383};
    if (record.flapsIdx == index || record.category == AcCategory::Rotorcraft) return;
    if (index >= values.size()) {
        gf_logError("gf_setFlaps: invalid flaps index");
        return;
    }
    record.flapsIdx = index;
    simEvent(record.objectId, ev::flapsSet, values[index]);
}

void gf_setThrottle(AcBase& record, uint32_t index) {
    static constexpr std::array<uint32_t, 5> values{0, 4914, 8191, 11468, 16383};
    if (record.throttleIdx == index) return;
    if (index >= values.size()) {
        gf_logError("gf_setThrottle: invalid throttle index");
        return;
    }
    record.throttleIdx = index;
    simEvent(record.objectId, ev::throttleSet, values[index]);
}

}  // namespace skl
