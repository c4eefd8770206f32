// The parts of the panel's paint, and the two ways in which they write text.
#pragma once

#include <string>
#include <string_view>

#include "panel/panel_colours.h"
#include "panel/panel_view.h"
#include "platform/canvas.h"

namespace skl {

/// Writes a text; one that is no UTF-8 is logged, once as long as it stays the same, and not drawn.
void lf_text(platform::Canvas& canvas, int x, int y, std::string_view text, platform::Colour colour);
/// Black, or grey when not enabled.
void lf_textEnabled(platform::Canvas& canvas, int x, int y, std::string_view text, bool enabled);

/// Lamps of the simulator and of RealTraffic, with their texts and the counts of what is installed.
void lf_paintStatus(const PanelView& view, platform::Canvas& canvas);
void lf_paintQnh(const PanelView& view, platform::Canvas& canvas);
/// The labels beside the controls.
void lf_paintOptions(const PanelView& view, platform::Canvas& canvas);
/// What is known of the airport in sight, in two rows.
void lf_paintParking(const PanelView& view, platform::Canvas& canvas);

/// With one decimal, or without when it is whole.
std::string lf_shortNumber(float number);

}  // namespace skl
