// The command line of the simulator stand-in.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace simulator {

struct Options {
    int port = 2048;  // 0: any free one
    int sim = 2020;   // 2020 or 2024
    double lat = 51.4706;
    double lon = -0.4619;
    std::optional<double> alt;  // feet, centre of gravity of the user's aircraft
    double heading = 90;        // degrees true
    bool onGround = true;
    double fps = 30;
    double seconds = 0;               // 0: until a signal
    std::optional<double> elevation;  // feet of the ground at the start position
    double slope = 0;                 // percent, rising to the north
    std::string refuse;               // titles that contain this are refused
    std::string userPath;
    std::string trace;
    double traceHz = 5;
    std::string script;
    std::string feed;
    bool help = false;
};

// Fills the options; otherwise gives the complaint for the user.
std::string readOptions(const std::vector<std::string>& arguments, Options& options);

std::string helpText();

}  // namespace simulator
