// The decoder of traffic lines. Baseline: the same lines cut at their commas, and std::from_chars on the
// numbers that the decoder reads, nothing else.
#include <fmt/format.h>

#include <charconv>
#include <cmath>
#include <cstring>
#include <random>

#include "bench/bench.h"
#include "core/run_state.h"
#include "engine/engine_state.h"
#include "feed/feed.h"
#include "feed/traffic_reader.h"
#include "panel/traffic_range.h"

namespace skl::bench {

namespace {

constexpr LaLo user{47.46, 8.55};
constexpr size_t lineCount = 4096;
constexpr int rounds = 50;    // over all lines, in a run
constexpr size_t batch = 64;  // records that wait for the engine before they are taken away

struct Line {
    std::string text;
    bool hasTrueHeading;
};

/// Airborne traffic `north` degrees north of the user, as the feed writes it.
std::vector<Line> makeLines(double north) {
    std::mt19937 random(1);
    const auto between = [&](double low, double high) {
        return std::uniform_real_distribution(low, high)(random);
    };
    std::vector<Line> lines;
    for (size_t i = 0; i < lineCount; ++i) {
        const bool adsb = i % 5 != 0;
        const double altitude = 25 * std::round(between(120, 1560));
        lines.push_back(
            {fmt::format("RTTFC,{},{:.6f},{:.6f},{},{},0,{:.2f},{:.1f},{},{},{},{},{},{:.1f},X,,{},{},{},{},"
                         "{:.2f},{:.2f},{:.2f},{:.1f},{:.1f},-1,0,none,A3",
                         4700000 + i, user.lat + north + between(-0.4, 0.4), user.lon + between(-0.5, 0.5),
                         altitude, 64 * std::round(between(-30, 30)), between(0, 360), between(140, 500),
                         fmt::format("SWR{}", i), i % 3 ? "A320" : "B77W", fmt::format("HB-J{:02x}", i % 256),
                         i % 4 ? "ZRH" : "", i % 4 ? "LHR" : "", 1764000000 + i * 0.1,
                         adsb ? "adsb_icao" : "mlat", altitude + 250, 280, i % 6 ? 430 : -1, 0.78,
                         between(-1, 1), between(-25, 25), between(0, 360), between(0, 360)),
             adsb});
    }
    return lines;
}

/// As the decoder cuts a line.
void split(std::string_view line, std::vector<std::string_view>& fields) {
    fields.clear();
    const char* from = line.data();
    const char* const end = from + line.size();
    while (from != end) {
        const void* comma = std::memchr(from, ',', static_cast<size_t>(end - from));
        if (!comma) break;
        const char* to = static_cast<const char*>(comma);
        fields.emplace_back(from, static_cast<size_t>(to - from));
        from = to + 1;
    }
    fields.emplace_back(from, static_cast<size_t>(end - from));
}

template <class Number>
double read(std::string_view text) {
    Number value{};
    std::from_chars(text.data(), text.data() + text.size(), value);
    return static_cast<double>(value);
}

double baseline(const Line& line, std::vector<std::string_view>& fields) {
    split(line.text, fields);
    double sum = read<uint32_t>(fields[1]);
    for (const size_t field : {14, 2, 3, 8, 4, 7, 5, 23, 20}) sum += read<double>(fields[field]);
    if (line.hasTrueHeading) sum += read<double>(fields[25]);
    return sum;
}

double secondsOfBaseline(const std::vector<Line>& lines) {
    std::vector<std::string_view> fields;
    fields.reserve(64);
    return secondsOf([&] {
        double sum = 0;
        for (int i = 0; i < rounds; ++i)
            for (const Line& line : lines) sum += baseline(line, fields);
        keep(sum);
    });
}

/// The engine's side, taking the records out, is not counted.
double secondsOfDecoder(TrafficReader& reader, const std::vector<Line>& lines) {
    double seconds = 0;
    for (int i = 0; i < rounds; ++i)
        for (size_t from = 0; from < lines.size(); from += batch) {
            seconds += secondsOf([&] {
                for (size_t k = from; k < from + batch; ++k) reader.processText(lines[k].text);
            });
            trafficInbox.clear();
        }
    return seconds;
}

}  // namespace

Rows decodeRows() {
    constexpr double records = double{lineCount} * rounds;
    const auto near = makeLines(0), far = makeLines(20);
    static TrafficReader reader;
    reader.setFilterPos(user);
    gf_applyRange(60);
    g_acceptTraffic = true;
    const uint64_t queued = feedCounters.queued, outside = feedCounters.outOfRange;

    double base = 1e9, inRange = 1e9, outOfRange = 1e9;
    uint64_t allocated = 0;
    for (int run = 0; run < runs; ++run) {
        base = std::min(base, secondsOfBaseline(near));
        inRange = std::min(inRange, secondsOfDecoder(reader, near));
        const uint64_t before = allocations();
        outOfRange = std::min(outOfRange, secondsOfDecoder(reader, far));
        allocated += allocations() - before;
    }
    g_acceptTraffic = false;
    require(feedCounters.queued - queued == runs * rounds * lineCount, "not all records were in range");
    require(feedCounters.outOfRange - outside == runs * rounds * lineCount,
            "not all records were out of range");

    const double ratio = inRange / base, perSecond = records / inRange;
    return {
        {"Decode a record in range", "at most 2.0 times split and from_chars",
         fmt::format("{:.2f} times ({:.0f} ns against {:.0f} ns)", ratio, inRange / records * 1e9,
                     base / records * 1e9),
         ratio <= 2},
        {"", "1,000,000 records a second", fmt::format("{:.2f} million", perSecond / 1e6), perSecond >= 1e6},
        {"Decode a record out of range", "no heap allocation",
         fmt::format("{} allocations in {:.0f} records, {:.0f} ns each", allocated, records * runs,
                     outOfRange / records * 1e9),
         allocated == 0}};
}

}  // namespace skl::bench
