// The combo boxes, and the change of simulator that one of them asks for.
#include <fmt/format.h>

#include "core/messages.h"
#include "core/parameter_store.h"
#include "core/parameters.h"
#include "core/run_state.h"
#include "engine/engine_state.h"
#include "liveries/catalogue.h"
#include "panel/command_parts.h"
#include "panel/controls.h"
#include "panel/panel_state.h"
#include "panel/requests.h"
#include "panel/traffic_range.h"
#include "parking/stands.h"

namespace skl {

namespace {

struct NumberCommand {
    ComboIntParameter& box;
    void (*action)(int32_t value) = nullptr;
};

void takeRange(int32_t value) {
    gf_applyRange(value);
    g_parkingChanged = true;
}

/// An airport may have a limit of its own; then the user's new one belongs to the airport.
void takeLiveLimit(int32_t value) {
    if (g_apfLoaded)
        g_parkingChanged = true;
    else
        liveLimit = value;
    g_liveLimitChanged = true;
}

const NumberCommand numberCommands[] = {
    {MATCHING_DEPTH},
    {MAX_PARK_SEL, [](int32_t) { lf_askRenewal(); }},
    {RANGE, takeRange},
    {AR_ABOVE_HEIGHT},
    {AIRP_RANGE},
    {AIRP_HEIGHT},
    {MAX_LIVE_SEL, takeLiveLimit},
};

template <class List>
auto entryAt(const List& list, int index) {
    return list.at(static_cast<size_t>(index));
}

/// Stores another text than the one in force; false for the same.
bool takeText(ComboStringParameter& box, int index) {
    const std::string text = entryAt(box.allowed, index);
    if (box == text) return false;
    box.set(text);
    gf_saveParameter(box);
    gf_invalidate(Band::options);
    return true;
}

bool takeNumber(int id, int index) {
    for (const NumberCommand& command : numberCommands) {
        if (command.box.controlId != id) continue;
        const int32_t value = command.box.clamp(entryAt(command.box.allowed, index));
        command.box.value = value;
        gf_saveParameter(command.box);
        if (command.action) command.action(value);
        gf_invalidate(Band::options);
        return true;
    }
    return false;
}

}  // namespace

bool lf_commandComboBox(int id, int index) {
    if (id == SIM_CHOICE.controlId) {
        if (takeText(SIM_CHOICE, index)) lf_switchSimulator();
        return true;
    }
    if (id == AI_PACKAGE_SELECTOR.controlId) {
        takeText(AI_PACKAGE_SELECTOR, index);
        return true;
    }
    return takeNumber(id, index);
}

void lf_switchSimulator() {
    g_simulatorSwitched = true;
    for (CheckParameter* scan : {&SCAN_AIRPORTS, &SCAN_LIVERIES}) {
        scan->value = true;
        gf_saveParameter(*scan);
    }
    gf_showMessage(fmt::format("Switching Simulator to {}", SIM_CHOICE.get()), true);
    ALL_INSTALL_PATH.set("");
    if (SIM_CHOICE == "MSFS 2024") {
        // The add-on airports of that simulator are fetched anew.
        MYSIMADDON24_VERSION.set("");
        gf_saveParameter(MYSIMADDON24_VERSION);
    }
    gf_requestStop(ExitReason::newSettings, 3);
}

}  // namespace skl
