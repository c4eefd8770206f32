// Quantiles in bounded memory: values from 0.001 to 1e6 in steps of five percent, with count and greatest
// value exact.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace simulator {

class Histogram {
  public:
    void add(double value);
    // Upper edge of the step that holds this part (0 to 1) of the values, never above the greatest; 0 without
    // values.
    double quantile(double part) const;
    std::uint64_t count() const { return count_; }
    double most() const { return most_; }

  private:
    static constexpr std::size_t kSteps = 426;
    std::array<std::uint32_t, kSteps> steps_{};
    std::uint64_t count_ = 0;
    double most_ = 0;
};

}  // namespace simulator
