#include "airports/stand_neighbours.h"

#include <cmath>

namespace skl {

namespace {

constexpr double distanceFactor = 1.1;
// A little less than the true length, so that the look at the latitudes alone never hides a neighbour.
constexpr double nmPerLatitude = 59.9;

bool overlap(const Stand& a, const Stand& b) {
    const double radii = a.radius + b.radius;
    if (std::abs(a.lat - b.lat) * nmPerLatitude * distanceFactor > radii) return false;
    return radii > gf_distanceNm(a.pos(), b.pos()) * distanceFactor;
}

}  // namespace

void lf_numberStands(std::vector<Stand>& stands) {
    uint32_t sid = 0;
    for (Stand& stand : stands) {
        stand.sid = ++sid;
        stand.adjacent.clear();
    }
    // Each pair once, from both sides: a stand meets those before it first, then those behind it.
    for (size_t i = 0; i < stands.size(); ++i)
        for (size_t j = i + 1; j < stands.size(); ++j) {
            if (!overlap(stands[i], stands[j])) continue;
            stands[i].adjacent.push_back(stands[j].sid);
            stands[j].adjacent.push_back(stands[i].sid);
        }
    for (Stand& stand : stands) stand.adjacent.shrink_to_fit();
}

}  // namespace skl
