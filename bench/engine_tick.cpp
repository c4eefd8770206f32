// The engine's tick with a sky of aircraft: its share of 10 ms, its heap, what each aircraft costs; and the
// search for a stand, which falls into single ticks.
#include <fmt/format.h>

#include "bench/bench.h"
#include "bench/sky.h"
#include "bench/world_data.h"
#include "engine/engine.h"
#include "engine/engine_state.h"
#include "engine/live_parking.h"
#include "parking/stands.h"

namespace skl::bench {

namespace {

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

Row ratioRow(const char* work, double dear, double cheap) {
    return {work, "at most 2.0 times",
            fmt::format("{:.2f} times ({:.0f} ns against {:.0f} ns)", dear / cheap, dear * 1e9, cheap * 1e9),
            dear <= 2 * cheap};
}

/// Seconds of a tick for each aircraft; all move out of streams filled before, segments as they fall.
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
    return ratioRow("Tick for each aircraft, 5,000 against 500, flat", many, few);
}

/// The same share of the whole tick, reports and the simulator's replies with it.
double costInTraffic(Scene scene) {
    constexpr int32_t warmUp = replayTicks + 1000, ticks = 4000;
    Sky sky(crowd, replayTicks, scene);
    timeTicks(sky, warmUp);
    const auto inCurve = [](const LiveAc& record) { return record.curve.set(); };
    require(scene != Scene::curves || std::count_if(liveAcs.begin(), liveAcs.end(), inCurve) > crowd * 3 / 4,
            "the aircraft drive straight on");
    double best = 1e9;
    for (int run = 0; run < runs; ++run) best = std::min(best, timeTicks(sky, ticks).mean);
    sky.check();
    return best / crowd;
}

/// An airport of 300 stands in rows, each with 60 options, none of them of the aircraft that asks.
void layStands() {
    gf_resetStands();
    for (int i = 0; i < 300; ++i) {
        Stand& stand = stands.emplace_back();
        stand.lat = skyCenter.lat + i / 30 * 0.002;
        stand.lon = skyCenter.lon + i % 30 * 0.0008;
        stand.radius = 25 / metersPerNm;
        for (int k = 1; k <= 60; ++k) {
            StandOption& option = stand.options.emplace_back();
            option.airl = "KLM";
            option.type = "B738";
            option.cs = fmt::format("KLM{}", k);
            option.optionId = k;
            option.real = true;
        }
    }
}

Row closestStandRow() {
    constexpr int searches = 2000;
    layStands();
    LiveAc record;
    record.callsign = "BAW12";
    record.airline = "BAW";
    record.model = "A320";
    record.halfSpanNm = 17 / metersPerNm;
    double best = 1e9;
    for (int run = 0; run < runs; ++run)
        best = std::min(best, secondsOf([&] {
                            for (int i = 0; i < searches; ++i) {
                                const LaLo at = stands[static_cast<size_t>(i % 300)].pos();
                                const LaLo beside{at.lat + 0.0003, at.lon + 0.0004};
                                keep(lf_closestStand(beside, record, 20 / metersPerNm, true));
                            }
                        }));
    gf_resetStands();
    return {"Closest-stand search, 300 stands, 60 options each, wide", "told",
            fmt::format("{:.1f} us", best / searches * 1e6), std::nullopt};
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
        rows.push_back(tickRow("Engine tick, 250 in the air, 250 taxi, one report a tick",
                               "mean below 1 percent of 10 ms", best.mean, 0.01 * tickSeconds));
        rows.push_back(tickRow("", "p99.9 below 10 percent", best.p999, 0.1 * tickSeconds));
        rows.push_back(allocationRow(sky, ticks));
        sky.check();
    }
    rows.push_back(scalingRow());
    rows.push_back(ratioRow("Tick for each aircraft, all in curves against all in the air",
                            costInTraffic(Scene::curves), costInTraffic(Scene::air)));
    rows.push_back(closestStandRow());
    gf_clearDbase();
    return rows;
}

}  // namespace skl::bench
