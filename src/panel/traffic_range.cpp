#include "panel/traffic_range.h"

#include <array>
#include <utility>

#include "core/geodesy.h"
#include "core/parameters.h"
#include "panel/panel_state.h"
#include "simlink/user_aircraft.h"

namespace skl {

std::atomic<double> rangeNm{40};
std::atomic<double> rangeMeters{40 * metersPerNm};
std::atomic<int> savedRange{40};

void gf_applyRange(double miles) {
    RANGE.value = RANGE.clamp(static_cast<int64_t>(miles));
    rangeNm = miles;
    rangeMeters = miles * metersPerNm;
    gf_invalidate(Band::options);
}

void gf_autoRange() {
    // Near the ground the choice would follow the distance to the first park airport; without any it is far
    // away.
    int miles = 40;
    if (userOnGround)
        miles = 10;
    else if (engineUser.altitude > AR_ABOVE_HEIGHT.value)
        miles = 100;
    gf_applyRange(miles);
}

int lf_snapRange(int miles) {
    // Upper bound of each step and the list's entry below it.
    static constexpr std::array<std::pair<int, int>, 15> steps{{{9, 8},
                                                                {11, 10},
                                                                {13, 12},
                                                                {15, 14},
                                                                {17, 16},
                                                                {19, 18},
                                                                {23, 20},
                                                                {28, 25},
                                                                {33, 30},
                                                                {38, 35},
                                                                {45, 40},
                                                                {57, 50},
                                                                {73, 65},
                                                                {90, 80},
                                                                {100, 100}}};
    if (miles < 3) return 2;
    if (miles >= 100) return 100;
    if (miles < 7) return miles;
    for (auto [below, entry] : steps)
        if (miles < below) return entry;
    return 100;
}

}  // namespace skl
