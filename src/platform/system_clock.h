// The system's clock behind the clock seam.
#pragma once

#include "core/clock.h"

namespace skl::platform {

Clock& systemClock();

}  // namespace skl::platform
