// The panel's paint: through a canvas that only counts, and on a real window where there is a screen. And how
// often an idle panel is painted.
#include <fmt/format.h>

#include "bench/bench.h"
#include "core/parameters.h"
#include "panel/paint.h"
#include "panel/panel_state.h"
#include "panel/panel_window.h"
#include "platform/window.h"

namespace skl::bench {

namespace {

constexpr int paints = 200;           // in a run
constexpr int looksOfAMinute = 1200;  // every 50 ms

class CountingCanvas : public platform::Canvas {
  public:
    void fill(const platform::Rect&, platform::Colour) override { ++calls; }
    void line(int, int, int, int, platform::Colour) override { ++calls; }
    void text(int, int, std::string_view, platform::Colour) override { ++calls; }
    uint64_t calls = 0;
};

PanelView busyView() {
    PanelView view;
    view.simConnected = view.simRunning = view.feedConnected = true;
    view.feedLampBlack = false;
    view.trafficState = view.weatherState = readerRunning;
    view.simText = "MSFS 2020 (11.0.282174.999)";
    view.userAircraftText = "Airbus A320 Neo";
    view.feedText = "RT stnd edition: 10.0.240";
    view.airportCode = "EGLL";
    view.airportName = "London Heathrow";
    view.airportFileLoaded = true;
    view.maxParkCount = 64;
    view.statusText = "No traffic in this region?";
    return view;
}

/// Milliseconds of one paint, the least of all runs.
template <class Paint>
double millisecondsOf(Paint&& paint) {
    double least = 1e9;
    for (int run = 0; run < runs; ++run)
        least = std::min(least, secondsOf([&] {
                             for (int i = 0; i < paints; ++i) paint();
                         }));
    return least / paints * 1000;
}

struct Area {
    const char* name;
    platform::Rect rect;
};

Row canvasRow(const Area& area) {
    CountingCanvas canvas;
    const PanelView view = busyView();
    const double time = millisecondsOf([&] { lf_paint(view, canvas, area.rect); });
    return {fmt::format("Panel, {} on a canvas that counts", area.name), "told",
            fmt::format("{:.3f} ms, {} calls", time, canvas.calls / (runs * paints)), std::nullopt};
}

Row windowRow(const Area& area) {
    const PanelView view = busyView();
    const auto window = platform::openWindow(
        "bench", 0, 0, {},
        {[&view](platform::Canvas& canvas, const platform::Rect& rect) { lf_paint(view, canvas, rect); },
         {},
         {},
         {},
         {}});
    for (int i = 0; i < 20; ++i) window->pump(std::chrono::milliseconds(5));  // it has been shown
    const uint64_t before = window->paints();
    const double time = millisecondsOf([&] {
        window->invalidate(area.rect);
        window->pump(std::chrono::milliseconds(0));
    });
    require(window->paints() - before >= uint64_t{runs} * paints / 2, "the window is not painted");
    return {fmt::format("Panel, {} in a window", area.name), "told", fmt::format("{:.2f} ms", time),
            std::nullopt};
}

Row idleRow() {
    const auto panel = PanelWindow::open();
    for (int i = 0; i < 20; ++i) panel->serve(std::chrono::milliseconds(5));
    const uint64_t before = panel->repaints();
    for (int i = 0; i < looksOfAMinute; ++i) panel->serve(std::chrono::milliseconds(0));
    const uint64_t repaints = panel->repaints() - before;
    return {"Panel, repaints of an idle minute", "none", fmt::format("{}", repaints), repaints == 0};
}

}  // namespace

Rows panelRows() {
    gf_resetParameters();
    const Area whole{"the whole", {0, 0, 880, 476}}, band{"one band", gf_bandRect(Band::status)};
    Rows rows{canvasRow(whole), canvasRow(band)};
    if (!platform::displayAvailable()) {
        rows.push_back({"Panel, in a window", "told", "not measured: no screen", std::nullopt});
        return rows;
    }
    rows.push_back(windowRow(whole));
    rows.push_back(windowRow(band));
    rows.push_back(idleRow());
    return rows;
}

}  // namespace skl::bench
