// The panel's controls as FLTK widgets. Each shows a ControlState and tells what the user did.
#pragma once

#include <memory>

#include "platform/fltk/canvas_fltk.h"
#include "platform/window.h"

class Fl_Widget;

namespace skl::platform {

class ControlFltk {
  public:
    virtual ~ControlFltk() = default;
    virtual void show(const ControlState& state, bool refresh) = 0;
};

/// Makes the widget inside the FLTK group that is open, which owns it. `events` has to outlive it.
std::unique_ptr<ControlFltk> makeControl(const ControlSpec& spec, Scale scale, const WindowEvents& events);

}  // namespace skl::platform
