// Which controls of the panel can be used, as data: any thread changes it, the panel's thread copies it to
// the widgets.
#pragma once

#include "core/parameter.h"

namespace skl {

void gf_enableControl(ControlParameter& control, bool enabled);
/// The control shows its parameter's value again, whatever the user has typed.
void gf_refreshControl(ControlParameter& control);
/// The state of all controls once a run has read its parameters.
void gf_enableControlsAtStart();

}  // namespace skl
