// The engine's nouns: one timed point, what every aircraft has, a live aircraft, and the messages of the
// simulator side. Angles are radians and distances nautical miles unless a name says otherwise; times are
// ticks of 10 ms.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <limits>
#include <optional>
#include <string>

#include "core/geodesy.h"
#include "core/run_state.h"
#include "liveries/livery_ref.h"
#include "liveries/reference_db.h"

namespace skl {

inline constexpr int32_t ticksPerSecond = 100;
/// Live aircraft have transponder ids above this, static ones at or below it.
inline constexpr uint32_t highestStaticId = 10000;

enum class FlightStage : uint8_t {
    pushing_back,
    pushed_back,
    taxi,
    take_off,
    flying,
    parking,
    parked,
    birth
};
enum class SimObjectState : uint8_t { buffer, adding2sim, active, liveryrespawn, removingfromsim };
/// The words of log lines.
const char* gf_stageWord(FlightStage stage);
const char* gf_stateWord(SimObjectState state);

/// One time-stamped point of a flight.
struct LivePos {
    double lat = 0, lon = 0;  ///< degrees
    double alt = 0;           ///< feet; 0 for a report on the ground
    double speed = 0;         ///< over ground, knots
    double track = 0;         ///< degrees true
    double vs = 0;            ///< feet per minute
    double tas = 0;           ///< knots
    int32_t time = 0;         ///< tick at which the object should be here
    bool airborne = false;
    bool stopped = false;  ///< no motion between the point before this one and this one; set by the engine
    bool hasTrueHeading = false;
    std::optional<double> roll;         ///< radians, the feed's with the sign turned
    std::optional<double> trueHeading;  ///< radians

    LaLo pos() const { return {lat, lon}; }
};

/// What every tick reads of an aircraft in the air lies in two lines of a processor's cache: with thousands
/// of aircraft a tick waits for little else.
inline constexpr size_t cacheLine = 64;

/// What a live and a statically parked aircraft have in common.
struct AcBase {
    std::string airline;  ///< ICAO code; "PVT" for a private aircraft
    std::string model;    ///< ICAO type
    std::string origin, destination;
    std::string callsign;  ///< a trailing "_" marks a ghost, "*" a static aircraft
    std::string coupledIn, coupledOut;
    std::string regcode;
    bool coupledSearched = false;
    double halfSpanNm = 0;
    double staticCgFt = 0;  ///< the simulator's static height of the centre of gravity
    double rotatePitch = 0, climbPitch = 0;
    double groundTurnRate = 0;  ///< radians per tick
    double maxClimbPerTick = 0, slowSpeed = 0;
    uint32_t hexid = 0;
    AcCategory category = AcCategory::Light;
    LiveryRef title;  ///< empty until matched
    int32_t flareTicks = 0, touchdownTicks = 0, rotateTicks = 0, climbPitchTicks = 0;
    bool cargo = false;
    bool isFsltl = false;
    LaLo standPos;
    double standHeading = 0;
    WeekSlot parkedAt;
    uint32_t standId = 0;
    uint32_t throttleIdx = 5;
    uint32_t flapsIdx = 4;
    bool standCargo = false;
    bool removeWhenCreated = false;
    double staticPitch = 0;  ///< the simulator's static pitch
    double turnRate = 0;     ///< the rate in force, radians per tick
    // From here on, and in a live aircraft to dAlt: what every tick reads.
    alignas(cacheLine) uint32_t objectId = 0;
    SimObjectState simState = SimObjectState::buffer;
    bool eraseNow = false, eraseFromQueue = false;
};

/// A quadratic Bezier curve in a flat frame whose origin is its start; metres north and east of it.
struct GroundCurve {
    double ctrlEast = std::numeric_limits<double>::quiet_NaN();
    double ctrlNorth = std::numeric_limits<double>::quiet_NaN();
    double originLat = 0, originLon = 0;  ///< degrees
    double t0 = std::numeric_limits<double>::quiet_NaN();
    double endNorth = 0, endEast = 0;
    double t1 = std::numeric_limits<double>::quiet_NaN();
    double degreesPerMeterEast = 0;  ///< at the origin
    double perT = 0;                 ///< 1 / (t1 - t0): a division less in every tick
    bool set() const { return !std::isnan(ctrlEast) && !std::isnan(ctrlNorth); }
};

struct LiveAc : AcBase {
    FlightStage stage = FlightStage::birth;
    bool onGround = false;
    bool landing = false, derotating = false;
    int8_t flareState = 0;
    int32_t lookAt = look;                             ///< tick before which the stream needs no look
    double simLat = 0, simLon = 0;                     ///< degrees
    double simPitch = 0, simBank = 0, simHeading = 0;  ///< radians
    double simAlt = 0;                                 ///< feet
    double simVs = 0;                                  ///< feet per second
    double simTas = 0;                                 ///< knots
    double dLat = 0, dLon = 0;                         ///< degrees per tick
    double dPitch = 0, dBank = 0, dHeading = 0;        ///< radians per tick
    double dAlt = 0;                                   ///< feet per tick
    // Read by every tick on the ground.
    bool turningOnGround = false;
    double targetHeading = 0;
    double courseStep = 0;  ///< by which the course of the curve changes, radians per tick
    double curveT = 0, curveStep = 0;
    GroundCurve curve;
    double curveAngle = 0;
    double agl = 2500.0;  ///< feet, by the simulator; known below 2500 only
    // Read when a segment begins, or more seldom.
    double vsFpm = 0, tasKn = 0;  ///< of the segment being flown
    double lastFeedTime = 0;      ///< seconds
    double checkedLat = 0, checkedLon = 0;
    uint64_t parkedSince = 0;  ///< steady clock, 100 ns
    int32_t predictLeft = 0;   ///< predicted points still to come; 0 none running, -1 exhausted
    int32_t holdStart = 0;
    FlightStage prevStage = FlightStage::birth;
    bool parkedMoving = false;
    bool hasFlightPlan = false;
    bool nearUser = false;
    bool holding = false;
    LivePos pushSidePoint;
    double lastParkLat = 0, lastParkLon = 0;
    int32_t maxEarly = 1000, maxLate = 1000;  ///< the slack, ticks
    int32_t groundCount = 1, pushCount = 0;
    uint32_t awayCount = 0;
    double fieldHeight = 0, touchdownHeading = 0;
    double pushedDistance = 0, standDistFirst = 0, standDistLast = 0;
    double headingError = 0;
    std::optional<double> respawnHeading;
    std::optional<bool> pushTurnRight;
    std::optional<double> fieldElev;
    bool landed = false, towed = false, climbCleaned = false, departing = false;
    bool lightsHigh = false, lightsLow = false;
    bool rollout = false;
    bool leaveStand = false;
    int32_t addingSince = 0;         ///< tick at which the creation request went out
    int32_t implausibleReports = 0;  ///< reports in a row that no flight could have reached

