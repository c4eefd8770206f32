// The two callsigns of a stay: the flight that brings an aircraft and the one that takes it away.
#include <fmt/format.h>

#include <algorithm>

#include "core/log.h"
#include "parking/stand_fit.h"
#include "parking/stands.h"

namespace skl {

namespace {

constexpr int32_t heavyReach = 14, usualReach = 10;  // half hours before and after now

/// The half hours around one of them, within its day.
uint64_t hoursAround(int32_t halfHour, int32_t reach) {
    uint64_t hours = 0;
    const int32_t last = std::min(halfHour + reach, lastHalfHour);
    for (int32_t each = std::max(halfHour - reach, 0); each <= last; ++each) hours |= uint64_t{1} << each;
    return hours;
}

const StandOption* coupledOption(WeekSlot now, const LiveAc& record) {
    const uint64_t around =
        hoursAround(now.halfHour, record.category == AcCategory::Heavy ? heavyReach : usualReach);
    std::string_view key = record.callsign;
    if (key.ends_with('_')) key.remove_suffix(1);
    for (const Stand& stand : stands)
        for (const StandOption& option : stand.options)
            if (option.optionId != 0 && option.day == now.day && (option.hours & around) != 0 &&
                option.airl == record.airline && !option.cs2.empty() &&
                (key == option.cs || key == option.cs2))
                return &option;
    return nullptr;
}

}  // namespace

void lf_searchForCoupledCsAroundThisTime(WeekSlot now, LiveAc& record) {
    try {
        const StandOption* option = coupledOption(now, record);
        if (!option) return;
        record.coupledIn = option->cs;
        record.coupledOut = option->cs2;
    } catch (const std::exception& error) {
        gf_log(fmt::format("lf_searchForCoupledCsAroundThisTime: {}", error.what()));
    }
}

}  // namespace skl
