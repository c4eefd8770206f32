// The bands, the lines between them, the title and the message line.
#include "panel/paint.h"

#include <fmt/format.h>

#include "core/run_state.h"
#include "core/version.h"
#include "panel/paint_parts.h"

namespace skl {

namespace {

using platform::Canvas;
using platform::Rect;

constexpr int width = 880;
constexpr int gridEdge = 642;  ///< the right block of check boxes begins here
constexpr const char* about = "Real traffic, live in your simulator";

bool touches(const Rect& area, Band band) {
    const Rect rect = gf_bandRect(band);
    return area.top < rect.bottom && area.bottom > rect.top && area.left < rect.right &&
           area.right > rect.left;
}

void paintTitle(Canvas& canvas) {
    lf_text(canvas, 3, 7, fmt::format("Version {}", programVersion.text()), colours::green);
    lf_text(canvas, 390, 7, programName, colours::green);
    lf_text(canvas, 632, 7, about, colours::green);
}

void paintGrid(Canvas& canvas) {
    for (const int y : {140, 168, 196, 224, 252}) canvas.line(0, y, width, y, colours::black);
    canvas.line(0, 280, gridEdge, 280, colours::black);
    canvas.line(0, 308, width, 308, colours::black);
    canvas.line(gridEdge, 140, gridEdge, 308, colours::black);
}

void paintMessage(const PanelView& view, Canvas& canvas) {
    const bool error = !view.errorText.empty();
    canvas.fill(gf_bandRect(Band::message), error ? colours::red : colours::green);
    lf_text(canvas, 3, 455, error ? view.errorText : view.statusText, colours::yellow);
}

void paintEdges(Canvas& canvas) {
    for (const int y : {28, 113, 449, 392}) canvas.line(0, y, width, y, colours::white);
}

}  // namespace

Rect gf_bandRect(Band band) {
    switch (band) {
        case Band::title:
            return {0, 0, width, 28};
        case Band::status:
            return {0, 28, width, 112};
        case Band::options:
            return {0, 112, width, 392};
        case Band::parking:
            return {0, 392, width, 448};
        case Band::message:
            return {0, 448, width, 476};
    }
    return {};
}

void lf_paint(const PanelView& view, Canvas& canvas, const Rect& area) {
    for (const Band band : {Band::title, Band::status, Band::options, Band::parking})
        if (touches(area, band))
            canvas.fill(gf_bandRect(band), band == Band::options ? colours::panel : colours::black);
    paintEdges(canvas);
    if (touches(area, Band::title)) paintTitle(canvas);
    if (touches(area, Band::options)) paintGrid(canvas);
    if (touches(area, Band::status)) {
        lf_paintStatus(view, canvas);
        lf_paintQnh(view, canvas);
    }
    if (touches(area, Band::options)) lf_paintOptions(view, canvas);
    if (touches(area, Band::parking)) lf_paintParking(view, canvas);
    if (touches(area, Band::message)) paintMessage(view, canvas);
}

}  // namespace skl
