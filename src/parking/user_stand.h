// The stand under the user and the stand kept for the user. Worker thread only.
#pragma once

#include <string>

namespace skl {

/// The stand held free becomes another one, and what stands on that is removed.
void lf_reserveStand(const std::string& standId);

}  // namespace skl
