// A recording: the lines with the second when each is due. The time stamp, field 14 between commas, is digits
// with or without a fraction; a line without one, or with one more than an hour from the line before, is due
// with the line before it and goes out as it is.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace realtraffic {

enum class Kind { kAir, kGround, kVehicle, kBroken };

class Recording {
  public:
    // Gives the complaint for the user, or nothing.
    std::string read(const std::string& file);
    void add(std::string_view line);

    std::size_t size() const { return lines_.size(); }
    double secondsOf(std::size_t line) const {
        return lines_[line].seconds;
    }  // since the first stamp; rising
    Kind kindOf(std::size_t line) const { return lines_[line].kind; }
    double seconds() const { return lines_.empty() ? 0 : lines_.back().seconds; }
    // The first stamp, in seconds since 1970.
    double start() const { return start_; }
    // The line with its stamp moved.
    std::string text(std::size_t line, std::int64_t shift) const;

  private:
    struct Line {
        double seconds = 0;
        Kind kind = Kind::kBroken;
        std::string text;
        std::size_t stampAt = 0;      // where the whole seconds of the stamp stand
        std::size_t stampLength = 0;  // 0 without a readable stamp
        std::int64_t stamp = 0;
    };
    std::vector<Line> lines_;
    double start_ = -1;
};

}  // namespace realtraffic