    /// Front: the point being flown to. Whoever may change it makes the next tick look at it.
    std::deque<LivePos>& stream() {
        lookAt = look;
        return stream_;
    }
    const std::deque<LivePos>& stream() const { return stream_; }
    LaLo simPos() const { return {simLat, simLon}; }

    static constexpr int32_t look = std::numeric_limits<int32_t>::min();

  private:
    std::deque<LivePos> stream_;
};

/// Changes the stage and keeps the one before it; setting the stage that holds already changes nothing.
void gf_setStage(LiveAc& record, FlightStage stage);

/// From the SimConnect side to the engine.
struct SimMsg {
    uint32_t objectId = 0;
    uint32_t hexid = 0;   ///< or the on-ground flag for kind 3
    int32_t counter = 0;  ///< used while the object waits for its activation
    uint32_t kind = 0;    ///< one of the constants below
    double a = 0, b = 0;
};
inline constexpr uint32_t msgLiveIdentified = 0;  ///< b: height above ground, feet
inline constexpr uint32_t msgStaticIdentified = 1;
inline constexpr uint32_t msgObjectRemoved = 2;
inline constexpr uint32_t msgHeight = 3;      ///< a: ground altitude, b: height above ground, feet
inline constexpr uint32_t msgStaticData = 4;  ///< a: static height of the centre of gravity, feet; b: pitch
inline constexpr uint32_t msgRefused = 6;     ///< the simulator will not create this title
inline constexpr uint32_t msgNotCreated = 7;  ///< no room or no answer: the title is not to blame

/// Texts that name an aircraft in log lines.
std::string gf_shortForm(const AcBase& record);  ///< "{:3} {:4}" of airline and model
std::string gf_routeText(const AcBase& record);  ///< "{:3}->{:3}", or eight blanks
std::string gf_longForm(const AcBase& record);   ///< "{} {:8} {}" of padded callsign, registration and route
std::string gf_description(const AcBase& record);   ///< long form and short form
std::string gf_identityText(const AcBase& record);  ///< padded callsign, registration and short form

}  // namespace skl
