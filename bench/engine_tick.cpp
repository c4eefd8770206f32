// The engine's tick with aircraft in the air, each on a path of its own: straight legs, turns, climbs and
// descents; one in ten flies low, so that the simulator reports its height with every reply about what is in
// range.
#include <fmt/format.h>

#include <cmath>
#include <random>

#include "bench/bench.h"
#include "bench/world_data.h"
#include "core/locks.h"
#include "engine/category_constants.h"
#include "engine/engine.h"
#include "engine/engine_state.h"
#include "engine/live_table.h"
#include "simlink/session.h"
#include "simlink/user_aircraft.h"

namespace skl::bench {

namespace {

constexpr LaLo center{51.0, 1.0};
constexpr double feedStart = 1764000000;
constexpr int32_t replayTicks = 3000, replyTicks = 20;
constexpr int32_t reportTicks = 500;  // between two reports of an aircraft
constexpr int crowd = reportTicks;    // so that one report falls into each tick
constexpr double tickSeconds = 0.01;

/// Where an aircraft truly is.
class Flight {
  public:
    Flight(int number, std::mt19937& random) : number_(number), low_(number % 10 == 0) {
        const auto between = [&](double least, double most) {
            return std::uniform_real_distribution(least, most)(random);
        };
        pos_.lat = center.lat + between(-0.5, 0.5);
        pos_.lon = center.lon + between(-0.7, 0.7);
        pos_.track = between(0, 360);
        pos_.alt = low_ ? 2000 : between(12000, 38000);
        pos_.speed = pos_.tas = low_ ? 110 : between(250, 480);
        pos_.airborne = true;
        clock_ = between(0, 240);
    }

    /// A minute's turn in three minutes, a climb and a descent of a minute each in four.
    const LivePos& after(double seconds) {
        clock_ += seconds;
        const double turn = std::fmod(clock_, 180) < 60 ? (number_ % 2 ? 1.5 : -1.5) * seconds : 0;
        const double phase = std::fmod(clock_, 240);
        pos_.vs = low_ || phase >= 120 ? 0 : phase < 60 ? 1500 : -1500;
        pos_.alt += pos_.vs / 60 * seconds;
        const LaLo next = destinationPoint(pos_.pos(), toRad(pos_.track + turn / 2),
                                           pos_.speed * seconds / 3600 * feetPerNm);
        pos_.lat = next.lat;
        pos_.lon = next.lon;
        pos_.track = std::fmod(pos_.track + turn + 360, 360);
        return pos_;
    }

    const LivePos& now() const { return pos_; }
    bool low() const { return low_; }
    uint32_t hexid() const { return 0x400000u + static_cast<uint32_t>(number_); }
    uint32_t objectId() const { return 1000u + static_cast<uint32_t>(number_); }
    std::string callsign() const { return fmt::format("BAW{}", number_); }
    const char* model() const { return low_ ? "C172" : number_ % 4 ? "A320" : "B77W"; }

  private:
    int number_;
    bool low_;
    double clock_ = 0;
    LivePos pos_;
};

/// A sky of active aircraft. Their first points fall due one by one within the pace of the reports.
class Sky {
  public:
    Sky(int count, int32_t firstDue) {
        gf_resetEngine();
        gf_reserveEngine();
        engineUser.lat = simUser.lat = center.lat;
        engineUser.lon = simUser.lon = center.lon;
        std::mt19937 random(7);
        for (int i = 0; i < count; ++i) add(flights_.emplace_back(i, random), firstDue + i % reportTicks);
    }
    ~Sky() { gf_resetEngine(); }
    Sky(const Sky&) = delete;
    Sky& operator=(const Sky&) = delete;

    /// Puts points into each stream for so many reports to come.
    void fillStreams(int points) {
        for (size_t i = 0; i < flights_.size(); ++i)
            for (int k = 0; k < points; ++k) {
                LivePos pos = flights_[i].after(reportTicks * tickSeconds);
                pos.time = liveAcs[i].stream.back().time + reportTicks;
                liveAcs[i].stream.push_back(pos);
            }
    }

    /// What arrives before a tick: the reports from `first` on, and the simulator's reply.
    void arrive(int32_t first, int32_t count) {
        for (int32_t i = first; i < first + count; ++i) report(flights_[static_cast<size_t>(i % crowd)]);
        if (engineTick % replyTicks != 0) return;
        for (const Flight& flight : flights_)
            if (flight.low())
                gf_postSimMsg(
                    {.objectId = flight.objectId(), .kind = msgHeight, .a = 0, .b = flight.now().alt});
    }

    void check() const {
        require(liveAcs.size() == flights_.size() && removalQueue.empty(), "aircraft were lost");
        for (const LiveAc& record : liveAcs)
            require(record.predictLeft == 0 && record.simState == SimObjectState::active,
                    "an aircraft has run out of reports");
    }

