// The handlers by kind of control. Each gives false for an id that it does not serve. Panel thread.
#pragma once

#include <string>
#include <string_view>

#include "core/parameter.h"

namespace skl {

bool lf_commandButton(int id);
bool lf_commandCheckBox(int id);
bool lf_commandComboBox(int id, int index);
bool lf_commandEdit(int id, std::string_view text);

/// What is parked is planned anew at the next multiple of 15 seconds.
void lf_askRenewal();
/// SIM_CHOICE has changed: everything of the other simulator goes, and a new run begins.
void lf_switchSimulator();
/// The install path of the selected simulator, as the user typed it. Throws
/// std::filesystem::filesystem_error and std::runtime_error.
void lf_newSimPath(StringParameter& pathParam, const std::string& text);
void lf_enterBlockCallsign(std::string text);
void lf_clearBlock();
void lf_enterDestination(std::string text);
/// Take what was typed into a numeric box; true when the value was set.
bool lf_processTbInt(EditIntParameter& param, const std::string& text);
bool lf_processTbFloat(EditFloatParameter& param, const std::string& text);
/// A-Z for a-z, byte by byte.
std::string lf_upperCase(std::string text);

}  // namespace skl
