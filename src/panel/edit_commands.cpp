// The edit boxes: a text takes effect at Enter. One that is refused changes nothing, and the box shows the
// value in force again.
#include <fmt/format.h>

#include <algorithm>

#include "airports/airport_index.h"
#include "core/messages.h"
#include "core/parameter_store.h"
#include "core/parameters.h"
#include "panel/command_parts.h"
#include "panel/controls.h"
#include "panel/panel_state.h"
#include "panel/requests.h"
#include "parking/stands.h"
#include "platform/text_conversion.h"

namespace skl {

namespace {

constexpr size_t shortestCallsign = 4, longestCallsign = 8, codeLength = 4;

void refuse(ControlParameter& box, const std::string& message) {
    gf_showMessage(message, true);
    gf_refreshControl(box);
}

void enterCallsignQuery(std::string text) {
    if (text.empty()) {
        CALLSIGN_2_OBJECTID.set("");
    } else {
        CALLSIGN_2_OBJECTID.set(lf_upperCase(std::move(text)));
        g_callsignQuery = true;
    }
    gf_refreshControl(CALLSIGN_2_OBJECTID);
    gf_invalidate(Band::options);
}

void applyDestination(const std::string& code) {
    DESTINATION.set(code);
    gf_saveParameter(DESTINATION);
    gf_refreshControl(DESTINATION);
    gf_showMessage(fmt::format("New destination: {}", code), true);
    gf_enableControl(rereadButton, false);
    g_destinationChanged = true;
}

}  // namespace

std::string lf_upperCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
    return text;
}

bool lf_commandEdit(int id, std::string_view typed) {
    win32::utf8ToUtf16(typed);  // throws: a text that is none is not taken
    const std::string text(typed);
    gf_clearMessage();
    if (id == BLOCK_CALLSIGN.controlId)
        lf_enterBlockCallsign(text);
    else if (id == DESTINATION.controlId)
        lf_enterDestination(text);
    else if (id == CALLSIGN_2_OBJECTID.controlId)
        enterCallsignQuery(text);
    else if (id == ALL_INSTALL_PATH.controlId)
        lf_newSimPath(SIM_CHOICE == "MSFS 2020" ? MSFS_INSTALL_PATH : MSFS_2024_INSTALL_PATH, text);
    else if (id == parking_percentage.controlId)
        lf_processTbInt(parking_percentage, text);
    else if (id == MAX_FIT_FL.controlId) {
        if (g_apfLoaded && lf_processTbFloat(MAX_FIT_FL, text)) lf_askRenewal();
    } else
        return false;
    return true;
}

void lf_enterBlockCallsign(std::string text) {
    gf_clearMessage();
    if (text.empty()) {
        if (!BLOCK_CALLSIGN.empty()) lf_clearBlock();
        return;
    }
    if (text.size() < shortestCallsign || text.size() > longestCallsign) {
        refuse(BLOCK_CALLSIGN, fmt::format("callsign '{}' is not valid", text));
        return;
    }
    text = lf_upperCase(std::move(text));
    if (BLOCK_CALLSIGN == text) {
        refuse(BLOCK_CALLSIGN, fmt::format("callsign '{}' was already set ...", text));
        return;
    }
    BLOCK_CALLSIGN.set(text);
    gf_saveParameter(BLOCK_CALLSIGN);
    gf_refreshControl(BLOCK_CALLSIGN);
    gf_enableControl(unblockButton, true);
    gf_showMessage(fmt::format("live aircraft with callsign '{}' will be blocked", text), true);
    g_blockChanged = true;
}

void lf_clearBlock() {
    const std::string blocked = BLOCK_CALLSIGN.get();
    if (blocked.empty()) return;
    BLOCK_CALLSIGN.set("");
    gf_saveParameter(BLOCK_CALLSIGN);
    gf_refreshControl(BLOCK_CALLSIGN);
    gf_enableControl(unblockButton, false);
    gf_showMessage(fmt::format("no more blocking of live aircraft '{}'", blocked), true);
    g_blockChanged = true;
}

void lf_enterDestination(std::string text) {
    gf_clearMessage();
    if (text.empty()) {
        // Not saved now: the end of the run empties it in the file as well.
        DESTINATION.set("");
        gf_enableControl(rereadButton, true);
        gf_showMessage("destination set to empty", true);
        return;
    }
    if (text.size() != codeLength) {
        refuse(DESTINATION, fmt::format("destination '{}' is not valid", text));
        return;
    }
    text = lf_upperCase(std::move(text));
    if (DESTINATION == text)
        refuse(DESTINATION, fmt::format("destination '{}' was already set ...", text));
    else if (gf_findAirport(text))
        applyDestination(text);
    else
        refuse(DESTINATION, fmt::format("destination '{}' is unknown ...", text));
}

}  // namespace skl
