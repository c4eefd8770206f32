// Wheels, touch-downs and sliding.
#include "standin/simulator/ground_figures.h"

#include <cmath>
#include <nlohmann/json.hpp>

#include "standin/common/text.h"
#include "standin/simulator/geo.h"

namespace simulator {

namespace {

constexpr double kUpFeet = 20;           // higher than that it flew
constexpr double kHeightInterval = 0.1;  // seconds between two remembered heights
constexpr double kContactSeconds = 0.5;  // the descent just before the contact
constexpr double kNearGround = 10;       // feet; level within them is standing or rolling
constexpr double kLevel = 0.5;           // feet a second
constexpr double kWheelsFeet = 0.5 * kFeetPerMetre;
constexpr double kLeastTouchDown = 60;  // feet a minute
constexpr double kMostTouchDown = 400;
constexpr double kMovingKnots = 5;
constexpr double kSidewaysDegrees = 25;
constexpr std::size_t kPlacesKept = 20;

}  // namespace

void GroundFigures::pose(const Pose& pose, const std::string& tail, GroundState& state) {
    auto& heights = state.heights;
    if (state.wasUp && pose.onGround()) {
        state.wasUp = false;
        const GroundState::Height* oldest = nullptr;
        for (std::size_t i = 0; i < std::min(state.used, heights.size()); ++i) {
            const auto& height = heights[i];
            if (pose.t - height.t <= kContactSeconds + kHeightInterval &&
                (oldest == nullptr || height.t < oldest->t)) {
                oldest = &height;
            }
        }
        if (oldest != nullptr && pose.t > oldest->t) {
            const double feetAMinute = (oldest->feet - pose.height) / (pose.t - oldest->t) * 60;
            const Place place{tail, pose.t, feetAMinute};
            if (touchDowns_.count() == 0 || feetAMinute > hardest_.value) {
                hardest_ = place;
            }
            if (touchDowns_.count() == 0 || feetAMinute < softest_.value) {
                softest_ = place;
            }
            touchDowns_.add(std::max(0.0, feetAMinute));
            hard_ += feetAMinute > kMostTouchDown ? 1 : 0;
            soft_ += feetAMinute < kLeastTouchDown ? 1 : 0;
            const bool outside = feetAMinute > kMostTouchDown || feetAMinute < kLeastTouchDown;
            if (outside && outside_.size() < kPlacesKept) {
                outside_.push_back(place);
            }
        }
    }
    state.wasUp = state.wasUp || pose.height > kUpFeet;
    if (state.used == 0 || pose.t - heights[(state.used - 1) % heights.size()].t >= kHeightInterval) {
        heights[state.used++ % heights.size()] = {pose.t, pose.height};
    }
}

void GroundFigures::window(const Pose& from, const Pose& to, double metresPerSecond,
                           const std::string& tail) {
    const double seconds = to.t - from.t;
    const bool near = std::abs(from.height) < kNearGround && std::abs(to.height) < kNearGround;
    if (!near || std::abs(to.height - from.height) / seconds >= kLevel) {
        return;
    }
    ++windows_;
    const double off = std::abs(to.height);
    wheels_.add(off / kFeetPerMetre);
    wheelsOff_ += off > kWheelsFeet ? 1 : 0;
    if (off / kFeetPerMetre >= wheels_.most()) {
        worstWheels_ = {tail, to.t, to.height / kFeetPerMetre};
    }
    if (!to.onGround() || metresPerSecond <= kMovingKnots * kKnotMetresPerSecond) {
        return;
    }
    const auto way = offsetMetres(from.lat, from.lon, to.lat, to.lon);
    const double course = degrees(std::atan2(way.east, way.north));
    const double mean = from.heading + angleBetween(from.heading, to.heading) / 2;
    const double angle = std::abs(angleBetween(mean, course));
    if (angle > 180 - kSidewaysDegrees) {
        ++backwards_;
    } else if (angle > kSidewaysDegrees) {
        ++sideways_;
        if (angle > worstSideways_.value) {
            worstSideways_ = {tail, to.t, angle};
        }
    }
}

nlohmann::json GroundFigures::report() const {
    const auto placeOf = [](const Place& place, const char* unit) {
        return nlohmann::json{{"tail", standin::utf8Of(place.tail)}, {"t", place.t}, {unit, place.value}};
    };
    nlohmann::json report{
        {"seconds", windows_},
        {"wheels",
         {{"p50", wheels_.quantile(0.5)},
          {"p99", wheels_.quantile(0.99)},
          {"breaches", wheelsOff_},
          {"worst", placeOf(worstWheels_, "metres")}}},
        {"sideways", {{"seconds", sideways_}, {"backwards", backwards_}}},
    };
    if (sideways_ > 0) {
        report["sideways"]["worst"] = placeOf(worstSideways_, "degrees");
    }
    if (touchDowns_.count() > 0) {
        auto outside = nlohmann::json::array();
        for (const auto& place : outside_) {
            outside.push_back(placeOf(place, "feetPerMinute"));
        }
        report["touchDown"] = {{"count", touchDowns_.count()},
                               {"p50", touchDowns_.quantile(0.5)},
                               {"tooHard", hard_},
                               {"tooSoft", soft_},
                               {"hardest", placeOf(hardest_, "feetPerMinute")},
                               {"softest", placeOf(softest_, "feetPerMinute")},
                               {"outside", outside}};
    }
    return report;
}

}  // namespace simulator
