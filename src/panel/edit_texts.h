// What the edit boxes show: mostly their parameter's value, but the two parking figures stay empty until an
// airport's stands are loaded. Any thread.
#pragma once

#include <string>

#include "panel/control_table.h"

namespace skl {

std::string gf_editText(const PanelControl& control);

}  // namespace skl
