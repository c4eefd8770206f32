#include "panel/panel_view.h"

#include "core/locks.h"
#include "core/parameters.h"
#include "panel/panel_state.h"
#include "parking/stands.h"
#include "parking/statics.h"

namespace skl {

namespace {

/// The texts, under the lock that is held for nothing else.
void copyTexts(PanelView& view) {
    LockGuard guard(g_panelLock);
    view.statusText = g_panel.statusText;
    view.errorText = g_panel.errorText;
    view.userAircraftText = g_panel.userAircraftText;
    view.simText = g_panel.simText;
    view.userStandText = g_panel.userStandText;
    view.feedText = g_panel.feedText;
    view.objectIdText = g_panel.objectIdText;
    view.airportCode = g_panel.airportCode;
    view.airportName = g_panel.airportName;
    view.airportPublisher = g_panel.airportPublisher;
    view.qualityText = g_panel.qualityText;
    view.reservedStand = g_panel.reservedStand;
}

}  // namespace

PanelView gf_panelView() {
    PanelView view;
    copyTexts(view);
    view.sim2020 = SIM_CHOICE == "MSFS 2020";
    view.simConnected = g_panel.simConnected;
    view.simRunning = g_panel.simRunning;
    view.userSpanKnown = g_panel.userSpanKnown;
    view.feedLampBlack = g_panel.feedLampBlack;
    view.feedConnected = g_panel.feedConnected;
    view.trafficState = g_panel.trafficState;
    view.weatherState = g_panel.weatherState;
    view.qnh = g_panel.qnh;
    view.liveCount = g_panel.liveCount;
    view.liveryCount = g_panel.liveryCount;
    view.simaddonCount = g_panel.simaddonCount;
    view.thirdpartyCount = g_panel.thirdpartyCount;
    view.airportFileLoaded = g_panel.airportFileLoaded;
    view.handmade = g_panel.handmade;
    view.softMark = g_panel.softMark;
    view.reservedStandOk = g_panel.reservedStandOk;
    view.trafficWeek = g_panel.trafficWeek;
    view.updateCount = g_panel.updateCount;
    view.maxParkCount = g_panel.maxParkCount;
    view.maxParkPercent = g_panel.maxParkPercent;
    view.minutesToRenewal = g_panel.minutesToRenewal;
    view.standCount = g_panel.standCount;
    view.parkedLiveCount = g_panel.parkedLiveCount;
    view.parkedStaticCount = g_panel.parkedStaticCount;
    view.averageFitLive = g_panel.averageFitLive;
    view.averageFitStatic = g_panel.averageFitStatic;
    view.apfLoaded = g_apfLoaded;
    view.staticsLock = staticsLock;
    view.offlineLearningCount = g_panel.offlineLearningCount;
    return view;
}

}  // namespace skl
