// Reports that no flight could send: aircraft that jump, stand still, go back in time, change between air and
// ground, with numbers too large and too small, at places where longitudes and courses are treacherous.
// Seeded, so that a failure comes again; SKYLANTERN_SEEDS=N in the environment tries N seeds a place.
#include <fmt/format.h>

#include <cmath>
#include <cstdlib>
#include <random>
#include <string>

#include "core/locks.h"
#include "core/parameters.h"
#include "engine/engine.h"
#include "engine/engine_state.h"
#include "feed/traffic_reader.h"
#include "parking/stands.h"
#include "simlink/sim_queues.h"
#include "simlink/user_aircraft.h"
#include "tests/support/engine_world.h"

namespace skl::test {
namespace {

using namespace std::string_literals;

constexpr size_t flights = 60;
constexpr int limit = 25;
constexpr uint32_t firstHexid = 0x400001;

class Contradictions : public EngineTest {
  protected:
    void SetUp() override {
        EngineTest::SetUp();
        for (const char* name : {"BAW", "KLM"}) icaoAirlines.insert(name);
        MAX_LIVE_SEL.value = limit;
        g_acceptTraffic = true;
    }
    void TearDown() override {
        gf_resetStands();
        EngineTest::TearDown();
    }

    double between(double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(random_);
    }
    bool chance(int oneIn) { return random_() % static_cast<unsigned>(oneIn) == 0; }

    struct Flight {
        double lat = 0, lon = 0, alt = 0, track = 0, speed = 0;
        int mood = 0;
    };

    void startAt(LaLo home, unsigned seed) {
        random_.seed(seed);
        home_ = home;
        engineUser.lat = simUser.lat = home.lat;
        engineUser.lon = simUser.lon = home.lon;
        reader_.setFilterPos(home);
        reader_.setGroundReference(GroundReference{home, 83});
        for (uint32_t i = 0; i < 20; ++i) {
            Stand& stand = stands.emplace_back();
            stand.id = fmt::format("S{}", i);
            stand.lat = std::min(home.lat + 0.0005 * i, 89.9999);
            stand.lon = home.lon;
            stand.radius = 0.015;
            stand.sid = i + 1;
        }
        lf_standsChanged();
        g_apfLoaded = true;
        for (Flight& flight : flights_) renew(flight);
    }

    void renew(Flight& flight) {
        flight = {std::clamp(home_.lat + between(-0.4, 0.4), -90.0, 90.0),
                  home_.lon + between(-0.5, 0.5),
                  between(-500, 40000),
                  between(0, 360),
                  between(0, 500),
                  static_cast<int>(random_() % 6)};
        if (chance(3))
            flight.lat = std::clamp(home_.lat + between(-0.01, 0.01), -90.0, 90.0),
            flight.alt = between(0, 90);
    }

    std::string number(double sound) {
        static constexpr const char* odd[] = {"0",     "-1",     "1e300",     "-1e300", "1e-300",
                                              "1e308", "-1e308", "360",       "-360",   "1e20",
                                              "-0",    "1e9",    "4294967296"};
        static constexpr const char* broken[] = {"nan", "inf", "", "null", "x", "1e999", "-inf"};
        if (chance(40)) return odd[random_() % std::size(odd)];
        if (chance(400)) return broken[random_() % std::size(broken)];
        return fmt::format("{:.6f}", sound);
    }

    void step(Flight& flight) {
        switch (flight.mood) {
            case 0:  // flies on, more or less
                flight.lat = std::clamp(
                    flight.lat + flight.speed * 3 / 3600 / 60 * std::cos(toRad(flight.track)), -90.0, 90.0);
                flight.lon += flight.speed * 3 / 3600 / 60 * std::sin(toRad(flight.track));
                flight.alt += between(-200, 200);
                flight.track += between(-20, 20);
                break;
            case 1:  // jumps
                renew(flight);
                flight.mood = 1;
                break;
            case 2:  // stands still at speed
                break;
            case 3:  // between air and ground
                flight.alt = chance(2) ? 0 : between(0, 3000);
                flight.speed = chance(2) ? between(0, 30) : between(100, 500);
                break;
            case 4:  // creeps about
                flight.lat = std::clamp(flight.lat + between(-1e-5, 1e-5), -90.0, 90.0);
                flight.speed = between(0, 3);
                flight.alt = 0;
                break;
            default:  // to and fro
                flight.track += 180;
                flight.lat = std::clamp(flight.lat + between(-0.005, 0.005), -90.0, 90.0);
                break;
        }
        if (chance(30)) renew(flight);
    }

    /// What no airline calls a flight or an airport.
    std::string text(const std::string& sound) {
        static const std::string odd[] = {
            std::string(300, 'A'), "<&\"'>", "{}", "%s%n", "../../x", "\xff\xfe", "A\nB", "A\0B"s, "_", "*"};
        return chance(200) ? odd[random_() % std::size(odd)] : sound;
    }

