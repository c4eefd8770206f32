// Which object is which aircraft: the file for other programs, and the panel's question about one callsign.
#include <fmt/format.h>

#include <algorithm>
#include <system_error>
#include <vector>

#include "core/folders.h"
#include "core/log.h"
#include "core/messages.h"
#include "core/parameters.h"
#include "core/text.h"
#include "engine/engine.h"
#include "engine/engine_state.h"
#include "panel/panel_state.h"
#include "panel/requests.h"
#include "parking/stands.h"

namespace skl {

namespace {

bool hasObject(const LiveAc& record) {
    return record.simState == SimObjectState::active;
}

/// Its object has gone for a new one, which is not there yet.
bool beingReplaced(const LiveAc& record) {
    const bool onTheWay = record.simState == SimObjectState::liveryrespawn ||
                          record.simState == SimObjectState::buffer ||
                          record.simState == SimObjectState::adding2sim;
    return onTheWay && record.respawnHeading;
}

template <class Test>
const LiveAc* findFlight(const std::string& callsign, const Test& test) {
    const auto found = std::find_if(liveAcs.begin(), liveAcs.end(), [&](const LiveAc& record) {
        return record.callsign == callsign && test(record);
    });
    return found == liveAcs.end() ? nullptr : &*found;
}

std::string parkedAt(const LiveAc& record) {
    if (record.stage != FlightStage::parked) return {};
    return fmt::format("Parked at {}", lf_standName(record.standId));
}

void showAnswer(uint32_t objectId) {
    watchedObjectId = objectId;
    gf_setPanelText(&PanelState::objectIdText, objectId == 0 ? std::string() : fmt::format("= {}", objectId),
                    Band::options);
}

}  // namespace

void gf_answerCallsignQuery() {
    if (!g_callsignQuery.exchange(false)) return;
    const std::string callsign = CALLSIGN_2_OBJECTID.get();
    const LiveAc* record = findFlight(callsign, hasObject);
    showAnswer(record ? record->objectId : 0);
    if (record || callsign.empty()) return;
    if (findFlight(callsign, beingReplaced))
        g_callsignQuery = true;  // asked again at the next second
    else
        gf_showMessage(fmt::format("callsign '{}' is unknown", callsign), false);
}

void lf_writeObjectList() {
    std::vector<std::string> lines;
    for (const LiveAc& record : liveAcs)
        if (hasObject(record))
            lines.push_back(fmt::format("{} {:9} {} {}: {} {}", record.onGround ? "Gnd" : "Air",
                                        record.callsign, record.airline, record.model, record.objectId,
                                        parkedAt(record)));
    std::sort(lines.begin(), lines.end());
    std::string text;
    for (const std::string& line : lines) text += line + '\n';
    if (!gf_writeText(text, paths::objectList, false))
        gf_logError(fmt::format("{} could not be written", gf_pathText(paths::objectList)));
}

void gf_deleteObjectList() {
    std::error_code ignored;  // there may be none
    fs::remove(paths::objectList, ignored);
}

}  // namespace skl
