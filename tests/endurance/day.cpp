// A simulated day on the stepped clock: traffic in the air and at an airport with parked aircraft, renewals,
// the feed's link lost and found, the simulator cut so that a new run begins. What a day must not do is grow:
// the heap at the last hour is within one percent of that at hour 2, no descriptor is left open, no table
// swells.
//
//   day [--hours N]    4 hours unless told, at least 4
#include <fmt/format.h>
#include <malloc.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <string>

#include "core/folders.h"
#include "core/parameters.h"
#include "core/run_sequence.h"
#include "core/run_state.h"
#include "engine/engine_state.h"
#include "feed/feed.h"
#include "parking/stands.h"
#include "parking/static_ac.h"
#include "simlink/sim_queues.h"
#include "tests/run/run_world.h"

#if defined(__SANITIZE_ADDRESS__)
// Of the sanitizer's own interface; its header is not in every package of the compiler.
extern "C" size_t __sanitizer_get_current_allocated_bytes();
#endif

namespace skl::test {

int hoursToRun = 4;

namespace {

constexpr LaLo field{47.458, 8.548};
constexpr double fieldFt = 1416;
constexpr int standCount = 80, overflights = 16, visitors = 12;
constexpr double hour = 3600;
/// An overflight is in range for so long; a visit is approach, roll to the stand, stay and gap.
constexpr double overflightSeconds = 900, approach = 150, roll = 90, stay = 1500, gap = 160;
constexpr double visitSeconds = approach + roll + stay + gap;

size_t liveHeap() {
#if defined(__SANITIZE_ADDRESS__)
    return __sanitizer_get_current_allocated_bytes();
#else
    return ::mallinfo2().uordblks;
#endif
}

size_t descriptors() {
    return static_cast<size_t>(std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}));
}

LaLo standPlace(int number) {
    return {field.lat + 0.0006 * (number / 10 - 4), field.lon + 0.0008 * (number % 10 - 5)};
}

class Day : public RunTest {
  protected:
    void SetUp() override {
        RunTest::SetUp();
        writeAirport();
        const std::filesystem::path parameters = gf_programDataPath() / "parameters.xml";
        std::string text = readFile(parameters);
        text.replace(text.find("</parameters>"), 0,
                     "<parameter name=\"CUSTOM_PARKING_PERCENTAGE\" value=\"60\"/>\n"
                     "<parameter name=\"RT_TRAFFIC\" value=\"false\"/>\n");
        writeFile(parameters, text);
        options.lat = standPlace(0).lat;
        options.lon = standPlace(0).lon - 0.01;
        options.alt = fieldFt + 5;
        options.elevation = fieldFt;
        options.onGround = true;
        world->setLimit((hoursToRun + 4) * hour);
    }

    /// Every stand has an aircraft for each third of the day, so that each renewal finds something to change.
    static void writeAirport() {
        std::string text =
            "<parameters><parameter name='airport_name' value='Test field'/><parameter name='altitude' "
            "value='1416'/>"
            "</parameters><parkpositions>";
        for (int i = 0; i < standCount; ++i) {
            const LaLo place = standPlace(i);
            text += fmt::format(
                "<parkpos id='S{}' latitude='{:.7f}' longitude='{:.7f}' heading='90' radius='30'>", i,
                place.lat, place.lon);
            for (int day = 1; day <= 7; ++day)
                for (int part = 0; part < 6; ++part) {
                    std::string hours;
                    for (int half = part * 8; half < part * 8 + 8; ++half)
                        hours += fmt::format("{}{}", hours.empty() ? "" : ",", half);
                    text += fmt::format(
                        "<opt reg='D-A{0}{1}{2}' airl='{3}' type='A320' day='{1}' hh='{4}' cs='{3}{0}{2}'/>",
                        i, day, part, (i + part) % 2 ? "DLH" : "BAW", hours);
                }
            text += "</parkpos>";
        }
        writeFile("airports/my_thirdparty/LSZH.xml", text + "</parkpositions>");
    }

    void flyOver(int number, double now) {
        const double shifted = now + number * overflightSeconds / overflights;
        const auto turn = static_cast<int>(shifted / overflightSeconds);
        const double in = shifted - turn * overflightSeconds;
        report(5000000u + static_cast<uint32_t>(number + turn * overflights),
               field.lat - 0.4 + in * 420 / 3600 / 60, field.lon - 0.3 + 0.04 * number, 14000 + 1000 * number,
               0, 420, fmt::format("DLH{}", turn % 500 * 16 + number));
    }

