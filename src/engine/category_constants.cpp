// See the header.
#include "engine/category_constants.h"

#include <array>

#include "core/random.h"

namespace skl {

namespace {

/// As people write it: degrees, degrees per second.
constexpr CategoryConstants inDegrees[categoryCount] = {
    // turn  flare  down  rot  climb  pitches       ft    slow  rotate pitch bank bankrate
    {15, 250, 250, 100, 200, -9.0, -15.0, 0.5, 5.0, 90, 1, 40, 3.5},
    {10, 300, 300, 200, 250, -8.0, -18.0, 0.75, 4.5, 110, 0.85, 35, 2.75},
    {7, 400, 350, 200, 300, -6.0, -16.5, 0.6, 4.0, 140, 0.75, 30, 2},
    {5, 450, 450, 250, 400, -5.0, -12.5, 0.5, 3.0, 150, 0.5, 20, 1.5},
    {10, 150, 150, 100, 200, -6.0, -20.0, 1.0, 4.5, 220, 3, 90, 10},
    {20, 100, 100, 100, 100, -20.0, -30.0, 0.75, 5.0, 0, 3, 75, 6},
};

constexpr double perTick(double degreesPerSecond) {
    return degreesPerSecond * pi / 18000;
}

constexpr std::array<CategoryConstants, categoryCount> inRadians = [] {
    std::array<CategoryConstants, categoryCount> table{};
    for (size_t i = 0; i < table.size(); ++i) {
        CategoryConstants row = inDegrees[i];
        row.groundTurnRate = perTick(row.groundTurnRate);
        row.rotatePitch = toRad(row.rotatePitch);
        row.climbPitch = toRad(row.climbPitch);
        row.maxPitchRate = perTick(row.maxPitchRate);
        row.maxBank = toRad(row.maxBank);
        row.maxBankRate = perTick(row.maxBankRate);
        table[i] = row;
    }
    return table;
}();

/// The base more or less `percent` of it; one random bit says which.
double varied(double base, double percent) {
    const double part = base * percent / 100;
    return (mt()() & 1u) != 0 ? base + part : base - part;
}

}  // namespace

const CategoryConstants& gf_categoryConstants(AcCategory category) {
    return inRadians.at(static_cast<size_t>(category));
}

void gf_fillTypeValues(AcBase& record) {
    record.category = gf_category(record.model);
    record.halfSpanNm = gf_halfSpanNm(record.model);
    const CategoryConstants& values = gf_categoryConstants(record.category);
    record.groundTurnRate = record.turnRate = values.groundTurnRate;
    record.flareTicks = values.flareTicks;
    record.touchdownTicks = values.touchdownTicks;
    record.rotateTicks = values.rotateTicks;
    record.climbPitchTicks = values.climbPitchTicks;
    record.rotatePitch = varied(values.rotatePitch, 2.5);
    record.climbPitch = varied(values.climbPitch, 5);
    record.maxClimbPerTick = values.maxClimbPerTick;
    record.slowSpeed = values.slowSpeed;
}

}  // namespace skl
