// What goes when an airport is given up, and when the user asks for it. Worker thread only.
#pragma once

namespace skl {

/// Every static aircraft is removed, or its creation called back.
void lf_removeAllStatics();

}  // namespace skl
