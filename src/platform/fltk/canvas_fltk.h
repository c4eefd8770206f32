// The canvas on an FLTK window, and the font and scale that its labels and controls share.
#pragma once

#include "platform/canvas.h"

namespace skl::platform {

/// Pixels of the screen for a length in pixels of the 880 by 476 window.
struct Scale {
    double factor = 1;
    int of(int length) const;
};

/// The size of all text, in pixels at scale 1: the widest labels of the panel just fit.
inline constexpr int textSize = 13;

class CanvasFltk : public Canvas {
  public:
    explicit CanvasFltk(Scale scale);
    void fill(const Rect& area, Colour colour) override;
    void line(int x1, int y1, int x2, int y2, Colour colour) override;
    void text(int x, int y, std::string_view utf8, Colour colour) override;

  private:
    Scale scale_;
};

}  // namespace skl::platform
