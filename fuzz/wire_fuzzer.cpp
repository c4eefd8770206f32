// Messages of the simulator behind its OPEN: any bytes, through the message layer into the session's
// dispatch, while a flight runs and objects are on their way; then the engine takes what the dispatch has
// told it.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <span>
#include <vector>

#include "core/clock.h"
#include "core/errors.h"
#include "core/run_state.h"
#include "engine/engine.h"
#include "engine/engine_state.h"
#include "engine/live_table.h"
#include "liveries/catalogue.h"
#include "platform/net.h"
#include "platform/simconnect/wire_client.h"
#include "simlink/dispatch.h"
#include "simlink/identification.h"
#include "simlink/session.h"

namespace {

using Bytes = std::vector<std::byte>;

/// Gives its bytes in small pieces and ends; takes everything.
class Stream : public skl::net::ByteStream {
  public:
    explicit Stream(Bytes bytes) : bytes_(std::move(bytes)) {}
    State state(skl::net::Millis) override { return State::open; }
    int64_t write(std::span<const std::byte> bytes) override { return static_cast<int64_t>(bytes.size()); }
    int64_t read(std::span<std::byte> buffer) override {
        const size_t count = std::min({buffer.size(), bytes_.size() - at_, size_t{100}});
        if (count == 0) return -1;
        std::memcpy(buffer.data(), bytes_.data() + at_, count);
        at_ += count;
        return static_cast<int64_t>(count);
    }

  private:
    Bytes bytes_;
    size_t at_ = 0;
};

/// Nothing is waited for: what is to come has come.
class NoClock : public skl::Clock {
  public:
    skl::Nanos utcNow() override { return steadyNow(); }
    skl::Nanos steadyNow() override { return std::chrono::milliseconds(++looks_); }
    bool waitUntil(skl::Nanos, const std::function<bool()>& done) override {
        for (int look = 0; done && look < 1000; ++look)
            if (done()) return true;
        return false;
    }

  private:
    int64_t looks_ = 0;
};

void put(Bytes& bytes, uint32_t value) {
    const auto* begin = reinterpret_cast<const std::byte*>(&value);
    bytes.insert(bytes.end(), begin, begin + sizeof value);
}

/// Two aircraft: one that the simulator shows, and one that it was asked for and has not.
void flyAlready() {
    constexpr uint32_t shown = 1001, firstHexid = 0x400001;
    skl::g_cycleRunning = skl::g_flightRunning = true;
    for (uint32_t i = 0; i < 2; ++i) {
        skl::LiveAc record;
        record.hexid = firstHexid + i;
        record.callsign = i ? "BAW12" : "BAW11";
        record.simState = i ? skl::SimObjectState::adding2sim : skl::SimObjectState::active;
        record.addingSince = 1;
        record.objectId = i ? 0 : shown;
        record.stream().resize(2);
        skl::lf_addLive(std::move(record));
    }
    skl::lf_rememberCreate(1, firstHexid + 1, "BAW12");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static NoClock clock;
    skl::gf_setClock(&clock);
    constexpr uint32_t openSize = 308, version = 5, recvOpen = 2;
    Bytes bytes;
    for (const uint32_t value : {openSize, version, recvOpen}) put(bytes, value);
    bytes.resize(openSize);
    const auto* begin = reinterpret_cast<const std::byte*>(data);
    bytes.insert(bytes.end(), begin, begin + size);
    // A run whose stop was asked for by the input before would look away from most of this one.
    skl::gf_resetRunState();
    auto client = std::make_unique<skl::wire::WireClient>(
        [&bytes](std::string&) { return std::make_unique<Stream>(bytes); });
    if (!client->open("fuzz", [] { return false; })) std::abort();  // the OPEN in front is sound
    skl::simHandle = std::move(client);
    flyAlready();
    for (int round = 0; round < 1000; ++round) {
        try {
            if (skl::simHandle->callDispatch(skl::lf_dispatch) != skl::SimConnect::Dispatch::alive) break;
        } catch (const skl::UserErrorException&) {
            break;
        }
    }
    skl::lf_processSimInbox();
    for (const skl::LiveAc& record : skl::liveAcs)
        for (const double value : {record.simAlt, record.agl, record.simPitch})
            if (!std::isfinite(value)) std::abort();
    skl::gf_resetSimLink();
    skl::gf_resetEngine();
    skl::gf_clearUncreatable();
    return 0;
}
