#include "tools/datakit/command_line.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/text.h"

namespace skl::datakit {

namespace {

const std::vector<OptionText>& commonOptions() {
    static const std::vector<OptionText> options{
        {"--report", "FILE", "all that is wrong with the sources goes there too, a line each"},
        {"--show", "N", "so many of each kind are shown, 10 by default"},
        {"--help", "", "this text"}};
    return options;
}

const OptionText* find(const CommandText& command, std::string_view name) {
    for (const auto* options : {&command.options, &commonOptions()})
        for (const OptionText& option : *options)
            if (option.name == name) return &option;
    return nullptr;
}

}  // namespace

std::string helpOf(const CommandText& command) {
    std::string text = fmt::format("usage: datakit {} [OPTIONS]{}{}\n\n{}\n\n", command.name,
                                   command.arguments.empty() ? "" : " ", command.arguments, command.text);
    for (const auto* options : {&command.options, &commonOptions()})
        for (const OptionText& option : *options)
            text += fmt::format("  {:<24} {}\n",
                                option.value.empty() ? std::string(option.name)
                                                     : fmt::format("{} {}", option.name, option.value),
                                option.text);
    return text;
}

Arguments::Arguments(const CommandText& command, const std::vector<std::string>& words) : command_(command) {
    for (size_t i = 0; i < words.size(); ++i) {
        const std::string& word = words[i];
        if (!word.starts_with("--")) {
            rest_.push_back(word);
            continue;
        }
        const OptionText* option = find(command, word);
        if (!option) throw Misuse(fmt::format("datakit {} has no option {}", command.name, word));
        auto& values = values_[word];
        if (option->value.empty()) continue;
        if (++i == words.size()) throw Misuse(fmt::format("{} needs {}", word, option->value));
        values.push_back(words[i]);
    }
}

const std::vector<std::string>& Arguments::all(std::string_view option) const {
    static const std::vector<std::string> none;
    const auto found = values_.find(option);
    return found == values_.end() ? none : found->second;
}

std::optional<std::string> Arguments::one(std::string_view option) const {
    const auto& values = all(option);
    return values.empty() ? std::nullopt : std::optional(values.back());
}

std::string Arguments::needed(std::string_view option) const {
    if (auto value = one(option)) return *value;
    throw Misuse(fmt::format("datakit {} needs {}", command_.name, option));
}

std::optional<int> Arguments::number(std::string_view option, int low, int high) const {
    const auto text = one(option);
    if (!text) return std::nullopt;
    const auto value = gf_readInt(*text);
    const bool whole = value && std::to_string(*value) == *text;
    if (!whole || *value < low || *value > high)
        throw Misuse(fmt::format("{} takes a number of {} to {}, not '{}'", option, low, high, *text));
    return value;
}

std::vector<std::string> Arguments::list(std::string_view option) const {
    std::vector<std::string> pieces;
    for (const std::string& value : all(option))
        for (const std::string& piece : gf_splitComma(value))
            if (std::string trimmed = gf_trim(piece); !trimmed.empty()) pieces.push_back(std::move(trimmed));
    return pieces;
}

}  // namespace skl::datakit
