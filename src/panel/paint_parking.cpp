// The band of the airport in sight.
#include <fmt/format.h>

#include "core/parameters.h"
#include "panel/paint_parts.h"

namespace skl {

namespace {

using platform::Canvas;

constexpr int row1 = 399, row2 = 427;

void paintFile(const PanelView& view, Canvas& canvas) {
    lf_text(canvas, 85, row1,
            fmt::format(" {}, {}{}, wk={}", view.airportName, view.airportPublisher,
                        view.handmade ? " (h)" : "", view.trafficWeek),
            colours::green);
    if (view.softMark) lf_text(canvas, 370, row1, "*S*", colours::green);
    lf_text(canvas, 430, row1, fmt::format("qf: {}", view.qualityText), colours::green);
    if (!view.reservedStand.empty())
        lf_text(canvas, 571, row1, fmt::format("reserved stand: {}", view.reservedStand),
                view.reservedStandOk ? colours::green : colours::red);
    lf_text(canvas, 748, row1, fmt::format("# updates: {:4}", view.updateCount), colours::green);
}

void paintFit(Canvas& canvas, int x, float hours) {
    if (hours > 0)
        lf_text(canvas, x, row2, fmt::format("average fit: {}", lf_shortNumber(hours)), colours::green);
}

void paintParked(const PanelView& view, Canvas& canvas) {
    lf_text(canvas, 5, row2, fmt::format("# stands: {:3}", view.standCount), colours::green);
    lf_text(canvas, 111, row2, fmt::format("parked live: {:3}", view.parkedLiveCount), colours::green);
    paintFit(canvas, 249, view.averageFitLive);
    if (view.maxParkCount > 0) {
        lf_text(canvas, 430, row2, fmt::format("parked static: {:3}", view.parkedStaticCount),
                colours::green);
        if (!WEEK.value) paintFit(canvas, 571, view.averageFitStatic);
    }
    lf_text(canvas, 708, row2,
            view.maxParkCount ? fmt::format("max park: {:3} (={} %)", view.maxParkCount, view.maxParkPercent)
                              : "no max park live",
            colours::green);
}

}  // namespace

void lf_paintParking(const PanelView& view, Canvas& canvas) {
    if (view.airportCode.empty()) return;
    lf_text(canvas, 5, row1, view.airportCode, view.airportFileLoaded ? colours::green : colours::yellow);
    if (!view.airportFileLoaded) return;
    paintFile(view, canvas);
    paintParked(view, canvas);
}

}  // namespace skl
