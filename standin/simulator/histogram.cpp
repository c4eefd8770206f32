// Steps on a logarithmic scale.
#include "standin/simulator/histogram.h"

#include <algorithm>
#include <cmath>

namespace simulator {

namespace {

constexpr double kLeast = 0.001;
constexpr double kRatio = 1.05;

}  // namespace

void Histogram::add(double value) {
    const double step = value <= kLeast ? 0 : std::ceil(std::log(value / kLeast) / std::log(kRatio));
    ++steps_[static_cast<std::size_t>(std::clamp(step, 0.0, static_cast<double>(kSteps - 1)))];
    ++count_;
    most_ = std::max(most_, value);
}

double Histogram::quantile(double part) const {
    const auto wanted = static_cast<std::uint64_t>(std::ceil(part * static_cast<double>(count_)));
    std::uint64_t below = 0;
    for (std::size_t i = 0; i < kSteps && count_ > 0; ++i) {
        below += steps_[i];
        if (below >= std::max<std::uint64_t>(wanted, 1)) {
            return std::min(most_, kLeast * std::pow(kRatio, static_cast<double>(i)));
        }
    }
    return most_;
}

}  // namespace simulator
