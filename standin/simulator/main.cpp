// The program: options, signals, the loop, and the report.
#include <fmt/format.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "standin/simulator/simulator.h"

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
    simulator::Options options;
    const auto complaint =
        simulator::readOptions(std::vector<std::string>(values + 1, values + count), options);
    if (!complaint.empty()) {
        fmt::print(stderr, "{}\n", complaint);
        return 2;
    }
    if (options.help) {
        fmt::print("{}", simulator::helpText());
        return 0;
    }
    std::signal(SIGTERM, onSignal);
    std::signal(SIGINT, onSignal);
    std::signal(SIGPIPE, SIG_IGN);

    simulator::Simulator simulator(options, steadySeconds, utcSeconds());
    if (const auto trouble = simulator.start(); !trouble.empty()) {
        fmt::print(stderr, "{}\n", trouble);
        return 2;
    }
    fmt::print("listening {}\n", simulator.port());
    std::fflush(stdout);

    constexpr double kLongestWait = 0.1;
    while (g_ending == 0 && !simulator.ended()) {
        simulator.step(kLongestWait);
    }
    const auto report = simulator.report().dump();
    simulator.quit();
    const double patience = steadySeconds() + 1.2;
    while (!simulator.everyoneGone() && steadySeconds() < patience) {
        simulator.step(0.01);
    }
    fmt::print("{}\n", report);
    return 0;
}
