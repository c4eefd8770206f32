// The state of the feed: its shared values, the two readers, their lamps and their reset.
#include <algorithm>
#include <array>

#include "core/locks.h"
#include "feed/feed.h"
#include "feed/qnh_reader.h"
#include "feed/traffic_reader.h"
#include "panel/panel_state.h"

namespace skl {

std::atomic<bool> g_realTrafficHere{false};
std::atomic<bool> rtConnected{false};
std::atomic<bool> rtLevel2{false};
std::atomic<int32_t> qnh{1013};
FeedCounters feedCounters;

TrafficReader& lf_trafficReader() {
    static TrafficReader reader;
    return reader;
}

QnhReader& lf_qnhReader() {
    static QnhReader reader;
    return reader;
}

namespace {

class ReaderTask : public Task {
  public:
    ReaderTask(UdpReader& reader, uint16_t port) : reader_(reader), port_(port) {}
    std::optional<Nanos> step(std::chrono::milliseconds mayBlock) override {
        return reader_.step(port_, mayBlock);
    }

  private:
    UdpReader& reader_;
    const uint16_t port_;
};

std::array<UdpReader*, 2> readers() {
    return {&lf_trafficReader(), &lf_qnhReader()};
}

void updateLamp(UdpReader& reader, std::atomic<int32_t>& lamp) {
    const uint32_t count = reader.packetCount;
    if (count == reader.lastCount) {
        lamp = readerStale;
        reader.alive = false;
    } else if (!reader.alive) {
        lamp = readerRunning;
        reader.alive = true;
    }
    reader.lastCount = count;
}

}  // namespace

std::shared_ptr<Task> gf_trafficReaderTask(uint16_t port) {
    return std::make_shared<ReaderTask>(lf_trafficReader(), port);
}

std::shared_ptr<Task> gf_qnhReaderTask(uint16_t port) {
    return std::make_shared<ReaderTask>(lf_qnhReader(), port);
}

void gf_stopReaders() {
    for (UdpReader* reader : readers()) reader->stopFlag = true;
}

void gf_updateReaderLamps() {
    if (!g_panel.feedConnected) return;
    updateLamp(lf_trafficReader(), g_panel.trafficState);
    updateLamp(lf_qnhReader(), g_panel.weatherState);
    gf_invalidate(Band::status);
}

bool gf_anyReaderStale() {
    return g_panel.trafficState == readerStale || g_panel.weatherState == readerStale;
}

void gf_setFilterPos(LaLo position) {
    lf_trafficReader().setFilterPos(position);
}

void gf_setGroundReference(std::optional<GroundReference> reference) {
    lf_trafficReader().setGroundReference(reference);
}

double gf_feedTimestamp() {
    return lf_trafficReader().feedTimestamp();
}

void gf_resetFeed() {
    lf_qnhReader().resetValues();
    lf_trafficReader().resetValues();
    for (UdpReader* reader : readers()) {
        reader->stopFlag = false;
        reader->alive = true;
    }
    lf_qnhReader().packetCount = 0;
    lf_qnhReader().lastCount = 0;
}

void gf_collectCallsigns() {
    const LockGuard guard(g_trafficLock);
    lf_trafficReader().takeCallsigns();
    lf_trafficReader().collectCallsigns(true);
}

StringSet gf_takeCallsigns() {
    lf_trafficReader().collectCallsigns(false);
    return lf_trafficReader().takeCallsigns();
}

void gf_stopCollectingCallsigns() {
    gf_takeCallsigns();
}

}  // namespace skl
