#include "core/setting_steps.h"

#include <array>
#include <span>

namespace skl {

namespace {

/// All values below the bound, and not below that of the step before, become the entry.
struct Step {
    int32_t below, entry;
};

int32_t entryOf(std::span<const Step> steps, int32_t last, int32_t value) {
    for (const Step& step : steps)
        if (value < step.below) return step.entry;
    return last;
}

}  // namespace

int32_t gf_rangeStep(int32_t miles) {
    static constexpr std::array<Step, 19> steps{{{3, 2},
                                                 {4, 3},
                                                 {5, 4},
                                                 {6, 5},
                                                 {7, 6},
                                                 {9, 8},
                                                 {11, 10},
                                                 {13, 12},
                                                 {15, 14},
                                                 {17, 16},
                                                 {19, 18},
                                                 {23, 20},
                                                 {28, 25},
                                                 {33, 30},
                                                 {38, 35},
                                                 {45, 40},
                                                 {57, 50},
                                                 {73, 65},
                                                 {90, 80}}};
    return entryOf(steps, 100, miles);
}

int32_t gf_countStep(int32_t count) {
    static constexpr std::array<Step, 6> steps{{{1, 0}, {18, 10}, {38, 25}, {63, 50}, {88, 75}, {300, 100}}};
    return entryOf(steps, 500, count);
}

}  // namespace skl
