// Which stands of an airport overlap.
#pragma once

#include <vector>

#include "airports/airport_file.h"

namespace skl {

/// Gives every stand its ordinal, from 1 in their order, and the ordinals of those that overlap it,
/// ascending.
void lf_numberStands(std::vector<Stand>& stands);

}  // namespace skl
