// Reading a script, with each command held against its form.
#include "standin/common/script.h"

#include <algorithm>

#include "standin/common/text.h"

namespace standin {

namespace {

bool isArgument(const std::string& text, Argument argument) {
    const auto number = numberOf(text);
    switch (argument) {
        case Argument::kText:
            return true;
        case Argument::kNumber:
            return number.has_value();
        case Argument::kNotNegative:
            return number && *number >= 0;
        case Argument::kPositive:
            return number && *number > 0;
        case Argument::kBytes:
            return bytesOf(text).has_value();
    }
    return false;
}

bool fits(const ScriptCommand& command, const CommandForm& form) {
    return form.name == command.name && command.arguments.size() >= form.least &&
           command.arguments.size() <= form.most &&
           std::all_of(command.arguments.begin(), command.arguments.end(),
                       [&form](const auto& text) { return isArgument(text, form.argument); });
}

}  // namespace

double ScriptCommand::number(std::size_t index, double otherwise) const {
    return index < arguments.size() ? numberOf(arguments[index]).value_or(otherwise) : otherwise;
}

std::string Script::read(const std::string& file, std::span<const CommandForm> forms) {
    const auto complaint = readWords(file, [&](const std::vector<std::string>& words) -> std::string {
        ScriptCommand command{numberOf(words[0]).value_or(-1), words.size() > 1 ? words[1] : "", {}};
        command.arguments.assign(words.begin() + std::min<std::ptrdiff_t>(2, std::ssize(words)), words.end());
        if (command.seconds < 0 || std::none_of(forms.begin(), forms.end(), [&command](const auto& form) {
                return fits(command, form);
            })) {
            return "no command";
        }
        commands_.push_back(std::move(command));
        return {};
    });
    std::stable_sort(commands_.begin(), commands_.end(),
                     [](const auto& a, const auto& b) { return a.seconds < b.seconds; });
    return complaint;
}

const ScriptCommand* Script::due(double now) {
    return nextSeconds() <= now ? &commands_[next_++] : nullptr;
}

}  // namespace standin
