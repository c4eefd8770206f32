// Time: frames, the start of the flight, the script, and clients that come and go.
#include "standin/simulator/simulator.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace simulator {

namespace {

constexpr double kFramesCaughtUp = 0.25;  // seconds; frames later than that are left out
constexpr double kForEver = 1e12;

using standin::Argument;
constexpr auto kCommands = std::to_array<standin::CommandForm>({
    {"pause"},
    {"resume"},
    {"quit"},
    {"cut"},
    {"cut-mid-message"},
    {"stop-reading", 0, 1, Argument::kPositive},
    {"flight-loaded"},
    {"teleport", 2, 2, Argument::kNumber},
    {"foreign-object"},
    {"late-replies", 1, 1, Argument::kNotNegative},
    {"wrong-name", 0, 1},
});

}  // namespace

Simulator::Simulator(Options options, std::function<double()> clock, double utcAtStart)
    : options_(std::move(options)),
      clock_(std::move(clock)),
      startClock_(clock_()),
      utcAtStart_(utcAtStart),
      world_(options_),
      trace_(options_.traceHz),
      motion_(1 / options_.fps, 1 / options_.traceHz, feed_),
      applicationName_(options_.sim == 2024 ? "SunRise" : "KittyHawk") {
    world_.utc = utcAtStart_;
    handlers_.opened = [this](int connection) {
        ++counts_.clients;
        clients_.try_emplace(connection);
    };
    handlers_.packet = [this](int connection, std::string_view packet) { handle(connection, packet); };
    handlers_.closed = [this](int connection) { disconnected(connection); };
}

std::string Simulator::start() {
    std::string complaint;
    if (!options_.script.empty()) {
        complaint = script_.read(options_.script, kCommands);
    }
    if (complaint.empty() && !options_.userPath.empty()) {
        complaint = world_.readUserPath(options_.userPath);
    }
    if (complaint.empty() && !options_.feed.empty()) {
        complaint = feed_.read(options_.feed);
    }
    if (complaint.empty() && !options_.trace.empty()) {
        complaint = trace_.open(options_.trace);
    }
    return complaint.empty() ? server_.listen(options_.port) : complaint;
}

double Simulator::untilNext() const {
    double next = std::min(nextFrame_, script_.nextSeconds());
    for (const auto& [connection, client] : clients_) {
        if (!client.late.empty()) {
            next = std::min(next, client.late.front().first);
        }
    }
    return std::max(0.0, next - (clock_() - startClock_));
}

void Simulator::step(double longestWait) {
    const bool reading = now_ >= readAgain_;
    server_.wait(std::min(untilNext(), longestWait), reading);
    now_ = clock_() - startClock_;
    world_.utc = utcAtStart_ + now_;
    server_.receive(handlers_, reading);
    runDue();
    server_.flush(handlers_);
}

void Simulator::runDue() {
    while (const auto* command = script_.due(now_)) {
        runScript(*command);
    }
    if (!flightStarted_ && flightDue_ >= 0 && now_ >= flightDue_) {
        flightStarted_ = true;
        flightStart_ = now_;
        setRunning(true);
    }
    nextFrame_ = std::max(nextFrame_, now_ - kFramesCaughtUp);
    while (nextFrame_ <= now_) {
        frame();
        nextFrame_ += 1 / options_.fps;
    }
    each([this](int connection, Client& client) {
        while (!client.late.empty() && client.late.front().first <= now_) {
            send(connection, client.late.front().second);
            client.late.pop_front();
        }
    });
    if (options_.seconds > 0 && now_ >= options_.seconds) {
        quit();
    }
}

