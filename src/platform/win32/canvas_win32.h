// The canvas on a GDI device context, the font and scale that its labels and controls share, and the cycle of
// one paint.
#pragma once

#include <windows.h>

#include <memory>
#include <string>

#include "platform/canvas.h"

namespace skl::platform {

/// Pixels of the screen for a length in pixels of the 880 by 476 window.
struct Scale {
    double factor = 1;
    int of(int length) const;
    RECT of(const Rect& area) const;
};

/// The size of all text, in pixels at scale 1: the widest labels of the panel just fit.
inline constexpr int textSize = 13;

struct GdiDelete {
    void operator()(void* object) const { ::DeleteObject(object); }
};
/// Owns a font or a bitmap.
using GdiObject = std::unique_ptr<void, GdiDelete>;

/// The font of all text, `size` pixels high at scale 1.
GdiObject makeFont(Scale scale, int size);
COLORREF colorRef(Colour colour);
/// As the system's functions take it. Throws Utf8ConversionException.
std::wstring wideText(std::string_view utf8);

/// Draws with the system's own brush and pen, which take any colour: it makes no objects.
class CanvasWin32 : public Canvas {
  public:
    /// The device context keeps `font` and a transparent background.
    CanvasWin32(HDC dc, HGDIOBJ font, Scale scale);
    void fill(const Rect& area, Colour colour) override;
    void line(int x1, int y1, int x2, int y2, Colour colour) override;
    void text(int x, int y, std::string_view utf8, Colour colour) override;

  private:
    HDC dc_;
    Scale scale_;
};

/// Answers a WM_PAINT: what is drawn until its end appears in one step.
class PaintCycle {
  public:
    explicit PaintCycle(HWND window);
    ~PaintCycle();
    PaintCycle(const PaintCycle&) = delete;
    PaintCycle& operator=(const PaintCycle&) = delete;
    /// In coordinates of the window.
    HDC dc() const { return memory_ ? memory_ : paint_.hdc; }
    const RECT& area() const { return paint_.rcPaint; }

  private:
    HWND window_;
    PAINTSTRUCT paint_{};
    GdiObject bitmap_;
    HDC memory_ = nullptr;
};

}  // namespace skl::platform
