// Limits between two poses, rates over windows of a second, distance from the recorded path.
#include "standin/simulator/motion.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "standin/common/text.h"
#include "standin/simulator/aircraft_class.h"
#include "standin/simulator/geo.h"

namespace simulator {

namespace {

constexpr double kStepFactor = 1.5;
constexpr double kStepMetres = 1;
constexpr double kHeadingRate = 25;  // degrees a second
constexpr double kHeadingDegrees = 1;
constexpr double kPitchRate = 5;
constexpr double kPitchDegrees = 0.5;
constexpr double kWindow = 1;
constexpr double kLongestWindow = 1.5;  // seconds; poses farther apart than that do not form a window
constexpr double kGravity = 9.80665;

}  // namespace

void LimitFigure::add(double value, double allowed, const std::string& tail, double t) {
    ++poses_;
    breaches_ += value > allowed ? 1 : 0;
    if (value - allowed > excess_) {
        excess_ = value - allowed;
        value_ = value;
        allowed_ = allowed;
        tail_ = tail;
        t_ = t;
    }
}

nlohmann::json LimitFigure::report() const {
    nlohmann::json report{{"poses", poses_}, {"breaches", breaches_}};
    if (poses_ > 0) {
        report["worst"] = {
            {"tail", standin::utf8Of(tail_)}, {"t", t_}, {"value", value_}, {"allowed", allowed_}};
    }
    return report;
}

void SpreadFigure::add(double value, const std::string& tail, double t) {
    if (values_.count() == 0 || value > values_.most()) {
        tail_ = tail;
        t_ = t;
    }
    values_.add(value);
}

nlohmann::json SpreadFigure::report(std::initializer_list<double> quantiles) const {
    nlohmann::json report{
        {"count", values_.count()}, {"max", values_.most()}, {"tail", standin::utf8Of(tail_)}, {"t", t_}};
    for (const double part : quantiles) {
        report[fmt::format("p{:.0f}", part * 100)] = values_.quantile(part);
    }
    return report;
}

void Motion::created(const SimObject& object) {
    auto& flight = flights_[object.id];
    flight.tail = object.tail;
    const auto type = feed_.typeOf(object.tail);
    flight.aircraftClass = classOf(type);
    if (flight.aircraftClass == "unknown") {
        flight.aircraftClass = classOf(object.title);
    }
}

void Motion::pose(std::uint32_t id, const Pose& pose) {
    const auto found = flights_.find(id);
    if (found == flights_.end()) {
        return;
    }
    auto& flight = found->second;
    comparePath(flight, pose);
    groundFigures_.pose(pose, flight.tail, flight.ground);
    if (!flight.posed) {
        flight.posed = true;
        ++posedFlights_;
    } else {
        compareStep(flight, pose);
    }
    const bool torn = pose.t - flight.last.t > kLongestWindow;
    if (!flight.windowOpen || torn) {
        flight.windowOpen = true;
        flight.windowStart = pose;
        flight.lastWindowSpeed = -1;
    } else if (pose.t - flight.windowStart.t >= kWindow) {
        closeWindow(flight, pose);
    }
    flight.last = pose;
}

void Motion::compareStep(const Flight& flight, const Pose& pose) {
    const auto& last = flight.last;
    const double seconds = std::max(pose.t - last.t, frame_);
    const double knots = std::max({std::abs(pose.airspeed), std::abs(last.airspeed), flight.feedKnots});
    const double metres = distanceMetres(last.lat, last.lon, pose.lat, pose.lon);
    step_.add(metres, kStepFactor * knots * kKnotMetresPerSecond * seconds + kStepMetres, flight.tail,
              pose.t);
    // With a wheel on the ground before or after, the landing gear is what turns the aircraft.
    auto& turns = last.onGround() || pose.onGround() ? groundTurns_ : airTurns_;
    turns.heading.add(std::abs(angleBetween(last.heading, pose.heading)),
                      kHeadingRate * seconds + kHeadingDegrees, flight.tail, pose.t);
    turns.pitch.add(std::abs(angleBetween(last.pitch, pose.pitch)), kPitchRate * seconds + kPitchDegrees,
                    flight.tail, pose.t);
}

void Motion::comparePath(Flight& flight, const Pose& pose) {
    if (feed_.empty() || pose.t < flight.nextSample) {
        return;
    }
    flight.nextSample = pose.t + sample_ * 0.95;
    const auto match = feed_.match(flight.tail, pose.lat, pose.lon, flight.pathHint);
    flight.feedKnots = match.knots;
    if (!match.known || pose.onGround()) {
        return;
    }
    comparedFlights_ += flight.compared ? 0 : 1;
    flight.compared = true;
    ++samples_;
    if (match.gap) {
        ++samplesInGaps_;
    } else {
        cross_.add(match.metres, flight.tail, pose.t);
    }
}

void Motion::closeWindow(Flight& flight, const Pose& pose) {
    const auto& start = flight.windowStart;
    const double seconds = pose.t - start.t;
    const double speed = distanceMetres(start.lat, start.lon, pose.lat, pose.lon) / seconds;
    if (start.onGround() == pose.onGround()) {
        auto& table = pose.onGround() ? onGround_ : air_;
        for (const auto name : {std::string_view("all"), flight.aircraftClass}) {
            auto& rates = table[std::string(name)];
            rates.yaw.add(std::abs(angleBetween(start.heading, pose.heading)) / seconds, flight.tail, pose.t);
            rates.pitch.add(std::abs(angleBetween(start.pitch, pose.pitch)) / seconds, flight.tail, pose.t);
            if (flight.lastWindowSpeed >= 0) {
                const double between = (seconds + flight.lastWindowTime) / 2;
                rates.acceleration.add(std::abs(speed - flight.lastWindowSpeed) / between / kGravity,
                                       flight.tail, pose.t);
            }
        }
    }
    groundFigures_.window(start, pose, speed, flight.tail, flight.ground);
    flight.lastWindowSpeed = speed;
    flight.lastWindowTime = seconds;
    flight.windowStart = pose;
}

void Motion::interrupt() {
    for (auto& [id, flight] : flights_) {
        flight.windowOpen = false;
        flight.ground.moved = false;
    }
}

nlohmann::json Motion::report() const {
    nlohmann::json report{{"flights", posedFlights_},
                          {"step", step_.report()},
                          {"heading", airTurns_.heading.report()},
                          {"pitch", airTurns_.pitch.report()}};
    const auto ratesOf = [](const auto& table) {
        auto classes = nlohmann::json::object();
        for (const auto& [name, rates] : table) {
            classes[name] = {{"accelerationG", rates.acceleration.report({0.99})},
                             {"yawRate", rates.yaw.report({0.99})},
                             {"pitchRate", rates.pitch.report({0.99})}};
        }
        return classes;
    };
    report["air"] = ratesOf(air_);
    if (!feed_.empty()) {
        report["crossTrack"] = cross_.report({0.5, 0.95});
        report["crossTrack"]["flights"] = comparedFlights_;
        report["crossTrack"]["leftOutShare"] =
            samples_ > 0 ? static_cast<double>(samplesInGaps_) / static_cast<double>(samples_) : 0.0;
    }
    if (groundFigures_.any()) {
        report["ground"] = ratesOf(onGround_);
        report["onGround"] = groundFigures_.report();
        report["onGround"]["heading"] = groundTurns_.heading.report();
        report["onGround"]["pitch"] = groundTurns_.pitch.report();
    }
    return report;
}

}  // namespace simulator
