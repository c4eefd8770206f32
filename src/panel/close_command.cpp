#include <fmt/format.h>

#include "core/messages.h"
#include "core/run_state.h"
#include "panel/commands.h"

namespace skl {

void gf_closeButton() {
    gf_showMessage(fmt::format("Close window button clicked, closing {} ...", programName), false);
    gf_requestClose();
}

}  // namespace skl
