// Setters, and the walk over the arguments.
#include "standin/common/options.h"

#include <fmt/format.h>

#include "standin/common/text.h"

namespace standin {

Setter number(double& target, double low, double high) {
    return [&target, low, high](const std::string& text) {
        const auto value = numberOf(text);
        if (!value || *value < low || *value > high) {
            return false;
        }
        target = *value;
        return true;
    };
}

Setter number(std::optional<double>& target, double low, double high) {
    return [&target, low, high](const std::string& text) {
        double value = 0;
        if (!number(value, low, high)(text)) {
            return false;
        }
        target = value;
        return true;
    };
}

Setter whole(int& target, int low, int high) {
    return [&target, low, high](const std::string& text) {
        double value = 0;
        if (!number(value, low, high)(text) || value != static_cast<int>(value)) {
            return false;
        }
        target = static_cast<int>(value);
        return true;
    };
}

Setter text(std::string& target) {
    return [&target](const std::string& value) {
        target = value;
        return !value.empty();
    };
}

Setter yesNo(bool& target) {
    return [&target](const std::string& value) {
        target = value == "1";
        return value == "0" || value == "1";
    };
}

std::string readOptions(const std::vector<std::string>& arguments,
                        const std::map<std::string, Setter>& setters, bool& help) {
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const auto& name = arguments[i];
        if (name == "--help" || name == "-h") {
            help = true;
            return {};
        }
        const auto setter = setters.find(name);
        if (setter == setters.end()) {
            return fmt::format("unknown option {}, see --help", name);
        }
        if (++i == arguments.size()) {
            return fmt::format("{} needs a value, see --help", name);
        }
        if (!setter->second(arguments[i])) {
            return fmt::format("{} is no value for {}, see --help", arguments[i], name);
        }
    }
    return {};
}

}  // namespace standin
