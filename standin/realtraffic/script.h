// Script files: lines "SECONDS COMMAND [ARGUMENT]", with blank lines and lines that begin with '#' passed
// over.
#pragma once

#include <string>
#include <vector>

namespace realtraffic {

enum class Command { kDropLink, kReconnect, kSilent, kHalfReply, kRaw };

struct ScriptCommand {
    double seconds = 0;  // since the start
    Command command = Command::kDropLink;
    double duration = 0;  // of kSilent
    std::string bytes;    // of kRaw
};

// In the order of their times; gives the complaint for the user, or nothing.
std::string readScript(const std::string& file, std::vector<ScriptCommand>& commands);

}  // namespace realtraffic
