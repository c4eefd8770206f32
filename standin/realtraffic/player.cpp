// The steps of the player, and its report.
#include "standin/realtraffic/player.h"

#include <poll.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <ctime>
#include <nlohmann/json.hpp>

#include "standin/common/text.h"

namespace realtraffic {

namespace {

constexpr double kPressureSeconds = 5;
constexpr std::size_t kEventsKept = 1000;
constexpr const char* kVersion = "10.0.240";
constexpr double kForEver = 1e12;

using standin::Argument;
constexpr auto kCommands = std::to_array<standin::CommandForm>({
    {"drop-link"},
    {"reconnect"},
    {"silent", 0, 1, Argument::kPositive},
    {"half-reply"},
    {"raw", 1, 1, Argument::kBytes},
});

const char* nameOf(Kind kind) {
    switch (kind) {
        case Kind::kAir:
            return "air";
        case Kind::kGround:
            return "ground";
        case Kind::kVehicle:
            return "vehicles";
        case Kind::kBroken:
            break;
    }
    return "broken";
}

}  // namespace

Player::Player(Options options, std::function<double()> clock, double utcAtStart)
    : options_(std::move(options)),
      clock_(std::move(clock)),
      startClock_(clock_()),
      utcAtStart_(utcAtStart),
      link_(options_.host, options_.tcpPort),
      traffic_(options_.host, options_.trafficPort),
      weather_(options_.host, options_.weatherPort) {}

std::string Player::start() {
    auto complaint = recording_.read(options_.feed);
    if (complaint.empty() && !options_.script.empty()) {
        complaint = script_.read(options_.script, kCommands);
    }
    if (complaint.empty()) {
        complaint = traffic_.open();
    }
    return complaint.empty() ? weather_.open() : complaint;
}

void Player::step(double longestWait) {
    now_ = clock_() - startClock_;
    wait(std::min(longestWait, untilNext()));
    now_ = clock_() - startClock_;
    while (const auto* command = script_.due(now_)) {
        runScript(*command);
    }
    serveLink();
    if (!playing() && now_ >= options_.wait) {
        note("begins without a link");
        begin();
    }
    if (playing()) {
        sendPressure();
        sendRecords();
    }
}

double Player::untilNext() const {
    double next = std::min(script_.nextSeconds(), now_ + 1);
    if (playing()) {
        next = std::min(next, nextPressure_);
        if (nextLine_ < recording_.size()) {
            next = std::min(next, dueAt(recording_.secondsOf(nextLine_)));
        }
    }
    return std::max(0.0, next - now_);
}

void Player::wait(double seconds) const {
    pollfd socket{link_.socket(), static_cast<short>(link_.connecting() ? POLLOUT : POLLIN), 0};
    timespec limit{};
    limit.tv_nsec = static_cast<long>(std::clamp(seconds, 0.0, 0.999) * 1e9);
    ::ppoll(&socket, 1, &limit, nullptr);
}

void Player::runScript(const standin::ScriptCommand& command) {
    const auto& name = command.name;
    if (name == "drop-link") {
        if (link_.up()) {
            note("dropped");
        }
        link_.close();
        linkWanted_ = false;
    } else if (name == "reconnect") {
        linkWanted_ = true;
    } else if (name == "silent") {
        silentUntil_ = now_ + command.number(0, kForEver);
    } else if (name == "half-reply") {
        halfReply_ = true;
    } else if (name == "raw") {
        ++(traffic_.send(standin::bytesOf(command.arguments[0]).value_or("")) ? counts_.raw : counts_.unsent);
    }
}

void Player::serveLink() {
    if (!linkWanted_) {
        return;
    }
    if (link_.open(now_)) {
        note("up");
    }
    bool lost = false;
    for (const auto& command : link_.receive(lost)) {
        handle(command);
    }
    if (lost) {
        note("lost");
    }
}

void Player::handle(std::string_view command) {
    constexpr std::string_view kPosition = "Qs121=";
    constexpr std::string_view kTime = "Qs123=";
    if (command == "Qs999=version") {
        ++counts_.versions;
        answerVersion();
        if (!playing()) {
            begin();
        }
    } else if (command.starts_with(kPosition)) {
        const auto position = positionOf(command.substr(kPosition.size()));
        ++(position ? counts_.positions : counts_.badPositions);
        lastPosition_ = position ? position : lastPosition_;
    } else if (command.starts_with(kTime)) {
        ++counts_.times;
        lastTime_ = command.substr(kTime.size());
    } else if (command == "exit") {
        ++counts_.exits;
        note("exit");
    } else if (counts_.unknown++ == 0) {
        firstUnknown_ = command;
    }
}

void Player::answerVersion() {
    if (silent()) {
        return;
    }
    const auto answer = nlohmann::json{{"level", options_.level}, {"version", kVersion}}.dump() + "\r\n";
    const auto sent = halfReply_ ? answer.substr(0, answer.size() / 2) : answer;
    halfReply_ = false;
    if (!link_.send(sent)) {
        note("lost");
    }
}

void Player::begin() {
    begun_ = now_;
    nextPressure_ = now_;
    shift_ = std::llround(utcAtStart_ + now_ - recording_.start());
}

void Player::sendRecords() {
    for (; nextLine_ < recording_.size(); ++nextLine_) {
        const double due = dueAt(recording_.secondsOf(nextLine_));
        if (due > now_) {
            return;
        }
        if (silent()) {
            ++counts_.lost;
            continue;
        }
        if (traffic_.send(recording_.text(nextLine_, shift_))) {
            ++counts_.records[recording_.kindOf(nextLine_)];
            counts_.latest = std::max(counts_.latest, now_ - due);
        } else {
            ++counts_.unsent;
        }
    }
}

void Player::sendPressure() {
    if (now_ < nextPressure_) {
        return;
    }
    nextPressure_ += kPressureSeconds * std::floor((now_ - nextPressure_) / kPressureSeconds + 1);
    if (silent()) {
        return;
    }
    // A whole number goes out as one.
    const bool whole = options_.qnh == std::floor(options_.qnh);
    const nlohmann::json qnh =
        whole ? nlohmann::json(std::llround(options_.qnh)) : nlohmann::json(options_.qnh);
    if (weather_.send(nlohmann::json{{"QNH", qnh}}.dump())) {
        ++counts_.weather;
    } else {
        ++counts_.unsent;
    }
}

bool Player::ended() const {
    return playing() && nextLine_ == recording_.size() &&
           now_ >= dueAt(recording_.seconds()) + options_.linger;
}

void Player::note(std::string event) {
    if (++counts_.events <= kEventsKept) {
        events_.emplace_back(now_, std::move(event));
    }
}

nlohmann::json Player::report() const {
    auto records = nlohmann::json::object();
    std::uint64_t sent = 0;
    for (const auto kind : {Kind::kAir, Kind::kGround, Kind::kVehicle, Kind::kBroken}) {
        const auto found = counts_.records.find(kind);
        records[nameOf(kind)] = found == counts_.records.end() ? 0 : found->second;
        sent += found == counts_.records.end() ? 0 : found->second;
    }
    auto events = nlohmann::json::array();
    for (const auto& [t, event] : events_) {
        events.push_back({{"t", t}, {"event", event}});
    }
    nlohmann::json report{
        {"seconds", now_},
        {"lines", recording_.size()},
        {"recordingSeconds", recording_.seconds()},
        {"recordingStart", recording_.start()},
        {"speed", options_.speed},
        {"sent", sent},
        {"byKind", records},
        {"raw", counts_.raw},
        {"weather", counts_.weather},
        {"lostInSilence", counts_.lost},
        {"unsent", counts_.unsent},
        {"latestSeconds", counts_.latest},
        {"positionReports", counts_.positions},
        {"badPositionReports", counts_.badPositions},
        {"versionQuestions", counts_.versions},
        {"timeReports", counts_.times},
        {"exits", counts_.exits},
        {"unknownCommands", counts_.unknown},
        {"bytes",
         {{"traffic", traffic_.bytesSent},
          {"weather", weather_.bytesSent},
          {"linkSent", link_.bytesSent},
          {"linkReceived", link_.bytesReceived}}},
        {"linkEvents", events},
    };
    if (playing()) {
        report["recordingBegan"] = begun_;
        report["recordingBeganUtc"] = utcAtStart_ + begun_;
        report["stampShift"] = shift_;
    }
    if (lastPosition_) {
        report["lastPosition"] = lastPosition_->report();
    }
    if (counts_.times > 0) {
        report["lastTime"] = standin::utf8Of(lastTime_);
    }
    if (counts_.unknown > 0) {
        report["firstUnknown"] = standin::utf8Of(firstUnknown_);
    }
    return report;
}

}  // namespace realtraffic
