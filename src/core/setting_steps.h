// Numbers out of files of other versions, brought to the entries of the lists that the panel offers now.
#pragma once

#include <cstdint>

namespace skl {

/// The entry of the list of ranges nearest to `miles`; below 7 the value itself, at least 2.
int32_t gf_rangeStep(int32_t miles);
/// The entry of the lists of counts (0, 10, 25 ... 500) nearest to `count`; 300 and more is the last, no
/// limit.
int32_t gf_countStep(int32_t count);

}  // namespace skl
