// See the header.
#include "parking/week_slots.h"

namespace skl {

namespace {

int32_t slotOfWeek(WeekSlot slot) {
    return (slot.day - 1) * halfHoursADay + slot.halfHour;
}

}  // namespace

WeekSlot lf_slotBack(WeekSlot slot, int32_t halfHours) {
    slot.halfHour -= halfHours;
    if (slot.halfHour >= 0) return slot;
    return {slot.day == 1 ? daysAWeek : slot.day - 1, slot.halfHour + halfHoursADay};
}

WeekSlot lf_slotNext(WeekSlot slot) {
    if (++slot.halfHour < halfHoursADay) return slot;
    return {slot.day == daysAWeek ? 1 : slot.day + 1, slot.halfHour - halfHoursADay};
}

int32_t lf_slotAge(WeekSlot slot, WeekSlot now) {
    const int32_t age = (slotOfWeek(now) - slotOfWeek(slot)) % halfHoursAWeek;
    return age < 0 ? age + halfHoursAWeek : age;
}

}  // namespace skl
