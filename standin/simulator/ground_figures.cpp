// Wheels, touch-downs and sliding.
#include "standin/simulator/ground_figures.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "standin/common/text.h"
#include "standin/simulator/geo.h"

namespace simulator {

namespace {

constexpr double kUpFeet = 20;           // higher than that it flew
constexpr double kHeightInterval = 0.1;  // seconds between two remembered heights
constexpr double kContactSeconds = 0.5;  // the descent just before the contact
constexpr double kNearGround = 10;       // feet; what begins within them stands on the ground
constexpr double kWheelsFeet = 0.5 * kFeetPerMetre;
constexpr double kLiftOffSeconds = 10;  // who is not up by then hovers
constexpr double kLeastTouchDown = 60;  // feet a minute
constexpr double kMostTouchDown = 400;
constexpr double kMovingKnots = 5;
constexpr double kMovingMetres = 0.3;  // in a window; below that the direction means nothing
constexpr double kSidewaysDegrees = 25;
constexpr double kCurveRate = 2;  // degrees a second
constexpr double kAfterCurve = 3;
constexpr std::size_t kPlacesKept = 20;

}  // namespace

void GroundFigures::pose(const Pose& pose, const std::string& tail, GroundState& state) {
    state.down = state.down || (!state.seen && std::abs(pose.height) < kNearGround);
    state.seen = true;
    if (state.wasUp && pose.onGround()) {
        touchDown(pose, tail, state);
        state.wasUp = false;
        state.down = true;
    }
    state.lowSince = !state.wasUp || pose.height > kNearGround ? -1
                     : state.lowSince < 0                      ? pose.t
                                                               : state.lowSince;
    wheels(pose, tail, state);
    if (pose.height > kUpFeet) {
        state.wasUp = true;
        state.down = false;
        state.rising = 0;
    }
    auto& heights = state.heights;
    if (state.used == 0 || pose.t - heights[(state.used - 1) % heights.size()].t >= kHeightInterval) {
        heights[state.used++ % heights.size()] = {pose.t, pose.height};
    }
}

void GroundFigures::touchDown(const Pose& pose, const std::string& tail, const GroundState& state) {
    const auto& heights = state.heights;
    const GroundState::Height* oldest = nullptr;
    for (std::size_t i = 0; i < std::min(state.used, heights.size()); ++i) {
        const auto& height = heights[i];
        if (pose.t - height.t <= kContactSeconds + kHeightInterval &&
            (oldest == nullptr || height.t < oldest->t)) {
            oldest = &height;
        }
    }
    if (oldest == nullptr || pose.t <= oldest->t) {
        return;
    }
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
    const double floated = state.lowSince < 0 ? 0 : pose.t - state.lowSince;
    if (floats_.count() == 0 || floated > longestFloat_.value) {
        longestFloat_ = {tail, pose.t, floated};
    }
    floats_.add(floated);
}

void GroundFigures::wheels(const Pose& pose, const std::string& tail, GroundState& state) {
    if (!state.down) {
        return;
    }
    if (pose.height > kWheelsFeet) {
        state.risingSince = state.rising == 0 ? pose.t : state.risingSince;
        if (state.rising == 0 || pose.height > state.highest) {
            state.highest = pose.height;
            state.highestT = pose.t;
        }
        ++state.rising;
        if (pose.t - state.risingSince >= kLiftOffSeconds) {
            notRisen(tail, state);
        }
        return;
    }
    notRisen(tail, state);
    wheels_.add(std::abs(pose.height) / kFeetPerMetre);
    if (pose.height < -kWheelsFeet) {
        wheelsOff(tail, pose.t, pose.height, 1);
    } else if (std::abs(pose.height / kFeetPerMetre) > std::abs(worstWheels_.value)) {
        worstWheels_ = {tail, pose.t, pose.height / kFeetPerMetre};
    }
}

void GroundFigures::notRisen(const std::string& tail, GroundState& state) {
    if (state.rising > 0) {
        wheels_.add(state.highest / kFeetPerMetre);
        wheelsOff(tail, state.highestT, state.highest, state.rising);
        state.rising = 0;
    }
}

void GroundFigures::wheelsOff(const std::string& tail, double t, double feet, std::uint64_t poses) {
    wheelsOff_ += poses;
    if (std::abs(feet / kFeetPerMetre) > std::abs(worstWheels_.value)) {
        worstWheels_ = {tail, t, feet / kFeetPerMetre};
    }
}

void GroundFigures::window(const Pose& from, const Pose& to, double metresPerSecond, const std::string& tail,
                           GroundState& state) {
    const double seconds = to.t - from.t;
    if (!from.onGround() || !to.onGround() || metresPerSecond * seconds < kMovingMetres) {
        state.moved = false;
        return;
    }
    ++windows_;
    const auto way = offsetMetres(from.lat, from.lon, to.lat, to.lon);
    const double course = degrees(std::atan2(way.east, way.north));
    if (state.moved && std::abs(angleBetween(state.course, course)) > kCurveRate * seconds) {
        state.curveUntil = to.t + kAfterCurve;
    }
    state.moved = true;
    state.course = course;
    if (metresPerSecond <= kMovingKnots * kKnotMetresPerSecond) {
        return;
    }
    const double mean = from.heading + angleBetween(from.heading, to.heading) / 2;
    const double angle = std::abs(angleBetween(mean, course));
    if (angle > 180 - kSidewaysDegrees) {
        ++backwards_;
    } else if (angle > kSidewaysDegrees) {
        if (to.t <= state.curveUntil) {
            ++inCurves_;
        } else {
            slide(tail, to.t, std::min(angle, 180 - angle));
        }
    }
}

void GroundFigures::slide(const std::string& tail, double t, double angle) {
    ++sideways_;
    if (angle > worstSideways_.value) {
        worstSideways_ = {tail, t, angle};
    }
    if (slides_.size() < kPlacesKept || slides_.contains(tail)) {
        auto& slide = slides_[tail];
        ++slide.seconds;
        if (angle > slide.degrees) {
            slide.t = t;
            slide.degrees = angle;
        }
    }
}

nlohmann::json GroundFigures::slides() const {
    auto places = nlohmann::json::array();
    for (const auto& [tail, slide] : slides_) {
        places.push_back({{"tail", standin::utf8Of(tail)},
                          {"t", slide.t},
                          {"degrees", slide.degrees},
                          {"seconds", slide.seconds}});
    }
    return places;
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
        {"sideways",
         {{"seconds", sideways_}, {"inCurves", inCurves_}, {"backwards", backwards_}, {"places", slides()}}},
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
                               {"longestFloat", placeOf(longestFloat_, "seconds")},
                               {"outside", outside}};
    }
    return report;
}

}  // namespace simulator
