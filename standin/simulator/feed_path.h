// The paths of the flights in a recording, by callsign: where the truth was, to hold poses against. Records
// are lines of at least 29 fields between commas: latitude 2, longitude 3, altitude 4, ground speed 8,
// callsign 9, type 10, time 14.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace simulator {

struct FeedReport {
    double time, lat, lon, knots;
};

struct FeedMatch {
    bool known = false;  // the callsign has a path
    bool gap = false;    // no report for 30 s there
    double metres = 0;   // from the path
    double knots = 0;    // greatest speed of the reports around
};

class FeedPaths {
  public:
    // Gives the complaint for the user, or nothing. Lines that are no records are passed over.
    std::string read(const std::string& file);
    void add(std::string_view line);
    void order();  // by time, once all are added

    bool empty() const { return paths_.empty(); }
    std::string_view typeOf(const std::string& callsign) const;
    // Nearest place of the path; `hint` is where the last one was found and is kept for the next.
    FeedMatch match(const std::string& callsign, double lat, double lon, std::size_t& hint) const;

  private:
    struct Path {
        std::vector<FeedReport> reports;
        std::string type;
    };
    std::unordered_map<std::string, Path> paths_;
};

}  // namespace simulator
