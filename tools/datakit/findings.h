// What is wrong with the sources, told with file, line and what was done about it. Of each kind the first few
// are shown and all are counted; a report file takes them all. And the sign of life of long work.
#pragma once

#include <chrono>
#include <cstdint>
#include <fstream>
#include <map>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>

#include "tools/datakit/output_file.h"

namespace skl::datakit {

/// Ends a command with status 1; what() is for the user.
class Failure : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct Place {
    std::string file;
    uint64_t line = 0;  ///< 0: the file as a whole
    std::string text() const;
};

class Findings {
  public:
    /// Shows so many of each kind on `out`; with a path the report gets them all.
    Findings(std::ostream& out, uint64_t shown, const std::string& reportPath);
    /// `kind` is what is counted, such as "doubled ident"; `text` tells this one and what was done.
    void tell(std::string_view kind, const Place& place, std::string_view text);
    uint64_t count(std::string_view kind) const;
    /// How many of each kind there were; puts the report in its place. Throws Failure.
    void close();

  private:
    std::ostream& out_;
    uint64_t shown_;
    std::map<std::string, uint64_t, std::less<>> counts_;
    std::unique_ptr<OutputFile> report_;
};

/// A line every second while work goes on; none for short work.
class Progress {
  public:
    /// `total` 0: not known.
    Progress(std::ostream& out, std::string what, uint64_t total = 0);
    void step() { reach(done_ + 1); }
    void reach(uint64_t done);  ///< so many are done

  private:
    void print();

    std::ostream& out_;
    std::string what_;
    uint64_t total_, done_ = 0, nextLook_ = 1;
    std::chrono::steady_clock::time_point last_ = std::chrono::steady_clock::now();
};

}  // namespace skl::datakit
