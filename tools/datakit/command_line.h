// The command line: a command, its options by their names, and what is left over. Each command tells its
// options once, and its help is made of that.
#pragma once

#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace skl::datakit {

/// Wrong use: status 2; what() is for the user.
class Misuse : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct OptionText {
    std::string_view name;   ///< with its dashes
    std::string_view value;  ///< what follows it, for the help; empty: nothing does
    std::string_view text;
};

struct CommandText {
    std::string_view name, arguments;  ///< `arguments`: what stands behind the options, for the help
    std::string_view summary;          ///< a line for the list of commands
    std::string_view text;             ///< what it reads, does and makes
    std::vector<OptionText> options;   ///< --report, --show and --help are added
};

std::string helpOf(const CommandText& command);

class Arguments {
  public:
    /// Throws Misuse for an option that the command has not, or without its value.
    Arguments(const CommandText& command, const std::vector<std::string>& words);
    bool has(std::string_view option) const { return values_.contains(option); }
    /// In the order given.
    const std::vector<std::string>& all(std::string_view option) const;
    std::optional<std::string> one(std::string_view option) const;  ///< the last
    std::string needed(std::string_view option) const;              ///< throws Misuse
    /// A whole number within the bounds; throws Misuse for another text.
    std::optional<int> number(std::string_view option, int low, int high) const;
    /// The pieces of a comma list; empty without the option.
    std::vector<std::string> list(std::string_view option) const;
    const std::vector<std::string>& rest() const { return rest_; }

  private:
    const CommandText& command_;
    std::map<std::string, std::vector<std::string>, std::less<>> values_;
    std::vector<std::string> rest_;
};

}  // namespace skl::datakit
