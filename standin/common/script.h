// Script files: lines "SECONDS COMMAND [ARGUMENTS]", with blank lines and lines that begin with '#' passed
// over. Each stand-in brings the forms of its own commands.
#pragma once

#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace standin {

// What an argument has to be; for a form with several it holds for each.
enum class Argument { kText, kNumber, kNotNegative, kPositive, kBytes };

struct CommandForm {
    std::string_view name;
    std::size_t least = 0, most = 0;  // arguments
    Argument argument = Argument::kText;
};

struct ScriptCommand {
    double seconds = 0;  // since the start
    std::string name;
    std::vector<std::string> arguments;
    double number(std::size_t index, double otherwise) const;
};

class Script {
  public:
    // Gives the complaint for the user, or nothing.
    std::string read(const std::string& file, std::span<const CommandForm> forms);
    // The next command if its time has come, in the order of the times; each one once.
    const ScriptCommand* due(double now);
    // When the next one is due.
    double nextSeconds() const {
        return next_ < commands_.size() ? commands_[next_].seconds : std::numeric_limits<double>::infinity();
    }

  private:
    std::vector<ScriptCommand> commands_;
    std::size_t next_ = 0;
};

}  // namespace standin