void Simulator::frame() {
    ++counts_.frames;
    counts_.mostInFrame = std::max(counts_.mostInFrame, counts_.packetsInFrame);
    counts_.packetsInFrame = 0;
    if (running_) {
        world_.advance(1 / options_.fps);
        for (const auto& [id, object] : world_.objects) {
            if (object.owner != 0) {
                trace_.still(flightTime(), world_.utc, object);
            }
        }
    }
    each([this](int connection, Client& client) {
        for (const auto& [event, name] : client.subscriptions) {
            if (name == "frame") {
                send(connection, message(client.version, kRecvFrame)
                                     .u32(kUnused)
                                     .u32(event)
                                     .u32(0)
                                     .f32(static_cast<float>(options_.fps))
                                     .f32(1.0F)
                                     .finish());
            }
        }
        serveRequests(connection, client, running_);
    });
    if (nextFrame_ >= nextSecond_) {
        nextSecond_ = std::floor(nextFrame_) + 1;
        systemEvent("1sec", 0);
        if (static_cast<long>(nextSecond_) % 4 == 0) {
            systemEvent("4sec", 0);
        }
        overlaps_.look(flightTime(), world_);
        trace_.flush();
    }
}

void Simulator::setRunning(bool running) {
    if (running_ == running) {
        return;
    }
    running_ = running;
    motion_.interrupt();
    systemEvent("sim", running ? 1 : 0);
    systemEvent(running ? "simstart" : "simstop", 0);
    systemEvent("pause", running ? 0 : 1);
    systemEvent(running ? "unpaused" : "paused", 0);
}

void Simulator::runScript(const standin::ScriptCommand& command) {
    const auto& name = command.name;
    if (name == "pause" || name == "resume") {
        if (flightStarted_) {
            setRunning(name == "resume");
        }
    } else if (name == "quit") {
        quit();
    } else if (name == "cut") {
        each([this](int connection, Client&) { server_.close(connection, false); });
    } else if (name == "cut-mid-message") {
        each([this](int connection, Client& client) {
            const auto whole =
                message(client.version, kRecvFrame).u32(kUnused).u32(0).u32(0).f32(30).f32(1).finish();
            send(connection, whole.substr(0, 19));
            server_.close(connection, true);
        });
    } else if (name == "stop-reading") {
        readAgain_ = now_ + command.number(0, kForEver);
    } else if (name == "flight-loaded") {
        each([this](int connection, Client& client) {
            for (const auto& [event, subscribed] : client.subscriptions) {
                if (subscribed == "flightloaded") {
                    send(connection, message(client.version, kRecvFilename)
                                         .u32(kUnused)
                                         .u32(event)
                                         .u32(0)
                                         .text("flights\\other\\MainMenu.FLT", 260)
                                         .u32(0)
                                         .finish());
                }
            }
        });
    } else if (name == "teleport") {
        world_.teleport(command.number(0, 0), command.number(1, 0));
        systemEvent("positionchanged", 0);
    } else if (name == "foreign-object") {
        foreignObject();
    } else if (name == "late-replies") {
        lateReplies_ = command.number(0, 0);
    } else if (name == "wrong-name") {
        applicationName_ = command.arguments.empty() ? "OtherSimulator" : command.arguments[0];
    }
}

void Simulator::quit() {
    if (!ended_) {
        ended_ = true;
        each([this](int connection, Client& client) {
            send(connection, message(client.version, kRecvQuit).finish());
            server_.close(connection, true);
        });
        server_.flush(handlers_);
        trace_.flush();
    }
}

void Simulator::each(const std::function<void(int, Client&)>& action) {
    for (auto& [connection, client] : clients_) {
        if (client.opened) {
            action(connection, client);
        }
    }
}

void Simulator::disconnected(int connection) {
    clients_.erase(connection);
    if (ended_) {
        return;  // what was alive at the end stays in the report
    }
    std::vector<std::uint32_t> orphans;
    for (const auto& [id, object] : world_.objects) {
        if (object.owner == connection) {
            orphans.push_back(id);
        }
    }
    counts_.orphaned += orphans.size();
    for (const auto id : orphans) {
        removeObject(id);
    }
}

}  // namespace simulator
