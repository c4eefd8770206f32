// The colours of the panel.
#pragma once

#include "platform/canvas.h"

namespace skl::colours {

inline constexpr platform::Colour red{255, 0, 0}, panel{153, 204, 255}, black{0, 0, 0}, green{50, 205, 50},
    yellow{255, 255, 0}, white{255, 255, 255}, grey{160, 160, 160};

}  // namespace skl::colours
