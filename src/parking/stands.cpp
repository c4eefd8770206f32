// The values, the look-ups, and the stand under the user.
#include "parking/stands.h"

#include <algorithm>
#include <cmath>

#include "panel/panel_state.h"
#include "simlink/user_aircraft.h"

namespace skl {

std::vector<Stand> stands;
AirportFile airportFile;
QualityFactors qualityFactors;
std::atomic<bool> g_apfLoaded{false};
std::string reservedStand;
int32_t updatesCount = 0;
int32_t maxParkCount = 0;

namespace {

constexpr double userStandNm = 55 / metersPerNm;
constexpr double samePlace = 1e-8;  // degrees

/// The last answer of lf_standOfUser.
struct Remembered {
    bool valid = false;
    LaLo position;
    std::string standId;
} remembered;

bool isRemembered(LaLo position) {
    return remembered.valid && std::abs(position.lat - remembered.position.lat) <= samePlace &&
           std::abs(position.lon - remembered.position.lon) <= samePlace;
}

}  // namespace

Stand* lf_findStand(uint32_t sid) {
    // The ordinals are given in the order of the table.
    if (sid >= 1 && sid <= stands.size() && stands[sid - 1].sid == sid) return &stands[sid - 1];
    const auto found =
        std::find_if(stands.begin(), stands.end(), [sid](const Stand& stand) { return stand.sid == sid; });
    return sid != 0 && found != stands.end() ? &*found : nullptr;
}

Stand* lf_findStand(std::string_view id) {
    const auto found =
        std::find_if(stands.begin(), stands.end(), [id](const Stand& stand) { return stand.id == id; });
    return found == stands.end() ? nullptr : &*found;
}

std::string lf_standName(uint32_t sid) {
    if (sid == 0) return "sid==0?";
    const Stand* stand = lf_findStand(sid);
    return stand ? stand->id : "unknown";
}

std::string lf_standAt(LaLo position) {
    const Stand* nearest = nullptr;
    double best = userStandNm;
    for (const Stand& stand : stands) {
        const double distance = gf_distanceNm(position, stand.pos());
        if (distance > best || (nearest && distance == best)) continue;
        nearest = &stand;
        best = distance;
    }
    return nearest ? nearest->id : std::string();
}

std::string lf_standOfUser(LaLo position) {
    if (!userOnGround) return {};
    if (!isRemembered(position)) remembered = {true, position, lf_standAt(position)};
    return remembered.standId;
}

void lf_standsChanged() {
    remembered = {};
}

void lf_countUpdate() {
    ++updatesCount;
    gf_invalidate(Band::parking);
}

void gf_resetStands() {
    stands.clear();
    lf_standsChanged();
    airportFile = {};
    qualityFactors = {};
    g_apfLoaded = false;
    reservedStand.clear();
    updatesCount = 0;
    maxParkCount = 0;
}

}  // namespace skl
