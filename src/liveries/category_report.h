// What the catalogue holds of each category of aircraft, told in the log; categories without a livery are
// switched off.
#pragma once

#include "liveries/reference_db.h"

namespace skl {

/// Also fills the list of the types of Light, Buzjets or Rotorcraft.
void gf_reportCategory(AcCategory category);
/// The check boxes of the categories can be used only where there are liveries.
void lf_enableCategoryControls();

}  // namespace skl
