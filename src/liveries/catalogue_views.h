// Sets of titles beside the catalogue's vectors, for searches that have to be quick.
#pragma once

#include <unordered_set>

#include "core/fnv.h"
#include "liveries/livery_ref.h"

namespace skl {

using TitleSet = std::unordered_set<LiveryRef, FnvHash, std::equal_to<>>;

bool lf_isSpecial(LiveryRef title);

}  // namespace skl
