// The commands with the arguments that each takes.
#include "standin/simulator/script.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <string_view>

#include "standin/simulator/text.h"

namespace simulator {

namespace {

struct Form {
    std::string_view name;
    std::size_t least;
    std::size_t most;
    bool numbers;
};

constexpr auto kForms = std::to_array<Form>({
    {"pause", 0, 0, false},
    {"resume", 0, 0, false},
    {"quit", 0, 0, false},
    {"cut", 0, 0, false},
    {"cut-mid-message", 0, 0, false},
    {"stop-reading", 0, 1, true},
    {"flight-loaded", 0, 0, false},
    {"teleport", 2, 2, true},
    {"foreign-object", 0, 0, false},
    {"late-replies", 1, 1, true},
    {"wrong-name", 0, 1, false},
});

bool isCommand(const ScriptCommand& command) {
    return std::any_of(kForms.begin(), kForms.end(), [&command](const Form& form) {
        return form.name == command.name && command.arguments.size() >= form.least &&
               command.arguments.size() <= form.most &&
               (!form.numbers || std::all_of(command.arguments.begin(), command.arguments.end(),
                                             [](const auto& text) { return numberOf(text).has_value(); }));
    });
}

}  // namespace

double ScriptCommand::number(std::size_t index, double otherwise) const {
    return index < arguments.size() ? numberOf(arguments[index]).value_or(otherwise) : otherwise;
}

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
        const auto seconds = numberOf(fields[0]);
        ScriptCommand command{
            seconds.value_or(-1),
            fields.size() > 1 ? fields[1] : "",
            {fields.begin() + std::min<std::ptrdiff_t>(2, std::ssize(fields)), fields.end()}};
        if (command.seconds < 0 || !isCommand(command)) {
            return fmt::format("{}, line {}: no command: {}", file, number, line);
        }
        commands.push_back(std::move(command));
    }
    std::stable_sort(commands.begin(), commands.end(),
                     [](const auto& a, const auto& b) { return a.seconds < b.seconds; });
    return {};
}

}  // namespace simulator
