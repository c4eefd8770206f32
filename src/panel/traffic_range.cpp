#include "panel/traffic_range.h"

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

}  // namespace skl
