// A sweep over the objects by latitude.
#include "standin/simulator/overlaps.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>
#include <vector>

#include "standin/common/text.h"
#include "standin/simulator/aircraft_class.h"
#include "standin/simulator/geo.h"

namespace simulator {

namespace {

constexpr double kHeightFeet = 25;
constexpr double kLargestReach = 56;  // metres, two of the largest class
constexpr std::size_t kMostPairs = 10000;

}  // namespace

void Overlaps::look(double t, const World& world) {
    struct Place {
        const SimObject* object;
        double halfSpan;
    };
    std::vector<Place> places{{&world.user, halfSpanOf(classOf(world.user.title))}};
    for (const auto& [id, object] : world.objects) {
        places.push_back({&object, halfSpanOf(classOf(object.title))});
    }
    std::sort(places.begin(), places.end(),
              [](const Place& a, const Place& b) { return a.object->lat < b.object->lat; });
    const double reach = degrees(kLargestReach / kEarthMetres);
    for (std::size_t i = 0; i < places.size(); ++i) {
        const auto& a = *places[i].object;
        for (std::size_t j = i + 1; j < places.size() && places[j].object->lat - a.lat <= reach; ++j) {
            const auto& b = *places[j].object;
            const double needed = places[i].halfSpan + places[j].halfSpan;
            const double metres = distanceMetres(a.lat, a.lon, b.lat, b.lon);
            if (metres >= needed || std::abs(a.alt - b.alt) > kHeightFeet) {
                continue;
            }
            ++seconds_;
            if (pairs_.size() < kMostPairs) {
                pairs_.emplace(std::min(a.id, b.id), std::max(a.id, b.id));
            }
            if (needed - metres > deepest_) {
                deepest_ = needed - metres;
                t_ = t;
                metres_ = metres;
                first_ = a.tail;
                second_ = b.tail;
            }
        }
    }
}

nlohmann::json Overlaps::report() const {
    nlohmann::json report{{"pairs", pairs_.size()}, {"seconds", seconds_}};
    if (!pairs_.empty()) {
        report["worst"] = {
            {"tails", {standin::utf8Of(first_), standin::utf8Of(second_)}}, {"t", t_}, {"metres", metres_}};
    }
    return report;
}

}  // namespace simulator
