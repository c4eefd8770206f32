// The commands with the argument that each takes.
#include "standin/realtraffic/script.h"

#include <fmt/format.h>

#include <algorithm>
#include <fstream>
#include <limits>
#include <optional>

#include "standin/realtraffic/text.h"

namespace realtraffic {

namespace {

std::optional<ScriptCommand> commandOf(const std::vector<std::string>& fields) {
    const auto seconds = numberOf(fields[0]);
    if (!seconds || *seconds < 0 || fields.size() < 2) {
        return std::nullopt;
    }
    ScriptCommand command{*seconds, Command::kDropLink, std::numeric_limits<double>::infinity(), {}};
    const auto& name = fields[1];
    const auto arguments = fields.size() - 2;
    if (name == "raw" && arguments == 1) {
        const auto bytes = bytesOf(fields[2]);
        command.command = Command::kRaw;
        command.bytes = bytes.value_or("");
        return bytes ? std::optional(command) : std::nullopt;
    }
    if (name == "silent" && arguments == 1) {
        const auto duration = numberOf(fields[2]);
        command.command = Command::kSilent;
        command.duration = duration.value_or(-1);
        return command.duration > 0 ? std::optional(command) : std::nullopt;
    }
    if (arguments > 0) {
        return std::nullopt;
    }
    if (name == "silent") {
        command.command = Command::kSilent;
    } else if (name == "reconnect") {
        command.command = Command::kReconnect;
    } else if (name == "half-reply") {
        command.command = Command::kHalfReply;
    } else if (name != "drop-link") {
        return std::nullopt;
    }
    return command;
}

}  // namespace

std::string readScript(const std::string& file, std::vector<ScriptCommand>& commands) {
    std::ifstream in(file);
    if (!in) {
        return fmt::format("cannot read {}", file);
    }
    std::string line;
    for (int number = 1; std::getline(in, line); ++number) {
        const auto fields = words(line);
        if (fields.empty() || fields[0].front() == '#') {
            continue;
        }
        auto command = commandOf(fields);
        if (!command) {
            return fmt::format("{}, line {}: no command: {}", file, number, line);
        }
        commands.push_back(std::move(*command));
    }
    std::stable_sort(commands.begin(), commands.end(),
                     [](const auto& a, const auto& b) { return a.seconds < b.seconds; });
    return {};
}

}  // namespace realtraffic
