// The command line of the RealTraffic stand-in.
#pragma once

#include <string>
#include <vector>

namespace realtraffic {

struct Options {
    std::string feed;
    std::string host = "127.0.0.1";
    int tcpPort = 10747;
    int trafficPort = 49005;
    int weatherPort = 49004;
    int level = 1;  // 1 or 2
    double qnh = 1013;
    double speed = 1;    // recording seconds a second
    double wait = 60;    // seconds without a link before the recording begins nevertheless
    double linger = 60;  // seconds after the end of the recording
    std::string script;
    bool help = false;
};

// Fills the options; otherwise gives the complaint for the user.
std::string readOptions(const std::vector<std::string>& arguments, Options& options);

std::string helpText();

}  // namespace realtraffic
