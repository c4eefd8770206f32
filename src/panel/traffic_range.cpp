#include "panel/traffic_range.h"

#include <cmath>

#include "core/geodesy.h"
#include "core/parameters.h"
#include "core/setting_steps.h"
#include "panel/panel_state.h"
#include "parking/airport_list.h"
#include "simlink/user_aircraft.h"

namespace skl {

std::atomic<double> rangeNm{40};
std::atomic<double> rangeMeters{40 * metersPerNm};
std::atomic<int> savedRange{40};

namespace {

constexpr int onGroundNm = 10, enRouteNm = 40, highNm = 100;
constexpr double closeNm = 7, farNm = 37, beyondAll = 10000;

/// To the airport that is looked at first; it decides how much of the sky is worth showing.
double firstAirportNm() {
    return parkAirports.empty() ? beyondAll : gf_distanceNm(engineUser.pos(), parkAirports.front().pos());
}

int rangeFor(double altitude, bool onGround) {
    if (onGround) return onGroundNm;
    if (altitude > AR_ABOVE_HEIGHT.value) return highNm;
    if (altitude > AIRP_HEIGHT.value) return enRouteNm;
    const double nm = firstAirportNm();
    if (nm <= closeNm) return onGroundNm;
    if (nm >= farNm) return enRouteNm;
    return gf_rangeStep(static_cast<int>(std::lround(nm)) + 3);
}

}  // namespace

void gf_applyRange(double miles) {
    RANGE.value = RANGE.clamp(static_cast<int64_t>(miles));
    rangeNm = miles;
    rangeMeters = miles * metersPerNm;
    gf_invalidate(Band::options);
}

void gf_autoRange() {
    gf_applyRange(rangeFor(engineUser.altitude, userOnGround));
}

}  // namespace skl
