// The commands of the kit.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "tools/datakit/command_line.h"
#include "tools/datakit/findings.h"

namespace skl::datakit {

/// What a command works with.
struct Job {
    const Arguments& arguments;
    Findings& findings;
    std::ostream& out;    ///< results
    std::ostream& notes;  ///< progress
};

/// A command does its work and gives the exit status. It throws Failure, Misuse, or what the system throws.
struct Command {
    CommandText text;
    int (*run)(Job& job);
};

Command airportsCommand();
Command standsCommand();
Command databaseCommand();
Command regcodesCommand();
Command encipherCommand();
Command decipherCommand();
Command versionsCommand();
Command siteCommand();
Command checkCommand();

/// The whole program: status 0 done, 1 failed or something would be refused, 2 wrong use.
int run(const std::vector<std::string>& words, std::ostream& out, std::ostream& notes);

}  // namespace skl::datakit
