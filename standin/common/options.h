// The command line: each option by its name, with a setter that takes its value or refuses it.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace standin {

// False when the text is no value for the option.
using Setter = std::function<bool(const std::string&)>;

Setter number(double& target, double low, double high);
Setter number(std::optional<double>& target, double low, double high);
Setter whole(int& target, int low, int high);
Setter text(std::string& target);  // any but an empty one
Setter yesNo(bool& target);        // "1" or "0"

// Sets what is given; `help` when that is asked for, which ends the reading. Gives the complaint for the
// user, or nothing.
std::string readOptions(const std::vector<std::string>& arguments,
                        const std::map<std::string, Setter>& setters, bool& help);

}  // namespace standin
