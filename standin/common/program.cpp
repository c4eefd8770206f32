// Signals and the loop.
#include "standin/common/program.h"

#include <fmt/format.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <nlohmann/json.hpp>

namespace standin {

namespace {

constexpr int kWrongUse = 2;
constexpr double kLongestWait = 0.1;
constexpr double kPatience = 1.2;  // seconds for the other side to go

volatile std::sig_atomic_t g_ending = 0;

void onSignal(int) {
    g_ending = 1;
}

}  // namespace

double steadySeconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

double utcSeconds() {
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

std::optional<int> readCommandLine(int count, char** values, const std::string& helpText, const bool& help,
                                   const std::function<std::string(const std::vector<std::string>&)>& read) {
    const auto complaint = read(std::vector<std::string>(values + 1, values + count));
    if (!complaint.empty()) {
        fmt::print(stderr, "{}\n", complaint);
        return kWrongUse;
    }
    if (help) {
        fmt::print("{}", helpText);
        return 0;
    }
    return std::nullopt;
}

int run(StandIn& standIn) {
    std::signal(SIGTERM, onSignal);
    std::signal(SIGINT, onSignal);
    std::signal(SIGPIPE, SIG_IGN);
    if (const auto complaint = standIn.start(); !complaint.empty()) {
        fmt::print(stderr, "{}\n", complaint);
        return kWrongUse;
    }
    fmt::print("listening {}\n", standIn.port());
    std::fflush(stdout);
    while (g_ending == 0 && !standIn.ended()) {
        standIn.step(kLongestWait);
    }
    const auto report = standIn.report().dump();
    standIn.quit();
    for (const double end = steadySeconds() + kPatience; !standIn.everyoneGone() && steadySeconds() < end;) {
        standIn.step(0.01);
    }
    fmt::print("{}\n", report);
    return 0;
}

}  // namespace standin
