// The 42 controls of the panel: kind, place, size, and what the tip says, in the order in which they are
// made.
#pragma once

#include <span>
#include <string>

#include "core/parameter.h"
#include "platform/window.h"

namespace skl {

struct PanelControl {
    ControlParameter& parameter;
    platform::ControlKind kind;
    int width = 0;
    int dropHeight = 0;
    const char* tip = "";
};

std::span<const PanelControl> gf_panelControls();
/// nullptr for an id that no control has.
const PanelControl* gf_panelControl(int id);
/// The key of its parameter, or the caption of a button.
std::string gf_controlName(const PanelControl& control);
platform::ControlSpec gf_controlSpec(const PanelControl& control);
/// What a control is to show now, from its parameter alone.
platform::ControlState gf_controlState(const PanelControl& control);

}  // namespace skl