    /// Flies in from the south, rolls straight to its stand and stays. A stand has its own two flights, so
    /// that what is learned of it has an end.
    void visit(int number, double now) {
        const double shifted = now + number * visitSeconds / visitors;
        const auto turn = static_cast<int>(shifted / visitSeconds);
        const double in = shifted - turn * visitSeconds;
        if (in > approach + roll + stay) return;
        const LaLo stand = standPlace(number * (standCount / visitors) + 3);
        const LaLo threshold{stand.lat - roll * 8 / 3600 / 60, stand.lon};
        double lat = stand.lat, alt = 0, knots = 0;
        if (in < approach) {
            const double left = approach - in;
            lat = threshold.lat - left * 130 / 3600 / 60;
            alt = fieldFt + left * 11;
            knots = 130;
        } else if (in < approach + roll) {
            lat = threshold.lat + (in - approach) * 8 / 3600 / 60;
            knots = 8;
        }
        report(6000000u + static_cast<uint32_t>(number + turn * visitors), lat, stand.lon, alt, 0, knots,
               fmt::format("BAW{}", turn % 2 * visitors + number + 1));
    }

    void fly() {
        world->every(4, [this] {
            const double now = world->seconds();
            if (now < 8) return;
            for (int i = 0; i < overflights; ++i) flyOver(i, now);
            for (int i = 0; i < visitors; ++i) visit(i, now);
            if (realTraffic) realTraffic->takeSent();
        });
    }

    /// Every 47 minutes RealTraffic leaves for half a minute.
    void loseTheFeed() {
        for (double at = 47 * 60; at < hoursToRun * hour; at += 47 * 60) {
            world->at(at, [this] {
                if (realTraffic) realTraffic->leave();
            });
            world->at(at + 30, [this] { realTraffic.reset(); });
        }
    }

    /// The simulator is cut every two and a half hours.
    static std::string cuts() {
        std::string script;
        for (double at = 2.5 * hour; at < (hoursToRun - 0.4) * hour; at += 2.5 * hour)
            script += fmt::format("{:.0f} cut\n", at);
        return script;
    }

    void look(int atHour) {
        heap_ = liveHeap();
        const size_t open = descriptors();
        size_t points = 0;
        for (const LiveAc& it : liveAcs) points += it.stream().size();
        size_t seen = 0;
        for (const Stand& stand : stands) seen += stand.options.size();
        fmt::print(
            "hour {:2}: heap {:8} bytes, {} descriptors; live {:3} with {} points, static {:2}, options {}, "
            "known liveries {}, creations waiting {}, removals {}, records {}; created {}, removed {}\n",
            atHour, heap_, open, liveAcs.size(), points, staticAcs.size(), seen, liveryMemory.size(),
            creationQueueLive.size() + creationQueueStatic.size(), removalQueue.size(), trafficInbox.size(),
            engineCounters.created.load(), engineCounters.removed.load());
        std::fflush(stdout);
        if (atHour == 2) heapAtTwo_ = heap_, descriptorsAtTwo_ = open;
        if (atHour > 2) {
            EXPECT_EQ(open, descriptorsAtTwo_);
        }
        // What this day has in the air and on its stands at any time.
        EXPECT_GE(liveAcs.size(), 15u);
        EXPECT_LE(liveAcs.size(), static_cast<size_t>(overflights + 2 * visitors));
        EXPECT_LE(points, liveAcs.size() * 20);
        EXPECT_GE(staticAcs.size(), 10u);
        EXPECT_LE(staticAcs.size(), static_cast<size_t>(standCount));
        EXPECT_LE(liveryMemory.size(), 500u);
        EXPECT_LE(creationQueueLive.size() + creationQueueStatic.size() + removalQueue.size(), 20u);
        EXPECT_LE(trafficInbox.size(), 300u);
    }

    size_t heap_ = 0, heapAtTwo_ = 0, descriptorsAtTwo_ = 0;
};

TEST_F(Day, NothingGrows) {
    startSimulator(cuts());
    startRealTraffic();
    fly();
    loseTheFeed();
    for (int h = 1; h <= hoursToRun; ++h) world->at(h * hour, [this, h] { look(h); });
    closeAt(hoursToRun * hour + 60);
    int runs = 0;
    do {
        lf_run();
        ++runs;
        if (g_restartPending) world->waitUntil(world->steadyNow() + std::chrono::seconds(9), {});
    } while (g_restartPending);
    const double growth = (static_cast<double>(heap_) / static_cast<double>(heapAtTwo_) - 1) * 100;
    fmt::print("{} hours, {} runs: heap {:+.2f} percent from hour 2 to hour {} (goal within 1)\n", hoursToRun,
               runs, growth, hoursToRun);
    EXPECT_GE(world->seconds(), hoursToRun * hour);
    EXPECT_LT(std::abs(growth), 1);
    EXPECT_GE(runs, 2);
    EXPECT_GE(logCount("RealTraffic re-connected"), 1);
    EXPECT_GT(engineCounters.staticsPlaced.load(), 20u);
    EXPECT_EQ(simulatorReport()["exceptions"].size(), 0u) << simulatorReport()["exceptions"].dump();
}

}  // namespace
}  // namespace skl::test

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    if (argc == 3 && std::string(argv[1]) == "--hours")
        skl::test::hoursToRun = std::max(4, std::atoi(argv[2]));
    else if (argc > 1) {
        std::fputs("usage: day [--hours N]\n", stderr);
        return 2;
    }
    return RUN_ALL_TESTS();
}
