// The user's aircraft: where it is, what it is, how wide it is.
#pragma once

#include <atomic>
#include <cstdint>
#include <optional>
#include <string>

#include "core/geodesy.h"
#include "liveries/reference_db.h"
#include "simlink/simconnect.h"

namespace skl {

struct UserRecord {
    double lat = 0, lon = 0;                  ///< degrees
    double pitch = 0, bank = 0, heading = 0;  ///< radians, true heading
    double altitude = 0;                      ///< feet, never below 0
    double agl = 0;                           ///< feet
    double groundSpeed = 0;                   ///< knots
    int64_t zuluSeconds = 0, zuluDayOfYear = 0, zuluYear = 0, lightStates = 0;
    LaLo pos() const { return {lat, lon}; }
};

extern UserRecord simUser;     ///< under g_simLock; written by the SimConnect thread
extern UserRecord engineUser;  ///< the worker's copy, taken once a second
/// Where a flight ended; the replies that follow are of the next one.
struct FlightEnd {
    LaLo position;
    double groundSpeed = 0;  ///< knots
    bool onGround = false;
};
extern std::optional<FlightEnd> userFlightEnd;  ///< under g_simLock; written by the SimConnect thread
extern std::atomic<uint32_t> userObjectId;      ///< objects at or below it are not ours
extern std::atomic<bool> userOnGround, userOnGroundKnown;
extern std::atomic<int64_t>
    simEpoch;  ///< the simulator's UTC, seconds since 1970; kept while rtLevel2 is set
extern std::atomic<double> userHalfSpanNm;  ///< 0 while not known
extern std::atomic<AcCategory> userCategory;

/// Asks for a new position and gives the one of the reply before.
void gf_requestUser(UserRecord& record);
void gf_requestUserNames();
/// The user leaves the flight of this run, on the SimConnect thread.
void lf_noteFlightEnd();
/// A reply about one object, on the SimConnect thread. Throws UserErrorException 73.
void lf_dataReply(const SimRecv& message);
/// Seconds since 1970 of a day of a year of the Gregorian calendar; nothing for numbers that are no date at
/// all.
std::optional<int64_t> lf_epochOf(int64_t year, int64_t dayOfYear, int64_t seconds);
/// The values of a run's start.
void lf_resetUser();

}  // namespace skl