    void report(size_t index) {
        Flight& flight = flights_[index];
        step(flight);
        const double lon = flight.lon > 180    ? flight.lon - 360
                           : flight.lon < -180 ? flight.lon + 360
                                               : flight.lon;
        static constexpr const char* types[] = {"A320", "B738", "B744", "C172", "F16",
                                                "EC35", "XXXX", "",     "ZZZZ"};
        const char* type = types[chance(50) ? random_() % std::size(types) : index % 6];
        const std::string name =
            chance(100) ? "" : fmt::format("{}{}", index % 2 ? "BAW" : "KLM", chance(80) ? 1 : index);
        const double time = clock_ + (chance(10) ? between(-120, 120) : 0);
        reader_.processText(fmt::format(
            "RTTFC,{},{:.7f},{:.7f},{},{},1,{},{},{},{},{},{},{},{:.2f},X,,{},{},-1,{},-1,0,{},"
            "-1,{},0,none,A3",
            firstHexid + index, flight.lat, lon, number(flight.alt), number(between(-3000, 3000)),
            number(flight.track), number(flight.speed), text(name), type, text(""), text("LHR"), text("AMS"),
            time, chance(3) ? "adsb_icao" : "mlat", number(flight.alt), number(flight.speed),
            number(between(-30, 30)), chance(5) ? number(between(0, 360)) : "-1"));
    }

    /// The simulator says what it likes of heights.
    void height() {
        if (liveAcs.empty()) return;
        const uint32_t id = liveAcs[random_() % liveAcs.size()].objectId;
        if (id)
            gf_postSimMsg(
                {.objectId = id, .kind = msgHeight, .a = between(-100, 8000), .b = between(-50, 3000)});
    }

    void check() {
        ASSERT_LE(liveAcs.size(), flights);
        for (const LiveAc& it : liveAcs) {
            for (const double value :
                 {it.simLat, it.simLon, it.simAlt, it.simPitch, it.simBank, it.simHeading})
                ASSERT_TRUE(std::isfinite(value)) << it.callsign << " " << gf_stageWord(it.stage);
            ASSERT_LE(std::abs(it.simLat), 90) << it.callsign;
            ASSERT_LE(std::abs(it.simLon), 180) << it.callsign;
            ASSERT_LE(std::abs(it.simBank), 2 * pi) << it.callsign;
            ASSERT_LE(std::abs(it.simPitch), pi) << it.callsign;
            ASSERT_LT(it.stream().size(), 100u) << it.callsign;
        }
        ASSERT_LT(trafficInbox.size(), 2000u);
        ASSERT_LE(addingStack.size(), flights);
        ASSERT_LE(creationQueueLive.size(), 2 * flights);
        ASSERT_LE(removalQueue.size(), 2 * flights);
        ASSERT_LE(newAcList.size(), 2 * flights);
        ASSERT_LE(simulator_.objects.size(), 2 * flights);
        LockGuard guard(g_eventLock);
        ASSERT_LE(simInbox.size() + pendingObjects.size(), 4 * flights);
    }

    /// What the simulator is told with each frame.
    void checkPoses() {
        LockGuard guard(g_simLock);
        ASSERT_LE(posReadSide.size(), flights);
        for (const PosEntry& pose : posReadSide) {
            const double sum = pose.alt + pose.pitch + pose.bank + pose.heading + pose.vs + pose.tas;
            ASSERT_TRUE(std::isfinite(sum)) << pose.objectId;
            ASSERT_TRUE(std::abs(pose.lat) <= 90 && std::abs(pose.lon) <= 180) << pose.objectId;
        }
    }

    void run(LaLo home, unsigned seed, int ticks) {
        startAt(home, seed);
        simulator_.run(ticks, [this](int tick) {
            if (::testing::Test::HasFatalFailure()) return;
            clock_ += 0.01;
            if (tick % 5 == 0) report(random_() % flights);
            if (tick % 20 == 0) height();
            if (tick % 100 == 0) check();
            checkPoses();
            if (tick % 20000 == 19999) {  // the user is elsewhere all of a sudden
                engineUser.lat = std::clamp(home_.lat + between(-0.3, 0.3), -90.0, 90.0);
                simUser.lat = engineUser.lat;
            }
        });
        ASSERT_FALSE(HasFatalFailure());
        EXPECT_GT(simulator_.created, ticks / 10000) << "hardly anything was shown";
        gf_clearSky();
        simulator_.run(4000);
        EXPECT_TRUE(simulator_.objects.empty()) << simulator_.objects.size() << " are left";
        EXPECT_TRUE(liveAcs.empty());
        for (const std::string& line : logLines())
            EXPECT_TRUE(line.find("xception") == std::string::npos ||
                        line.find("exception in processLineSub") != std::string::npos)
                << line;
    }

    std::mt19937 random_;
    LaLo home_;
    double clock_ = 1764000000;
    std::array<Flight, flights> flights_;
    TrafficReader reader_;
    QueueSimulator simulator_;
};

struct Place {
    const char* name;
    LaLo home;
};

class ContradictionsAt : public Contradictions, public ::testing::WithParamInterface<Place> {};

TEST_P(ContradictionsAt, LeaveEverythingFiniteBoundedAndRemoved) {
    const char* wanted = std::getenv("SKYLANTERN_SEEDS");
    const unsigned seeds = wanted ? static_cast<unsigned>(std::strtoul(wanted, nullptr, 10)) : 1;
    for (unsigned seed = 1; seed <= seeds; ++seed) {
        SCOPED_TRACE(seed);
        if (seed > 1) {
            TearDown();
            SetUp();
        }
        simulator_ = {};
        run(GetParam().home, seed, 250000);
        if (HasFailure()) return;
    }
}

INSTANTIATE_TEST_SUITE_P(, ContradictionsAt,
                         ::testing::Values(Place{"London", {51.47, -0.45}},
                                           Place{"DateLine", {-17.75, 179.99}},
                                           Place{"NorthPole", {89.99, 10}}, Place{"SouthPole", {-90, 0}}),
                         [](const auto& place) { return place.param.name; });

}  // namespace
}  // namespace skl::test
