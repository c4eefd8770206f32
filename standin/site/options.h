// The command line of the site stand-in.
#pragma once

#include <string>
#include <vector>

#include "standin/site/faults.h"

namespace site {

struct Options {
    std::string root;
    int port = 8080;  // 0 takes any free one
    std::string script;
    std::vector<Fault> faults;  // from the start
    bool help = false;
};

// Fills the options; otherwise gives the complaint for the user.
std::string readOptions(const std::vector<std::string>& arguments, Options& options);

std::string helpText();

}  // namespace site
