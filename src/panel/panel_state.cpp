#include "panel/panel_state.h"

#include "core/locks.h"

namespace skl {

PanelState g_panel;

namespace {

std::atomic<unsigned> invalidated{0};

}  // namespace

void gf_invalidate(Band band) {
    invalidated.fetch_or(1u << static_cast<unsigned>(band));
}

unsigned gf_takeInvalidated() {
    return invalidated.exchange(0);
}

void gf_setPanelText(std::string PanelState::*field, std::string_view text, Band band) {
    {
        LockGuard guard(g_panelLock);
        g_panel.*field = text;
    }
    gf_invalidate(band);
}

std::string gf_panelText(std::string PanelState::*field) {
    LockGuard guard(g_panelLock);
    return g_panel.*field;
}

void gf_resetPanel() {
    {
        // objectIdText, minutesToRenewal, maxParkPercent, reservedStandOk and the counts of files and
        // liveries outlive a run.
        LockGuard guard(g_panelLock);
        for (auto field : {&PanelState::statusText, &PanelState::errorText, &PanelState::userAircraftText,
                           &PanelState::simText, &PanelState::userStandText, &PanelState::feedText,
                           &PanelState::airportName, &PanelState::airportPublisher, &PanelState::qualityText,
                           &PanelState::airportCode, &PanelState::reservedStand})
            (g_panel.*field).clear();
    }
    g_panel.messageStamp = 0;
    g_panel.liveCount = 0;
    g_panel.parkedLiveCount = 0;
    g_panel.parkedStaticCount = 0;
    g_panel.averageFitLive = -1.0f;
    g_panel.averageFitStatic = -1.0f;
    g_panel.softMark = false;
    g_panel.airportFileLoaded = false;
    g_panel.handmade = false;
    g_panel.trafficWeek = 0;
    g_panel.updateCount = 0;
    g_panel.maxParkCount = 0;
    g_panel.standCount = 0;
    g_panel.qnh = 0;
    g_panel.feedLampBlack = true;
    g_panel.feedConnected = false;
    g_panel.simConnected = false;
    g_panel.simRunning = false;
    g_panel.userSpanKnown = true;
    g_panel.trafficState = readerStopped;
    g_panel.weatherState = readerStopped;
    for (Band band : {Band::title, Band::status, Band::options, Band::parking, Band::message})
        gf_invalidate(band);
}

}  // namespace skl
