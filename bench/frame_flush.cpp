// The output of one simulator frame over a real loopback connection to a reader that throws everything away:
// from the filled queues to the last byte taken by the system.
#include <fmt/format.h>

#include <array>
#include <atomic>
#include <random>
#include <thread>

#include "bench/bench.h"
#include "core/locks.h"
#include "platform/net.h"
#include "platform/simconnect/wire_client.h"
#include "simlink/ai_commands.h"
#include "simlink/session.h"
#include "simlink/sim_queues.h"

namespace skl::bench {

namespace {

constexpr uint32_t poses = 1000, lightEvents = 70, flapEvents = 10, creations = 2, removals = 5;
constexpr int frames = 300;  // in a run
constexpr net::Millis patience{5000};

/// The simulator's side: says that it is there, then reads until the stream ends.
class Drain {
  public:
    Drain() {
        net::NetError error;
        listener_ = net::systemNetwork().listenTcp("0", error);
        require(listener_ != nullptr, "no port for the reader");
        thread_ = std::thread([this] { run(); });
    }
    ~Drain() { thread_.join(); }
    Drain(const Drain&) = delete;
    Drain& operator=(const Drain&) = delete;

    uint16_t port() const { return listener_->port(); }
    void waitFor(uint64_t bytes) const {
        while (received_ < bytes) std::this_thread::yield();
    }

  private:
    void run() {
        const auto connection = listener_->accept(patience);
        if (!connection) return;
        constexpr std::array<uint32_t, 3> open{12, 5, sc::recvOpen};
        connection->sendAll({reinterpret_cast<const char*>(open.data()), sizeof open}, patience);
        std::vector<char> buffer(1u << 18);
        for (;;) {
            if (connection->waitReadable(net::Millis(100)) == 0) continue;
            const int count = connection->receive(buffer);
            if (count <= 0) return;
            received_ += static_cast<uint64_t>(count);
        }
    }

    std::unique_ptr<net::TcpListener> listener_;
    std::atomic<uint64_t> received_{0};
    std::thread thread_;
};

struct Traffic {
    uint64_t writes = 0, cutShort = 0, bytes = 0;
};

/// Counts the calls of the system's write.
class CountingStream : public net::ByteStream {
  public:
    CountingStream(std::unique_ptr<net::ByteStream> inner, Traffic& traffic)
        : inner_(std::move(inner)), traffic_(traffic) {}
    State state(net::Millis timeout) override { return inner_->state(timeout); }
    int64_t read(std::span<std::byte> buffer) override { return inner_->read(buffer); }
    int64_t write(std::span<const std::byte> bytes) override {
        const int64_t taken = inner_->write(bytes);
        ++traffic_.writes;
        if (taken < static_cast<int64_t>(bytes.size())) ++traffic_.cutShort;
        if (taken > 0) traffic_.bytes += static_cast<uint64_t>(taken);
        return taken;
    }

  private:
    std::unique_ptr<net::ByteStream> inner_;
    Traffic& traffic_;
};

void fillQueues() {
    std::mt19937 random(3);
    std::uniform_real_distribution<double> value(-1, 1);
    constexpr uint32_t firstObject = 5000;
    std::vector<PosEntry> batch;
    for (uint32_t i = 0; i < poses; ++i)
        batch.push_back({51 + value(random), value(random), value(random), value(random), value(random),
                         30000, value(random), 420, firstObject + i});
    gf_handOverPoses(batch);
    for (uint32_t i = 0; i < lightEvents; ++i) simEvent(firstObject + i, ev::landingLights, i % 2);
    for (uint32_t i = 0; i < flapEvents; ++i) simEvent(firstObject + i, ev::flapsSet, 8191);
    for (uint32_t i = 0; i < creations; ++i)
        simCreate({{51, 0, 30000, 0, 0, 90, 0, 420},
                   fmt::format("BAW{}", i),
                   "A320 of the benchmark",
                   0x400000 + i});
    for (uint32_t i = 0; i < removals; ++i) simRemove(firstObject + poses + i);
}

void connect(uint16_t port, Traffic& traffic) {
    auto client = std::make_unique<wire::WireClient>([&traffic, port](std::string&) {
        return std::make_unique<CountingStream>(net::systemNetwork().connectTcp("127.0.0.1", port, true),
                                                traffic);
    });
    require(client->open("bench", [] { return false; }), "no connection to the reader");
    const LockGuard guard(g_simLock);
    simHandle = std::move(client);
}

void dispatch() {
    const auto state = simHandle->callDispatch([](const SimRecv&) {});
    require(state == SimConnect::Dispatch::alive, "the connection was lost");
}

/// What one frame took.
struct Frame {
    double seconds;
    Traffic traffic;
};

Frame sendFrame(Traffic& traffic) {
    fillQueues();
    const Traffic before = traffic;
    const double seconds = secondsOf([] {
        lf_frameOutput();
        do dispatch();
        while (simHandle->backlogged());
    });
    const LockGuard guard(g_simLock);
    pendingCreates.clear();
    return {
        seconds,
        {traffic.writes - before.writes, traffic.cutShort - before.cutShort, traffic.bytes - before.bytes}};
}

/// The reader ends only once the session has.
struct SessionEnd {
    ~SessionEnd() { gf_resetSimLink(); }
};

}  // namespace

Rows frameFlushRows() {
    gf_resetSimLink();  // other measurements leave their commands in the queues
    Traffic traffic;
    Drain drain;
    const SessionEnd sessionEnd;
    connect(drain.port(), traffic);
    dispatch();
    double mean = 1e9, p99 = 1e9;
    uint64_t mostWrites = 0, cutShort = 0, bytes = 0;
    for (int run = 0; run < runs; ++run) {
        std::vector<double> times;
        double sum = 0;
        for (int i = 0; i < frames; ++i) {
            const Frame frame = sendFrame(traffic);
            drain.waitFor(traffic.bytes);
            sum += times.emplace_back(frame.seconds);
            bytes = frame.traffic.bytes;
            // Only where the system took less than it was given may a frame need another call.
            if (frame.traffic.cutShort == 0) mostWrites = std::max(mostWrites, frame.traffic.writes);
            cutShort += frame.traffic.cutShort != 0;
        }
        mean = std::min(mean, sum / frames);
        p99 = std::min(p99, quantile(times, 0.99));
    }
    require(bytes > poses * 100, "the frame was not sent");
    const std::string what = fmt::format("{} poses, {} events, {} creations, {} removals", poses,
                                         lightEvents + flapEvents, creations, removals);
    return {
        {"Frame flush, " + what, "below 1 ms",
         fmt::format("{:.3f} ms, p99 {:.3f} ms, {} KB", mean * 1e3, p99 * 1e3, bytes / 1024), mean < 1e-3},
        {"", "one send where the socket takes it",
         fmt::format("at most {} in a frame taken whole, {} of {} frames taken in pieces", mostWrites,
                     cutShort, frames * runs),
         mostWrites == 1}};
}

}  // namespace skl::bench
