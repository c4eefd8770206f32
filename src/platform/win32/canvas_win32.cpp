#include "platform/win32/canvas_win32.h"

#include <cmath>
#include <utility>

#include "platform/text_conversion.h"

namespace skl::platform {

int Scale::of(int length) const {
    return static_cast<int>(std::lround(length * factor));
}

RECT Scale::of(const Rect& area) const {
    return {of(area.left), of(area.top), of(area.right), of(area.bottom)};
}

GdiObject makeFont(Scale scale, int size) {
    return GdiObject(::CreateFontW(-scale.of(size), 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET,
                                   OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY,
                                   DWORD{VARIABLE_PITCH} | DWORD{FF_SWISS}, L"Arial"));
}

COLORREF colorRef(Colour colour) {
    return static_cast<COLORREF>(colour.red | colour.green << 8 | colour.blue << 16);
}

std::wstring wideText(std::string_view utf8) {
    const std::u16string text = win32::utf8ToUtf16(utf8);
    return {text.begin(), text.end()};
}

CanvasWin32::CanvasWin32(HDC dc, HGDIOBJ font, Scale scale) : dc_(dc), scale_(scale) {
    ::SelectObject(dc_, font);
    ::SelectObject(dc_, ::GetStockObject(DC_PEN));
    ::SetBkMode(dc_, TRANSPARENT);
}

void CanvasWin32::fill(const Rect& area, Colour colour) {
    const RECT rect = scale_.of(area);
    ::SetDCBrushColor(dc_, colorRef(colour));
    ::FillRect(dc_, &rect, static_cast<HBRUSH>(::GetStockObject(DC_BRUSH)));
}

void CanvasWin32::line(int x1, int y1, int x2, int y2, Colour colour) {
    const POINT ends[] = {{scale_.of(x1), scale_.of(y1)}, {scale_.of(x2), scale_.of(y2)}};
    ::SetDCPenColor(dc_, colorRef(colour));
    ::Polyline(dc_, ends, 2);
}

void CanvasWin32::text(int x, int y, std::string_view utf8, Colour colour) {
    const std::wstring wide = wideText(utf8);
    ::SetTextColor(dc_, colorRef(colour));
    ::TextOutW(dc_, scale_.of(x), scale_.of(y), wide.data(), static_cast<int>(wide.size()));
}

PaintCycle::PaintCycle(HWND window) : window_(window) {
    ::BeginPaint(window_, &paint_);
    const RECT& rect = area();
    const int width = rect.right - rect.left, height = rect.bottom - rect.top;
    if (width <= 0 || height <= 0) return;
    bitmap_.reset(::CreateCompatibleBitmap(paint_.hdc, width, height));
    if (!bitmap_) return;  // then it is drawn on the screen at once
    memory_ = ::CreateCompatibleDC(paint_.hdc);
    if (!memory_) return;
    ::SelectObject(memory_, bitmap_.get());
    ::SetViewportOrgEx(memory_, -rect.left, -rect.top, nullptr);
}

PaintCycle::~PaintCycle() {
    if (memory_) {
        const RECT& rect = area();
        ::BitBlt(paint_.hdc, rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top, memory_,
                 rect.left, rect.top, SRCCOPY);
        ::DeleteDC(memory_);  // before its bitmap
    }
    ::EndPaint(window_, &paint_);
}

}  // namespace skl::platform
