// One look at everything that the panel shows, taken under the lock in one go; the paint works on the copy
// alone.
#pragma once

#include <cstdint>
#include <string>

namespace skl {

struct PanelView {
    // --- links
    std::string statusText, errorText, userAircraftText, simText, userStandText, feedText, objectIdText;
    bool sim2020 = true, simConnected = false, simRunning = false, userSpanKnown = true;
    bool feedLampBlack = true, feedConnected = false;
    int32_t trafficState = 3, weatherState = 3, qnh = 0;
    uint64_t liveCount = 0, liveryCount = 0, simaddonCount = 0, thirdpartyCount = 0;
    // --- the airport in sight
    std::string airportCode;  ///< empty: none
    std::string airportName, airportPublisher, qualityText, reservedStand;
    bool airportFileLoaded = false, handmade = false, softMark = false, reservedStandOk = false;
    int32_t trafficWeek = 0, updateCount = 0, maxParkCount = 0, maxParkPercent = 0, minutesToRenewal = 0;
    uint64_t standCount = 0, parkedLiveCount = 0, parkedStaticCount = 0;
    float averageFitLive = -1, averageFitStatic = -1;  ///< hours
    // --- the rest
    bool apfLoaded = false, staticsLock = false;
    uint64_t offlineLearningCount = 0;  ///< airports set aside for offline learning; 0: nothing to show
};

PanelView gf_panelView();

}  // namespace skl
