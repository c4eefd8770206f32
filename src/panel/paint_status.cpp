// The band of the two links: a lamp each, and what they have told.
#include <fmt/format.h>

#include "panel/paint_parts.h"
#include "panel/panel_state.h"

namespace skl {

namespace {

using platform::Canvas;
using platform::Colour;
using platform::Rect;

constexpr Rect simLamp{397, 30, 425, 112};
constexpr Rect feedLamp{425, 30, 453, 112};
constexpr int row1 = 35, row2 = 63, row3 = 91;

bool known(int32_t readerState) {
    return readerState == readerRunning || readerState == readerStale;
}

Colour readerColour(int32_t readerState) {
    return readerState == readerRunning ? colours::green : colours::yellow;
}

void paintCount(Canvas& canvas, int x, std::string_view label, uint64_t count, Colour whileNone) {
    if (count)
        lf_text(canvas, x, row3, fmt::format("# {}: {}", label, count), colours::green);
    else
        lf_text(canvas, x, row3, fmt::format("# {}: ...", label), whileNone);
}

void paintSim(const PanelView& view, Canvas& canvas) {
    const bool flying = view.simConnected && view.simRunning && !view.userAircraftText.empty();
    const Colour simColour = flying ? colours::green : view.simConnected ? colours::yellow : colours::red;
    canvas.fill(simLamp, simColour);
    lf_text(canvas, 398, row2, "Sim", colours::green);
    if (view.simConnected) {
        const std::string stand = view.userStandText.empty() ? "" : ", user stand " + view.userStandText;
        lf_text(canvas, 5, row1, view.simText + stand, simColour);
        lf_text(canvas, 5, row2, view.userAircraftText, view.userSpanKnown ? simColour : colours::yellow);
    } else {
        lf_text(canvas, 5, row1, fmt::format("MSFS 20{} mode", view.sim2020 ? "20" : "24"), colours::green);
    }
    paintCount(canvas, 5, "liveries", view.liveryCount, colours::red);
    paintCount(canvas, 141, "simaddon", view.simaddonCount, colours::yellow);
    paintCount(canvas, 278, "thirdp", view.thirdpartyCount, colours::yellow);
}

void paintFeed(const PanelView& view, Canvas& canvas) {
    const bool running = view.trafficState == readerRunning;
    canvas.fill(feedLamp, view.feedLampBlack    ? colours::black
                          : !view.feedConnected ? colours::red
                          : running             ? colours::green
                                                : colours::yellow);
    lf_text(canvas, 430, row2, "RT", colours::green);
    if (!view.feedConnected) return;
    lf_text(canvas, 458, row1, view.feedText, colours::green);
    if (view.weatherState != readerStopped)
        lf_text(canvas, 458, row2, "Weather", readerColour(view.weatherState));
    if (view.trafficState != readerStopped) {
        lf_text(canvas, 458, row3, "Traffic", readerColour(view.trafficState));
    }
    if (known(view.trafficState))
        lf_text(canvas, 642, row3, fmt::format("live: {:3}", view.liveCount), colours::green);
}

}  // namespace

void lf_paintStatus(const PanelView& view, Canvas& canvas) {
    paintSim(view, canvas);
    paintFeed(view, canvas);
    canvas.line(425, 29, 425, 112, colours::black);
}

void lf_paintQnh(const PanelView& view, Canvas& canvas) {
    if (view.feedConnected && known(view.weatherState) && view.qnh >= 1)
        lf_text(canvas, 642, row2, fmt::format("qnh: {:4}", view.qnh), colours::green);
}

}  // namespace skl
