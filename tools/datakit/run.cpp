// The program: picks the command, serves --help, and turns what is thrown into a message and a status.
#include <fmt/format.h>

#include <algorithm>
#include <exception>

#include "tools/datakit/commands.h"

namespace skl::datakit {

namespace {

constexpr int defaultShown = 10, mostShown = 1'000'000;

const std::vector<Command>& commands() {
    static const std::vector<Command> all{airportsCommand(), standsCommand(),   databaseCommand(),
                                          regcodesCommand(), encipherCommand(), decipherCommand(),
                                          versionsCommand(), siteCommand(),     checkCommand()};
    return all;
}

std::string help() {
    std::string text =
        "usage: datakit COMMAND [OPTIONS] ...\n\n"
        "Makes the data files that Skylantern reads, out of open sources, and lays them out as a data site.\n"
        "docs/data-site.md tells the whole way.\n\n";
    for (const Command& command : commands())
        text += fmt::format("  {:<10} {}\n", command.text.name, command.text.summary);
    return text + "\ndatakit COMMAND --help tells of one. Exit status 0 done, 1 failed, 2 wrong use.\n";
}

bool asksForHelp(const std::vector<std::string>& words) {
    return std::any_of(words.begin(), words.end(),
                       [](const std::string& word) { return word == "--help" || word == "-h"; });
}

int runCommand(const Command& command, const std::vector<std::string>& words, std::ostream& out,
               std::ostream& notes) {
    if (asksForHelp(words)) {
        out << helpOf(command.text);
        return 0;
    }
    const Arguments arguments(command.text, words);
    Findings findings(notes,
                      static_cast<uint64_t>(arguments.number("--show", 0, mostShown).value_or(defaultShown)),
                      arguments.one("--report").value_or(""));
    Job job{arguments, findings, out, notes};
    try {
        const int status = command.run(job);
        findings.close();
        return status;
    } catch (...) {
        // What was found before may tell why.
        findings.close();
        throw;
    }
}

}  // namespace

int run(const std::vector<std::string>& words, std::ostream& out, std::ostream& notes) {
    std::string command;
    try {
        if (words.empty()) throw Misuse("a command is needed");
        if (asksForHelp({words[0]}) || words[0] == "help") {
            out << help();
            return 0;
        }
        for (const Command& known : commands()) {
            if (known.text.name != words[0]) continue;
            command = words[0] + ' ';
            return runCommand(known, {words.begin() + 1, words.end()}, out, notes);
        }
        throw Misuse(fmt::format("'{}' is no command", words[0]));
    } catch (const Misuse& misuse) {
        notes << fmt::format("datakit: {}; see datakit {}--help\n", misuse.what(), command);
        return 2;
    } catch (const std::exception& error) {
        notes << fmt::format("datakit: {}\n", error.what());
        return 1;
    }
}

}  // namespace skl::datakit
