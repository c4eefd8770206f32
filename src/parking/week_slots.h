// Arithmetic of week slots: the week is a ring of 336 half hours.
#pragma once

#include <cstdint>

#include "core/run_state.h"

namespace skl {

inline constexpr int32_t halfHoursADay = 48, daysAWeek = 7, halfHoursAWeek = halfHoursADay * daysAWeek;
inline constexpr int32_t lastHalfHour = halfHoursADay - 1;

/// Going back and forward in the week; `halfHours` at most 47.
WeekSlot lf_slotBack(WeekSlot slot, int32_t halfHours);
WeekSlot lf_slotNext(WeekSlot slot);
/// Half hours from `slot` to `now`, 0 to 335.
int32_t lf_slotAge(WeekSlot slot, WeekSlot now);
/// Whether `hours` holds a half hour of 0 to 47.
constexpr bool lf_holds(uint64_t hours, int32_t halfHour) {
    return (hours >> halfHour & 1) != 0;
}

}  // namespace skl
