// What the motion of an aircraft takes from its category alone. Angles are radians, rates radians per tick.
#pragma once

#include <cstdint>

#include "engine/live_ac.h"
#include "liveries/reference_db.h"

namespace skl {

struct CategoryConstants {
    double groundTurnRate;
    int32_t flareTicks, touchdownTicks, rotateTicks, climbPitchTicks;
    double rotatePitch, climbPitch;  ///< before the chance of the single aircraft; negative is nose up
    double maxClimbPerTick;          ///< feet per tick
    double slowSpeed, rotateSpeed;   ///< knots
    double maxPitchRate;
    double maxBank;  ///< radians
    double maxBankRate;
};

const CategoryConstants& gf_categoryConstants(AcCategory category);
/// Half span, category and all that follows from it, by the record's type. Draws the two pitches by chance.
void gf_fillTypeValues(AcBase& record);

}  // namespace skl
