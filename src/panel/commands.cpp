// From a control's id to its handler.
#include "panel/commands.h"

#include <fmt/format.h>

#include "core/log.h"
#include "core/messages.h"
#include "panel/command_parts.h"
#include "panel/panel_state.h"

namespace skl {

namespace {

/// Runs a handler; an exception ends it, and what was stored before stays. True: it has handled the input.
template <class Handler>
void guarded(Handler handler) {
    try {
        if (handler()) return;
    } catch (...) {
        gf_logError(fmt::format("{} exception {}", "lf_HandleWMCOMMAND", gf_currentExceptionText()));
    }
    gf_invalidate(Band::options);
}

}  // namespace

void gf_controlClicked(int id) {
    guarded([id] { return lf_commandButton(id) || lf_commandCheckBox(id); });
}

void gf_controlSelected(int id, int index) {
    guarded([id, index] { return lf_commandComboBox(id, index); });
}

void gf_controlEntered(int id, std::string_view text) {
    guarded([id, text] { return lf_commandEdit(id, text); });
}

}  // namespace skl
