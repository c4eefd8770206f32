// A text file of somebody else's, line by line as clean UTF-8. Lines in another encoding than the rest are
// taken as Windows-1252, control characters become blanks; both are told. UTF-16 is known by its mark.
#pragma once

#include <cstdint>
#include <deque>
#include <filesystem>
#include <istream>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/datakit/findings.h"

namespace skl::datakit {

struct Line {
    std::string text;     ///< without its end
    uint64_t number = 0;  ///< from 1
    bool open = false;    ///< the file's last, and without a line end: a cut file ends so
};

class SourceFile {
  public:
    /// Throws Failure when the file cannot be read.
    SourceFile(const std::filesystem::path& path, Findings& findings);
    /// False at the end. Throws Failure when the medium fails.
    bool next(Line& line);
    /// Lines that next() is to give again, in this order.
    void putBack(const std::vector<Line>& lines);
    const std::string& name() const { return name_; }
    Place at(uint64_t line) const { return {name_, line}; }
    Findings& findings() { return findings_; }

  private:
    void clean(Line& line);

    std::string name_;
    Findings& findings_;
    std::vector<char> buffer_;
    std::unique_ptr<std::istream> in_;
    std::deque<Line> putBack_;
    uint64_t number_ = 0, foreign_ = 0, controls_ = 0;
};

/// Cut off the front: the next word between blanks and tabs; empty at the end.
std::string_view takeWord(std::string_view& text);
/// A finite number, the text as a whole.
std::optional<double> wholeNumber(std::string_view text);

}  // namespace skl::datakit
