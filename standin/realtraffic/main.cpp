// The program: options, signals, the loop, and the report.
#include <fmt/format.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "standin/realtraffic/player.h"

namespace {

volatile std::sig_atomic_t g_ending = 0;

void onSignal(int) {
    g_ending = 1;
}

double steadySeconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

double utcSeconds() {
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

}  // namespace

int main(int count, char** values) {
    realtraffic::Options options;
    const auto complaint =
        realtraffic::readOptions(std::vector<std::string>(values + 1, values + count), options);
    if (!complaint.empty()) {
        fmt::print(stderr, "{}\n", complaint);
        return 2;
    }
    if (options.help) {
        fmt::print("{}", realtraffic::helpText());
        return 0;
    }
    std::signal(SIGTERM, onSignal);
    std::signal(SIGINT, onSignal);
    std::signal(SIGPIPE, SIG_IGN);

    realtraffic::Player player(options, steadySeconds, utcSeconds());
    if (const auto trouble = player.start(); !trouble.empty()) {
        fmt::print(stderr, "{}\n", trouble);
        return 2;
    }
    fmt::print("listening {}\n", options.tcpPort);
    std::fflush(stdout);

    constexpr double kLongestWait = 0.1;
    while (g_ending == 0 && !player.ended()) {
        player.step(kLongestWait);
    }
    fmt::print("{}\n", player.report().dump());
    return 0;
}
