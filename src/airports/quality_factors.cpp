// How well the stands of an airport are known: each stand scores by how often, on how many weekdays and for
// how many half hours aircraft were seen there.
#include <fmt/format.h>

#include <algorithm>
#include <bit>
#include <cmath>

#include "airports/airport_file.h"

namespace skl {

namespace {

constexpr int64_t knownScore = 10000;
constexpr int64_t optionScore = 20, mostForOptions = 4000;
constexpr int64_t dayScore = 100;
constexpr int64_t halfHourScore = 2, mostHalfHours = 600;
constexpr double scoreToFactor = 0.00625;
constexpr int32_t highestFactor = 100;

int64_t scoreOf(const Stand& stand, bool real) {
    int64_t seen = 0, halfHours = 0;
    unsigned days = 0;
    for (const StandOption& option : stand.options) {
        if (option.optionId == 0 || option.real != real) continue;
        ++seen;
        halfHours += std::popcount(option.hours);
        if (option.day >= 1 && option.day <= 7) days |= 1u << option.day;
    }
    if (seen == 0) return 0;
    return knownScore + std::min(optionScore * seen, mostForOptions) + dayScore * std::popcount(days) +
           halfHourScore * std::min(halfHours, mostHalfHours);
}

int32_t factorOf(const std::vector<Stand>& stands, bool real) {
    int64_t sum = 0;
    for (const Stand& stand : stands) sum += scoreOf(stand, real);
    const double mean = static_cast<double>(sum) / static_cast<double>(stands.size());
    return std::clamp(static_cast<int32_t>(std::lround(mean * scoreToFactor)), 0, highestFactor);
}

}  // namespace

QualityFactors gf_qualityFactors(const std::vector<Stand>& stands) {
    const bool anyKnown =
        std::any_of(stands.begin(), stands.end(), [](const Stand& stand) { return !stand.options.empty(); });
    if (!anyKnown) return {};
    return {factorOf(stands, true), factorOf(stands, false)};
}

std::string gf_qualityText(QualityFactors quality) {
    if (quality.real < 0 && quality.soft < 0) return "  ";
    if (quality.soft < 0) return fmt::format("{:2}", quality.real);
    return fmt::format("{:2}/{:2}", quality.real, quality.soft);
}

}  // namespace skl
