#include "core/messages.h"
#include "core/parameters.h"
#include "panel/command_parts.h"
#include "panel/controls.h"
#include "panel/requests.h"

namespace skl {

bool lf_commandButton(int id) {
    if (id == unblockButton.controlId) {
        if (BLOCK_CALLSIGN.empty())
            gf_showMessage("Nothing to block or unblock...", false);
        else
            lf_clearBlock();
        return true;
    }
    if (id == rereadButton.controlId) {
        gf_enableControl(rereadButton, false);
        gf_enableControl(DESTINATION, false);
        g_rereadParkAirports = true;
        return true;
    }
    if (id == flushStaticButton.controlId) {
        gf_showMessage("All static parked aircraft will be removed ...", false);
        gf_enableControl(flushStaticButton, false);
        g_flushStatic = true;
        return true;
    }
    return false;
}

}  // namespace skl
