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
constexpr std::size_t kPlacesKept = 20;

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
    // Of the wheels: on the ground the centres of gravity stand at different heights.
    const auto heightOf = [](const SimObject& object) { return object.alt - object.staticHeight; };
    const double reach = degrees(kLargestReach / kEarthMetres);
    for (std::size_t i = 0; i < places.size(); ++i) {
        const auto& a = *places[i].object;
        for (std::size_t j = i + 1; j < places.size() && places[j].object->lat - a.lat <= reach; ++j) {
            const auto& b = *places[j].object;
            const double needed = places[i].halfSpan + places[j].halfSpan;
            const double metres = distanceMetres(a.lat, a.lon, b.lat, b.lon);
            if (metres >= needed || std::abs(heightOf(a) - heightOf(b)) > kHeightFeet) {
                continue;
            }
            note(t, a, b, metres, needed - metres);
        }
    }
}

void Overlaps::note(double t, const SimObject& a, const SimObject& b, double metres, double depth) {
    ++seconds_;
    const auto key = std::minmax(a.id, b.id);
    if (pairs_.size() >= kMostPairs && !pairs_.contains(key)) {
        return;
    }
    auto& pair = pairs_[key];
    ++pair.seconds;
    if (depth > pair.depth) {
        pair = {a.tail, b.tail, t, metres, depth, pair.seconds};
    }
}

nlohmann::json Overlaps::report() const {
    std::vector<const Pair*> deepest;
    for (const auto& [key, pair] : pairs_) {
        deepest.push_back(&pair);
    }
    std::sort(deepest.begin(), deepest.end(),
              [](const Pair* a, const Pair* b) { return a->depth > b->depth; });
    deepest.resize(std::min(deepest.size(), kPlacesKept));
    auto places = nlohmann::json::array();
    for (const auto* pair : deepest) {
        places.push_back({{"tails", {standin::utf8Of(pair->first), standin::utf8Of(pair->second)}},
                          {"t", pair->t},
                          {"metres", pair->metres},
                          {"seconds", pair->seconds}});
    }
    nlohmann::json report{{"pairs", pairs_.size()}, {"seconds", seconds_}, {"places", places}};
    if (!places.empty()) {
        report["worst"] = places.front();
    }
    return report;
}

}  // namespace simulator
