#include "panel/controls.h"

#include "core/folders.h"
#include "core/parameter_store.h"
#include "core/parameters.h"
#include "panel/panel_state.h"

namespace skl {

void gf_enableControl(ControlParameter& control, bool enabled) {
    if (control.enabled.exchange(enabled) != enabled) gf_invalidate(Band::options);
}

void gf_refreshControl(ControlParameter& control) {
    ++control.refreshes;
}

void gf_enableControlsAtStart() {
    const auto& lists = gf_parameterLists();
    for (auto* check : lists.checks)
        if (auto* control = dynamic_cast<ControlParameter*>(check)) gf_enableControl(*control, true);
    for (auto* combo : lists.combos)
        if (auto* control = dynamic_cast<ControlParameter*>(combo)) gf_enableControl(*control, true);
    gf_enableControl(SIM_CHOICE, true);
    gf_enableControl(BLOCK_CALLSIGN, true);

    gf_enableControl(LEARN_SOFT, false);
    gf_enableControl(CALLSIGN_OBJECTIDS, sim2020);
    gf_enableControl(AI_PACKAGE_SELECTOR, LIG_AUTOMATIC.value);
    gf_enableControl(RANGE, !AUTO_RANGE.value);
    gf_enableControl(AR_ABOVE_HEIGHT, AUTO_RANGE.value);
    gf_enableControl(unblockButton, !BLOCK_CALLSIGN.empty());
    for (ControlParameter* later :
         {static_cast<ControlParameter*>(&CALLSIGN_2_OBJECTID), static_cast<ControlParameter*>(&DESTINATION),
          static_cast<ControlParameter*>(&parking_percentage), static_cast<ControlParameter*>(&MAX_FIT_FL),
          static_cast<ControlParameter*>(&rereadButton), static_cast<ControlParameter*>(&flushStaticButton)})
        gf_enableControl(*later, false);
    parking_percentage.value = parking_percentage.defaultValue;
}

}  // namespace skl
