// What the panel shows. Any thread writes: numbers and lamps are atomics, texts are set under g_panelLock.
// Each write is followed by gf_invalidate of the band that shows it. Only the panel's own thread paints.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>

namespace skl {

enum class Band : unsigned { title, status, options, parking, message };

/// State of a reader's lamp.
inline constexpr int32_t readerRunning = 1, readerStale = 2, readerStopped = 3;

struct PanelState {
    // Under g_panelLock.
    std::string statusText, errorText;
    std::string userAircraftText, simText, userStandText, feedText;
    std::string airportName, airportPublisher, qualityText, objectIdText;
    std::string airportCode;    ///< of the airport in sight, empty if there is none
    std::string reservedStand;  ///< held free for the user, may be empty

    std::atomic<int32_t> messageStamp{0};
    std::atomic<uint64_t> liveCount{0}, simaddonCount{0}, thirdpartyCount{0}, liveryCount{0};
    std::atomic<uint64_t> parkedLiveCount{0}, parkedStaticCount{0};
    std::atomic<float> averageFitLive{-1.0f}, averageFitStatic{-1.0f};  ///< hours; above 0 is shown
    std::atomic<bool> softMark{false};         ///< the last placing of static aircraft used soft options
    std::atomic<bool> reservedStandOk{false};  ///< the airport has the stand that is held free
    std::atomic<bool> airportFileLoaded{false};
    std::atomic<bool> handmade{false};     ///< the airport's learned file replaces the archived one
    std::atomic<int32_t> trafficWeek{0};   ///< of the airport file
    std::atomic<int32_t> updateCount{0};   ///< learned for the airport in this visit
    std::atomic<int32_t> maxParkCount{0};  ///< aircraft that the airport may show, 0 and below: no limit
    std::atomic<uint64_t> standCount{0};
    std::atomic<uint64_t> offlineLearningCount{0};  ///< airports that the last scan set aside; outlives a run
    std::atomic<int32_t> qnh{0};
    std::atomic<int32_t> minutesToRenewal{0};
    std::atomic<int32_t> maxParkPercent{0};
    std::atomic<bool> feedLampBlack{true}, feedConnected{false}, simConnected{false}, simRunning{false};
    std::atomic<bool> userSpanKnown{true};
    std::atomic<int32_t> trafficState{readerStopped}, weatherState{readerStopped};
};

extern PanelState g_panel;

/// Asks for a repaint of a band. Any thread; cheap.
void gf_invalidate(Band band);
/// The bands asked for since the last call, one bit each: for the panel's own thread.
unsigned gf_takeInvalidated();
/// Sets one of the texts of g_panel under its lock and invalidates the band.
void gf_setPanelText(std::string PanelState::*field, std::string_view text, Band band);
std::string gf_panelText(std::string PanelState::*field);
/// The end of a run: back to the start values, but for those that outlive a run.
void gf_resetPanel();

/// Once a second: counts of the engine's tables into the state.
void lf_updateCounts();
/// The part of it that tells of the airport in sight: its file, its parked aircraft, live and static, and
/// their average fit.
void lf_updateParkedCounts();

}  // namespace skl
