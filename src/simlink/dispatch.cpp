// One handler a kind of message. A handler gets a reader that stands behind the header; one that runs short
// drops its message.
#include "simlink/dispatch.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>

#include "core/byte_reader.h"
#include "core/errors.h"
#include "core/folders.h"
#include "core/log.h"
#include "core/messages.h"
#include "core/run_state.h"
#include "panel/panel_state.h"
#include "simlink/ai_commands.h"
#include "simlink/identification.h"
#include "simlink/session.h"
#include "simlink/user_aircraft.h"

namespace skl {

int32_t frameCount = 0;

namespace {

constexpr int32_t framesASample = 30;

/// The user has loaded another flight: this run belongs to the one before.
void newFlight() {
    // While the program still waits for a flight, one that loads is the one waited for.
    if (!g_cycleRunning || gf_stopping()) return;
    lf_noteFlightEnd();
    gf_requestStop(ExitReason::newFlight, 45);
}

void handleEvent(ByteReader reader) {
    reader.skip(4);  // group
    const uint32_t event = reader.u32();
    const uint32_t data = reader.u32();
    if (event == ev::sim) {
        lf_setFlightRunning(data == 1);
    } else if (event == ev::flightLoaded) {
        gf_log("SimConnect: flight loaded event");
        newFlight();
    }
}

void handleObjectEvent(ByteReader reader) {
    reader.skip(4);
    const uint32_t event = reader.u32();
    const uint32_t objectId = reader.u32();
    if (reader.u32() != sc::objectTypeAircraft) return;
    if (event == ev::objectAdded) lf_objectAdded(objectId);
    if (event == ev::objectRemoved) lf_objectGone(objectId);
}

void handleFrame(ByteReader reader) {
    reader.skip(12);
    const float rate = reader.f32();
    lf_frameOutput();
    lf_expirePending();
    if (++frameCount < framesASample) return;
    frameCount = 0;
    frameRate = rate;
}

void handleException(ByteReader reader) {
    const uint32_t code = reader.u32();
    const uint32_t sendId = reader.u32();
    const uint32_t index = reader.u32();
    switch (code) {
        case 3:
            if (positionKnown(simUser.pos()) && !gf_stopping())
                gf_logError("SIMCONNECT_EXCEPTION_UNRECOGNIZED_ID");
            break;
        case 5:
            throw UserErrorException(95, fmt::format("SimConnect Version Mismatch, dwIndex: {}", index));
        case 11:
            gf_showMessage("SimConnect: too many objects (max 1000)", true);
            lf_createFailed(sendId, false);
            break;
        case 19:
            gf_log("SIMCONNECT_EXCEPTION_INVALID_DATA_SIZE");
            break;
        case 22:
            lf_createFailed(sendId, true);
            break;
        case 23:
            gf_logError("SimConnect exception: load flight plan failed");
            break;
        case 24:
            gf_log("SIMCONNECT_EXCEPTION_OPERATION_INVALID_FOR_OBJECT_TYPE");
            break;
        default:
            gf_logError(fmt::format("SIMCONNECT_EXCEPTION #{}", code));
    }
}

bool isLetterDigitOrSpace(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == ' ' ||
           (c >= '\t' && c <= '\r');
}

/// The simulator says who it is: the one that the user has selected, or the run ends.
void handleOpen(ByteReader reader) {
    std::string name = reader.fixedText(256);
    uint32_t version[4];
    for (uint32_t& number : version) number = reader.u32();
    if (name.empty()) {
        gf_log("! Simulator name empty?");
        return;
    }
    g_panel.simConnected = true;
    gf_invalidate(Band::status);
    std::erase_if(name, [](char c) { return !isLetterDigitOrSpace(c); });
    const bool is2020 = name == "KittyHawk";
    if (!is2020 && name != "SunRise")
        throw UserErrorException(77,
                                 fmt::format("'{}' not being MSFS 2020 or MSFS 2024 connects ... ?", name));
    if (is2020 != sim2020)
        throw UserErrorException(
            71, fmt::format("MSFS 20{} is running ..., switch Simulator, or select the right sim in "
                            "the drop down list above",
                            sim2020 ? "24" : "20"));
    const std::string simDisplayName = is2020 ? "MSFS 2020" : "MSFS 2024";
    const std::string text = is2020 ? fmt::format("{} ({}.{}.{}.{})", simDisplayName, version[0], version[1],
                                                  version[2], version[3])
                                    : simDisplayName;
    gf_log(fmt::format("{} connected", text));
    gf_setPanelText(&PanelState::simText, text, Band::status);
    gf_clearMessage();
}

void handle(const SimRecv& message) {
    ByteReader reader(message.bytes);
    reader.seek(12);
    switch (message.id) {
        case sc::recvException:
            return handleException(reader);
        case sc::recvOpen:
            return handleOpen(reader);
        case sc::recvQuit:
            return lf_setFlightRunning(false);
        case sc::recvEvent:
            return handleEvent(reader);
        case sc::recvObjectAddRemove:
            return handleObjectEvent(reader);
        case sc::recvFilename:
            gf_logError("SimConnect: New file event");
            return newFlight();
        case sc::recvFrame:
            return handleFrame(reader);
        case sc::recvObjectData:
            return lf_dataReply(message);
        case sc::recvObjectDataByType:
            return lf_objectReply(message);
        case sc::recvAssignedObjectId:
        case sc::recvClientData:
        case sc::recvEventEx1:
            return;
        default:
            gf_log(fmt::format("! Unknown Dispatch dwID {}", message.id));
    }
}

}  // namespace

void lf_setFlightRunning(bool running) {
    g_flightRunning = running;
    g_panel.simRunning = running;
    gf_invalidate(Band::status);
}

void lf_dispatch(const SimRecv& message) {
    try {
        handle(message);
    } catch (const std::out_of_range&) {
        gf_log(fmt::format("SimConnect: message {} of {} bytes is not whole, dropped", message.id,
                           message.bytes.size()));
    }
}

}  // namespace skl
