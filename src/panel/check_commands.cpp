// The check boxes: each turns its switch over, saves it, says what that means where it is not plain, and does
// what hangs on it.
#include <fmt/format.h>

#include "core/messages.h"
#include "core/parameter_store.h"
#include "core/parameters.h"
#include "core/run_state.h"
#include "liveries/catalogue.h"
#include "panel/command_parts.h"
#include "panel/controls.h"
#include "panel/panel_state.h"
#include "panel/requests.h"
#include "panel/traffic_range.h"
#include "parking/stands.h"

namespace skl {

namespace {

struct CheckCommand {
    CheckParameter& box;
    const char* onText;   ///< nullptr: nothing is said; "": the message line is cleared
    const char* offText;  ///< likewise; braces take the program's name
    void (*action)(bool on) = nullptr;
};

/// What is stored with the airport has changed.
void noteParkingChange(bool) {
    if (g_apfLoaded) g_parkingChanged = true;
}

void askRenewal(bool) {
    lf_askRenewal();
}

void followAutomatic(bool on) {
    gf_enableControl(AI_PACKAGE_SELECTOR, on);
}

void showLights(bool) {
    g_navLightsChanged = true;
}

void switchAutoRange(bool on) {
    g_parkingChanged = true;
    gf_enableControl(RANGE, !on);
    gf_enableControl(AR_ABOVE_HEIGHT, on);
    if (on) {
        savedRange = RANGE.value.load();
        g_autoRangeRequested = true;
        return;
    }
    g_autoRangeRequested = false;
    gf_applyRange(savedRange);
}

/// A scan begins at once while nothing flies yet, by a new run; later it waits for the next start.
void askScan(bool on, const char* what, const char* after) {
    gf_invalidate(Band::options);
    if (!on) {
        gf_clearMessage();
    } else if (!g_waitingForFeed) {
        gf_showMessage(fmt::format("Your {} will be scanned at the next start of {}, recommended after you "
                                   "have add/removed {}",
                                   what, programName, after),
                       false);
    } else {
        gf_showMessage(fmt::format("Your {} will be scanned", what), true);
        gf_requestStop(ExitReason::newSettings, 2);
    }
}

void scanLiveries(bool on) {
    if (on && g_waitingForFeed) clearCatalogueRequested = true;
    askScan(on, "liveries", "AI aircraft models/liveries");
}

void scanAirports(bool on) {
    askScan(on, "airports", "airports");
}

constexpr const char* clear = "";
constexpr const char* quiet = nullptr;

const CheckCommand commands[] = {
    {LIG_AUTOMATIC, clear, "The liveries defined by your lfolder parameters will be scanned",
     followAutomatic},
    {LIG_PRIORITIZE, "Liveries, for airl+model, in lower lfolders that are already available will be skipped",
     clear},
    {COLLISION_LIVE_PARKED_GND, clear,
     "Be aware, no collision avoidance with live aircraft vs parked static on the ground"},
    {COLLISION_USER_GND, clear, "Be aware, no collision avoidance with user aircraft on the ground"},
    {COLLISION_USER_AIR, clear, "Be aware, no collision avoidance with user aircraft in the air"},
    {INITIAL_LOAD_ONLY,
     "Initial Load Only: static parked aircraft are generated once, no renewal every 20 minutes", clear,
     noteParkingChange},
    {ALWAYS_ON_TOP, "{}'s window will remain visible", clear},
    {SUPPRESS_STUB, "Exclude FSLTL-liveries titles ending with _STUB from scan", clear},
    {GUID_CHANGES, clear,
     "Be aware, no more livery updates: you miss correct data for Learn, LittleNavMap, etc!"},
    {AEROWINX, "Note: This mode is for Aerowinx PSX users only, please re-start {}", clear},
    {LEARN_SOFT, quiet, quiet, noteParkingChange},
    {WEEK, quiet, quiet, askRenewal},
    {PARK_FAKE, quiet, quiet, askRenewal},
    {PARK_SOFT, quiet, quiet, askRenewal},
    {CALLSIGN_OBJECTIDS, quiet, quiet},
    {STRAIGHT_PBS_ONLY, quiet, quiet},
    {LOG, quiet, quiet},
    {LIGHT_AIRCRAFT, quiet, quiet},
    {HELICOPTERS, quiet, quiet},
    {HIGH_PERF_AIRCRAFT, quiet, quiet},
    {NAV_LIGHTS_WHILE_PARKED, quiet, quiet, showLights},
    {AUTO_RANGE, quiet, quiet, switchAutoRange},
    {SCAN_LIVERIES, quiet, quiet, scanLiveries},
    {SCAN_AIRPORTS, quiet, quiet, scanAirports},
};

}  // namespace

bool lf_commandCheckBox(int id) {
    for (const CheckCommand& command : commands) {
        if (command.box.controlId != id) continue;
        const bool on = !command.box.value;
        command.box.value = on;
        gf_saveParameter(command.box);
        if (const char* text = on ? command.onText : command.offText)
            gf_showMessage(fmt::format(fmt::runtime(text), programName), false);
        if (command.action) command.action(on);
        gf_invalidate(Band::options);
        return true;
    }
    return false;
}

void lf_askRenewal() {
    if (!g_apfLoaded) return;
    g_parkingChanged = true;
    if (INITIAL_LOAD_ONLY.value) {
        gf_clearMessage();
        return;
    }
    constexpr int32_t step = 15;
    if (const int32_t wait = (step - g_seconds % step) % step)
        gf_showMessage(
            fmt::format("{} will respond in {} second{} ...", programName, wait, wait == 1 ? "" : "s"),
            false);
    g_renewRequested = true;
}

}  // namespace skl
