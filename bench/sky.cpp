// See the header.
#include "bench/sky.h"

#include <cmath>

#include "bench/bench.h"
#include "core/locks.h"
#include "engine/category_constants.h"
#include "engine/engine.h"
#include "engine/engine_state.h"
#include "engine/live_table.h"
#include "simlink/session.h"
#include "simlink/user_aircraft.h"

namespace skl::bench {

namespace {

constexpr double feedStart = 1764000000;
constexpr int32_t replyTicks = 20, reportTicks = crowd;
constexpr double taxiKnots = 15;
constexpr int blockLegs = 4;                     // reports from one corner of a block to the next
constexpr double blockCorner = 90, zigzag = 60;  // degrees

void addActive(const Flight& flight, int32_t due) {
    LiveAc record;
    record.hexid = flight.hexid();
    record.callsign = flight.callsign();
    record.airline = "BAW";
    record.model = flight.model();
    gf_fillTypeValues(record);
    record.simState = SimObjectState::active;
    record.onGround = !flight.now().airborne;
    record.stage = record.onGround ? FlightStage::taxi : FlightStage::flying;
    record.lastFeedTime = feedStart - reportTicks * tickSeconds;
    LivePos first = flight.now();
    record.simLat = first.lat;
    record.simLon = first.lon;
    record.simAlt = first.alt;
    record.agl = std::min(first.alt, 2500.0);
    record.simHeading = toRad(first.track);
    first.time = due;
    record.stream().push_back(first);
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

}  // namespace

Flight::Flight(int number, Scene scene, std::mt19937& random)
    : number_(number), zigzags_(scene == Scene::curves) {
    const auto between = [&](double least, double most) {
        return std::uniform_real_distribution(least, most)(random);
    };
    const bool taxis = zigzags_ || (scene == Scene::mixed && number % 2 == 1);
    low_ = taxis || number % 10 == 0;
    pos_.lat = skyCenter.lat + between(-0.5, 0.5);
    pos_.lon = skyCenter.lon + between(-0.7, 0.7);
    pos_.track = between(0, 360);
    pos_.alt = taxis ? 0 : low_ ? 2000 : between(12000, 38000);
    pos_.speed = pos_.tas = taxis ? taxiKnots : low_ ? 110 : between(250, 480);
    pos_.airborne = !taxis;
    clock_ = between(0, 240);
}

const LivePos& Flight::after(double seconds) {
    if (pos_.airborne)
        fly(seconds);
    else
        drive(seconds);
    pos_.track = std::fmod(pos_.track + 360, 360);
    return pos_;
}

/// Along a leg, at whose end the corner lies.
void Flight::drive(double seconds) {
    advance(pos_.track, seconds);
    ++legs_;
    if (zigzags_)
        pos_.track += legs_ % 2 ? zigzag : -zigzag;
    else if (legs_ % blockLegs == 0)
        pos_.track += blockCorner;
}

/// A minute's turn in three minutes, a climb and a descent of a minute each in four.
void Flight::fly(double seconds) {
    clock_ += seconds;
    const double turn = std::fmod(clock_, 180) < 60 ? (number_ % 2 ? 1.5 : -1.5) * seconds : 0;
    const double phase = std::fmod(clock_, 240);
    pos_.vs = low_ || phase >= 120 ? 0 : phase < 60 ? 1500 : -1500;
    pos_.alt += pos_.vs / 60 * seconds;
    advance(pos_.track + turn / 2, seconds);
    pos_.track += turn;
}

void Flight::advance(double course, double seconds) {
    const LaLo next = destinationPoint(pos_.pos(), toRad(course), pos_.speed * seconds / 3600 * feetPerNm);
    pos_.lat = next.lat;
    pos_.lon = next.lon;
}

Sky::Sky(int count, int32_t firstDue, Scene scene) {
    gf_resetEngine();
    gf_reserveEngine();
    engineUser.lat = simUser.lat = skyCenter.lat;
    engineUser.lon = simUser.lon = skyCenter.lon;
    std::mt19937 random(7);
    for (int i = 0; i < count; ++i)
        addActive(flights_.emplace_back(i, scene, random), firstDue + i % reportTicks);
}

Sky::~Sky() {
    gf_resetEngine();
}

void Sky::fillStreams(int points) {
    for (size_t i = 0; i < flights_.size(); ++i)
        for (int k = 0; k < points; ++k) {
            LivePos pos = flights_[i].after(reportTicks * tickSeconds);
            pos.time = liveAcs[i].stream().back().time + reportTicks;
            liveAcs[i].stream().push_back(pos);
        }
}

void Sky::arrive(int32_t first, int32_t count) {
    for (int32_t i = first; i < first + count; ++i) report(flights_[static_cast<size_t>(i % crowd)]);
    if (engineTick % replyTicks != 0) return;
    for (const Flight& flight : flights_)
        if (flight.low())
            gf_postSimMsg({.objectId = flight.objectId(),
                           .hexid = flight.now().airborne ? 0u : 1u,
                           .kind = msgHeight,
                           .a = 0,
                           .b = flight.now().alt});
}

void Sky::check() const {
    require(liveAcs.size() == flights_.size() && removalQueue.empty(), "aircraft were lost");
    for (const LiveAc& record : liveAcs)
        require(record.predictLeft == 0 && record.simState == SimObjectState::active,
                "an aircraft has run out of reports");
}

}  // namespace skl::bench
