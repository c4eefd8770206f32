// The range of the feed in force, and its automatic choice by the user's situation.
#pragma once

#include <atomic>

namespace skl {

extern std::atomic<double> rangeNm;      ///< in force; only gf_applyRange writes it
extern std::atomic<double> rangeMeters;  ///< the same in metres
extern std::atomic<int> savedRange;      ///< the user's RANGE while AUTO_RANGE is on

/// Stores `miles`, clamped, in RANGE, and as it comes in the range in force.
void gf_applyRange(double miles);
/// Applies the range that fits the user's height; called while AUTO_RANGE is on. Worker only.
void gf_autoRange();

}  // namespace skl
