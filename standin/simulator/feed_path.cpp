// Reading the recording and measuring against a path.
#include "standin/simulator/feed_path.h"

#include <algorithm>
#include <cmath>

#include "standin/common/text.h"
#include "standin/simulator/geo.h"

namespace simulator {

namespace {

constexpr std::size_t kFields = 29;
constexpr double kGapSeconds = 30;
constexpr double kNearEnough = 60;  // metres; farther than that the whole path is searched
constexpr std::size_t kLookBack = 10;
constexpr std::size_t kLookAhead = 30;

struct Nearest {
    std::size_t segment = 0;
    double metres = 1e18;
    double beyond = 0;  // metres past the ends of the path
};

// Distance from a segment; the first and the last one go on as lines.
void compare(const std::vector<FeedReport>& reports, std::size_t segment, double lat, double lon,
             Nearest& best) {
    const auto& from = reports[segment];
    const auto& to = reports[segment + 1];
    const auto a = offsetMetres(lat, lon, from.lat, from.lon);
    const auto b = offsetMetres(lat, lon, to.lat, to.lon);
    const double east = b.east - a.east;
    const double north = b.north - a.north;
    const double length = std::hypot(east, north);
    const double part = length > 0 ? -(a.east * east + a.north * north) / (length * length) : 0;
    const double kept = std::clamp(part, 0.0, 1.0);
    const double metres = std::hypot(a.east + kept * east, a.north + kept * north);
    if (metres >= best.metres) {
        return;
    }
    best = {segment, metres, 0};
    const bool before = part < 0 && segment == 0;
    const bool behind = part > 1 && segment + 2 == reports.size();
    if ((before || behind) && length > 0) {
        best.beyond = std::abs(part - kept) * length;
    }
}

}  // namespace

std::string FeedPaths::read(const std::string& file) {
    const auto complaint = standin::readLines(file, [this](const std::string& line) { add(line); });
    order();
    return complaint;
}

void FeedPaths::add(std::string_view line) {
    auto fields = standin::split(line, ',');
    std::transform(fields.begin(), fields.end(), fields.begin(), standin::trimmed);
    if (fields.size() < kFields || line.find(" VEH") != std::string_view::npos || fields[9].empty()) {
        return;
    }
    const auto lat = standin::numberOf(fields[2]);
    const auto lon = standin::numberOf(fields[3]);
    const auto knots = standin::numberOf(fields[8]);
    const auto time = standin::numberOf(fields[14]);
    if (lat && lon && knots && time && std::abs(*lat) <= 90 && std::abs(*lon) <= 180) {
        auto& path = paths_[std::string(fields[9])];
        path.reports.push_back({*time, *lat, *lon, *knots});
        path.type = fields[10].empty() ? path.type : std::string(fields[10]);
    }
}

void FeedPaths::order() {
    for (auto& [callsign, path] : paths_) {
        std::stable_sort(path.reports.begin(), path.reports.end(),
                         [](const FeedReport& a, const FeedReport& b) { return a.time < b.time; });
    }
}

std::string_view FeedPaths::typeOf(const std::string& callsign) const {
    const auto found = paths_.find(callsign);
    return found == paths_.end() ? std::string_view{} : std::string_view(found->second.type);
}

FeedMatch FeedPaths::match(const std::string& callsign, double lat, double lon, std::size_t& hint) const {
    const auto found = paths_.find(callsign);
    if (found == paths_.end() || found->second.reports.size() < 2) {
        return {};
    }
    const auto& reports = found->second.reports;
    const auto segments = reports.size() - 1;
    Nearest best;
    for (auto i = hint > kLookBack ? hint - kLookBack : 0; i < std::min(segments, hint + kLookAhead); ++i) {
        compare(reports, i, lat, lon, best);
    }
    if (best.metres > kNearEnough) {
        best = {};
        for (std::size_t i = 0; i < segments; ++i) {
            compare(reports, i, lat, lon, best);
        }
    }
    hint = best.segment;
    FeedMatch match{true, false, best.metres, 0};
    const auto first = hint > 2 ? hint - 2 : 0;
    for (auto i = first; i <= std::min(hint + 3, segments); ++i) {
        match.knots = std::max(match.knots, reports[i].knots);
    }
    match.gap = reports[hint + 1].time - reports[hint].time > kGapSeconds;
    if (best.beyond > 0) {
        // Past the last report the flight goes on along its line, for as long as a report may be awaited.
        match.gap = best.beyond > kGapSeconds * match.knots * kKnotMetresPerSecond;
        match.metres = std::sqrt(std::max(0.0, best.metres * best.metres - best.beyond * best.beyond));
    }
    return match;
}

}  // namespace simulator
