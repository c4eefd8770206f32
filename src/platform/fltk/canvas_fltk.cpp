#include "platform/fltk/canvas_fltk.h"

#include <FL/Fl.H>
#include <FL/fl_draw.H>

#include <cmath>

#include "platform/text_conversion.h"

namespace skl::platform {

namespace {

void use(Colour colour) {
    fl_color(colour.red, colour.green, colour.blue);
}

}  // namespace

int Scale::of(int length) const {
    return static_cast<int>(std::lround(length * factor));
}

CanvasFltk::CanvasFltk(Scale scale) : scale_(scale) {
    fl_font(FL_HELVETICA, scale_.of(textSize));
}

void CanvasFltk::fill(const Rect& area, Colour colour) {
    use(colour);
    const int x = scale_.of(area.left), y = scale_.of(area.top);
    fl_rectf(x, y, scale_.of(area.right) - x, scale_.of(area.bottom) - y);
}

void CanvasFltk::line(int x1, int y1, int x2, int y2, Colour colour) {
    use(colour);
    // All lines of the panel run along an axis; their end point is not drawn.
    if (y1 == y2)
        fl_xyline(scale_.of(x1), scale_.of(y1), scale_.of(x2) - 1);
    else
        fl_yxline(scale_.of(x1), scale_.of(y1), scale_.of(y2) - 1);
}

void CanvasFltk::text(int x, int y, std::string_view utf8, Colour colour) {
    win32::utf8ToUtf16(utf8);  // throws where a toolkit would draw something else
    use(colour);
    fl_draw(utf8.data(), static_cast<int>(utf8.size()), scale_.of(x),
            scale_.of(y) + fl_height() - fl_descent());
}

}  // namespace skl::platform
