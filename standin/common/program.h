// The program round a stand-in: command line, signals, the loop, and the report.
#pragma once

#include <functional>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

namespace standin {

// What run() drives, on one thread.
class StandIn {
  public:
    StandIn() = default;
    StandIn(const StandIn&) = delete;
    StandIn& operator=(const StandIn&) = delete;
    virtual ~StandIn() = default;

    // Reads the files and opens the sockets; gives the complaint for the user, or nothing.
    virtual std::string start() = 0;
    virtual int port() const = 0;
    // Waits for the next thing to do, at most so long, and does it.
    virtual void step(double longestWait) = 0;
    virtual bool ended() const = 0;
    virtual nlohmann::json report() const = 0;
    // Tells the other side that this is the end; steps go on until it has gone, for about a second at most.
    virtual void quit() {}
    virtual bool everyoneGone() const { return true; }
};

double steadySeconds();
double utcSeconds();

// Serves `--help` and complaints; the exit status when the program is over by it. `read` gives the complaint.
std::optional<int> readCommandLine(int count, char** values, const std::string& helpText, const bool& help,
                                   const std::function<std::string(const std::vector<std::string>&)>& read);

// Prints "listening PORT", runs until it ends or SIGTERM or SIGINT comes, and prints the report as one JSON
// object. Gives the exit status.
int run(StandIn& standIn);

}  // namespace standin
