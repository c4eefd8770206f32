// What the panel is painted on: filled rectangles, lines of one pixel, and text, in pixels of a window of
// 880 by 476. A backend scales them; a test records them.
#pragma once

#include <cstdint>
#include <string_view>

namespace skl::platform {

struct Colour {
    uint8_t red = 0, green = 0, blue = 0;
    bool operator==(const Colour&) const = default;
};

/// Right and bottom lie outside.
struct Rect {
    int left = 0, top = 0, right = 0, bottom = 0;
    bool operator==(const Rect&) const = default;
};

class Canvas {
  public:
    virtual ~Canvas() = default;
    virtual void fill(const Rect& area, Colour colour) = 0;
    /// From one point to the other, without the end point's pixel.
    virtual void line(int x1, int y1, int x2, int y2, Colour colour) = 0;
    /// UTF-8 with its upper left corner at (x, y), on a transparent background. Throws
    /// Utf8ConversionException for text that is no UTF-8; then nothing is drawn.
    virtual void text(int x, int y, std::string_view utf8, Colour colour) = 0;
};

}  // namespace skl::platform