  private:
    static void add(const Flight& flight, int32_t due) {
        LiveAc record;
        record.hexid = flight.hexid();
        record.callsign = flight.callsign();
        record.airline = "BAW";
        record.model = flight.model();
        gf_fillTypeValues(record);
        record.simState = SimObjectState::active;
        record.stage = FlightStage::flying;
        record.lastFeedTime = feedStart - reportTicks * tickSeconds;
        LivePos first = flight.now();
        record.simLat = first.lat;
        record.simLon = first.lon;
        record.simAlt = first.alt;
        record.agl = std::min(first.alt, 2500.0);
        record.simHeading = toRad(first.track);
        first.time = due;
        record.stream.push_back(first);
        lf_setObjectId(lf_addLive(std::move(record)), flight.objectId());
    }

    void report(Flight& flight) {
        TrafficUpdate update;
        update.hexid = flight.hexid();
        update.callsign = flight.callsign();
        update.model = flight.model();
        update.pos = flight.after(reportTicks * tickSeconds);
        update.pos.time = engineTick + replayTicks;
        update.feedTime = feedStart + engineTick * tickSeconds;
        const LockGuard guard(g_trafficLock);
        trafficInbox.push_back(std::move(update));
    }

    std::vector<Flight> flights_;
};

struct TickTimes {
    double mean, p999;
};

TickTimes timeTicks(Sky& sky, int32_t count) {
    std::vector<double> times;
    times.reserve(static_cast<size_t>(count));
    double sum = 0;
    for (int32_t i = 0; i < count; ++i) {
        sky.arrive(engineTick % crowd, 1);
        times.push_back(secondsOf(lf_engineTick));
        sum += times.back();
    }
    return {sum / count, quantile(times, 0.999)};
}

Row tickRow(const char* work, const char* goal, double seconds, double limit) {
    return {work, goal,
            fmt::format("{:.1f} us, {:.2f} percent of a tick", seconds * 1e6, seconds / tickSeconds * 100),
            seconds < limit};
}

/// Two reports in every second tick, and none in the others, which are looked at.
Row allocationRow(Sky& sky, int32_t count) {
    uint64_t allocated = 0;
    int32_t quiet = 0;
    for (int32_t i = 0; i < count; ++i) {
        const bool odd = engineTick % 2 != 0;
        sky.arrive(engineTick % crowd, odd ? 0 : 2);
        const uint64_t before = allocations();
        lf_engineTick();
        if (!odd) continue;
        allocated += allocations() - before;
        ++quiet;
    }
    return {"Heap in a tick without report, spawn, removal", "no allocation after 60 s",
            fmt::format("{} in {} ticks", allocated, quiet), allocated == 0};
}

/// Seconds of a tick for each aircraft; all fly out of streams filled before, segments as they fall.
double costPerAircraft(int count) {
    constexpr int32_t warmUp = 1000, ticks = 1600;
    Sky sky(count, 0);
    sky.fillStreams(8);
    for (int32_t i = 0; i < warmUp; ++i) lf_engineTick();
    const double seconds = secondsOf([] {
        for (int32_t i = 0; i < ticks; ++i) lf_engineTick();
    });
    sky.check();
    return seconds / ticks / count;
}

/// A walk over the table for each aircraft would give ten; what no longer fits into the caches costs some.
Row scalingRow() {
    double few = 1e9, many = 1e9;
    for (int run = 0; run < runs; ++run) {
        few = std::min(few, costPerAircraft(500));
        many = std::min(many, costPerAircraft(5000));
    }
    return {"Tick for each aircraft, 5,000 against 500", "flat: at most 2.0 times",
            fmt::format("{:.2f} times ({:.0f} ns against {:.0f} ns)", many / few, many * 1e9, few * 1e9),
            many <= 2 * few};
}

}  // namespace

Rows engineTickRows() {
    constexpr int32_t warmUp = 9000, ticks = 20000;
    gf_readDbaseXml(shippedDbase());
    Rows rows;
    {
        Sky sky(crowd, replayTicks);
        timeTicks(sky, warmUp);
        TickTimes best{1e9, 1e9};
        for (int run = 0; run < runs; ++run) {
            const TickTimes times = timeTicks(sky, ticks);
            best = {std::min(best.mean, times.mean), std::min(best.p999, times.p999)};
        }
        rows.push_back(tickRow("Engine tick, 500 airborne, one report a tick",
                               "mean below 1 percent of 10 ms", best.mean, 0.01 * tickSeconds));
        rows.push_back(tickRow("", "p99.9 below 10 percent", best.p999, 0.1 * tickSeconds));
        rows.push_back(allocationRow(sky, ticks));
        sky.check();
    }
    rows.push_back(scalingRow());
    gf_clearDbase();
    return rows;
}

}  // namespace skl::bench
