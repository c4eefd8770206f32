// Script files: lines "SECONDS COMMAND [ARGUMENTS]", with blank lines and lines that begin with '#' passed
// over.
#pragma once

#include <string>
#include <vector>

namespace simulator {

struct ScriptCommand {
    double seconds = 0;  // since the start
    std::string name;
    std::vector<std::string> arguments;
    double number(std::size_t index, double otherwise) const;
};

// In the order of their times; gives the complaint for the user, or nothing.
std::string readScript(const std::string& file, std::vector<ScriptCommand>& commands);

}  // namespace simulator
