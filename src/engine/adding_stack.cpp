// The adding stack: the aircraft added last is the first to ask for an object, one a tick.
#include <fmt/format.h>

#include "core/log.h"
#include "engine/engine.h"
#include "engine/engine_state.h"
#include "engine/spawning.h"

namespace skl {

void lf_serveAddingStack() {
    if (addingStack.empty()) return;
    const uint32_t hexid = addingStack.back();
    addingStack.pop_back();
    LiveAc* record = lf_findLive(hexid);
    if (!record || record->simState != SimObjectState::adding2sim) return;
    if (record->callsign.empty()) {
        gf_log(fmt::format("{} {} objectid = 0?", "lf_handleAddingStack", gf_description(*record)));
        record->eraseNow = true;  // nothing will come of it
        return;
    }
    CreateRequest request;
    request.position = {record->simLat,          record->simLon,         record->simAlt,
                        toDeg(record->simPitch), toDeg(record->simBank), toDeg(record->simHeading)};
    request.callsign = record->callsign;
    request.title = record->title;
    request.hexid = hexid;
    creationQueueLive.push_back(std::move(request));
}

}  // namespace skl
