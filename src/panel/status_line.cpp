#include "panel/status_line.h"

#include <fmt/format.h>

#include <array>

#include "core/locks.h"
#include "engine/engine_state.h"
#include "feed/feed.h"
#include "panel/panel_state.h"
#include "panel/panel_view.h"

namespace skl {

namespace {

struct NamedCount {
    const char* name;
    const std::atomic<uint64_t>& count;
};

std::string lamps() {
    const char* sim = !g_panel.simConnected ? "waiting" : g_panel.simRunning ? "flying" : "connected";
    const char* feed = g_panel.feedLampBlack ? "not tried" : g_panel.feedConnected ? "connected" : "waiting";
    return fmt::format("sim {}, RealTraffic {}, qnh {}", sim, feed, qnh.load());
}

/// The states or stages that hold at least one aircraft.
template <size_t Size, class Word>
std::string tally(const std::atomic<uint32_t> (&counts)[Size], Word word) {
    std::string text;
    for (size_t i = 0; i < Size; ++i)
        if (const uint32_t n = counts[i])
            text += fmt::format("{}{} {}", text.empty() ? "" : ", ", word(static_cast<int>(i)), n);
    return text.empty() ? "none" : text;
}

std::string drops() {
    const std::array<NamedCount, 10> reasons{{{"out of range", feedCounters.outOfRange},
                                              {"on the ground", feedCounters.ground},
                                              {"vehicles", feedCounters.vehicles},
                                              {"no type", feedCounters.noModel},
                                              {"no aircraft", feedCounters.notAircraft},
                                              {"no identity", feedCounters.noIdentity},
                                              {"static ids", feedCounters.staticIds},
                                              {"blocked names", feedCounters.blockedNames},
                                              {"not accepting", feedCounters.notAccepting},
                                              {"broken", feedCounters.badRecords}}};
    std::string text;
    for (const auto& [name, count] : reasons)
        if (const uint64_t n = count) text += fmt::format("{}{} {}", text.empty() ? "" : ", ", name, n);
    return text.empty() ? "none" : text;
}

}  // namespace

std::string gf_messageLine() {
    LockGuard guard(g_panelLock);
    return g_panel.errorText.empty() ? g_panel.statusText : "Error " + g_panel.errorText;
}

std::string gf_statusLine() {
    return fmt::format(
        "{} | live {} ({}; {}) | created {}, removed {}, refused {} | records {}, used {}, dropped: {}",
        lamps(), g_panel.liveCount.load(),
        tally(engineCounters.byState, [](int i) { return gf_stateWord(static_cast<SimObjectState>(i)); }),
        tally(engineCounters.byStage, [](int i) { return gf_stageWord(static_cast<FlightStage>(i)); }),
        engineCounters.created.load(), engineCounters.removed.load(), engineCounters.refused.load(),
        feedCounters.datagrams.load(), feedCounters.queued.load(), drops());
}

std::string gf_airportLine() {
    const PanelView view = gf_panelView();
    if (view.airportCode.empty()) return {};
    if (!view.airportFileLoaded) return view.airportCode + ": its stands are not known";
    return fmt::format("{} {}: {} stands, parked live {}, static {}, {} updates", view.airportCode,
                       view.airportName, view.standCount, view.parkedLiveCount, view.parkedStaticCount,
                       view.updateCount);
}

}  // namespace skl
