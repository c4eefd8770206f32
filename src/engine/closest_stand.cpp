// Which stand an aircraft is meant for: the nearest that it fits, or one a little farther where it was seen
// before.
#include <algorithm>
#include <cmath>
#include <limits>

#include "engine/live_parking.h"
#include "parking/stands.h"
#include "simlink/user_aircraft.h"

namespace skl {

namespace {

constexpr double overhangNm =
    1.8 / metersPerNm;                          // of a wing over the edge of a stand that is still big enough
constexpr double certainNm = 20 / metersPerNm;  // so near that the stand must be bigger than we know
constexpr double wideReachNm = 85 / metersPerNm;  // to a stand where the aircraft was seen before
constexpr double grownEdgeNm = 1 / metersPerNm;   // of the wing over the edge of a stand that has grown
constexpr double nmPerDegree = 60.0;
constexpr double roundingMargin = 1.001;

bool fits(const LiveAc& record, const Stand& stand) {
    return record.halfSpanNm <= stand.radius + overhangNm;
}

bool seenBefore(const LiveAc& record, const Stand& stand) {
    if (record.callsign.empty()) return false;
    for (const StandOption& option : stand.options) {
        if (option.optionId == 0 || !option.real) continue;
        if (option.cs == record.callsign || option.cs2 == record.callsign) return true;
        if (option.airl == record.airline && option.type == record.model) return true;
    }
    return false;
}

void grow(Stand& stand, double halfSpanNm) {
    stand.radius = halfSpanNm - grownEdgeNm;
    stand.radiusChanged = true;
    lf_countUpdate();
}

struct Nearest {
    Stand* stand = nullptr;
    double nm = std::numeric_limits<double>::infinity();
    void take(Stand& other, double distance) {
        stand = &other;
        nm = distance;
    }
};

}  // namespace

Stand* lf_closestStand(LaLo pos, const LiveAc& record, double maxNm, bool wide) {
    // Most stands of an airport are too far away in latitude alone.
    const double reach = (wide ? std::max(maxNm, wideReachNm) : maxNm) * roundingMargin / nmPerDegree;
    Nearest near, known;
    for (Stand& stand : stands) {
        if (stand.occupied || std::abs(stand.lat - pos.lat) > reach) continue;
        const double nm = gf_distanceNm(pos, stand.pos());
        if (nm <= maxNm && nm < near.nm) {
            if (!fits(record, stand) && nm > certainNm) continue;
            near.take(stand, nm);
            wide = false;
        } else if (wide && nm <= wideReachNm && nm < known.nm && fits(record, stand) &&
                   seenBefore(record, stand)) {
            known.take(stand, nm);
        }
    }
    Stand* found = near.stand ? near.stand : known.stand;
    if (!found || found->heli != (record.category == AcCategory::Rotorcraft)) return nullptr;
    if (!fits(record, *found)) grow(*found, record.halfSpanNm);
    return found;
}

bool lf_keptForUser(const Stand& stand) {
    if (stand.id.empty()) return false;
    return stand.id == reservedStand || stand.id == lf_standOfUser(engineUser.pos());
}

}  // namespace skl
