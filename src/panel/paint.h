// What the panel paints: five bands with lamps, grid and labels. A pure function of a look at the state and
// of the settings.
#pragma once

#include "panel/panel_state.h"
#include "panel/panel_view.h"
#include "platform/canvas.h"

namespace skl {

/// Where a band lies in the window.
platform::Rect gf_bandRect(Band band);
/// Paints all bands that `area` touches.
void lf_paint(const PanelView& view, platform::Canvas& canvas, const platform::Rect& area);

}  // namespace skl
