// One active aircraft flown by the motion core alone: reports come in through lf_decodeUpdate, ticks go by
// updateLiveAc, and the poses of every tick are kept apart from the engine's own batch.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "engine/live_ac.h"
#include "simlink/ai_commands.h"
#include "tests/support/temp_folder.h"

namespace skl::test {

/// Engine, airport, user and pressure as at the start of a run.
class MotionTest : public TempFolderTest {
  protected:
    void SetUp() override;
    void TearDown() override;
};

inline constexpr uint32_t flownHexid = 0x4b1800;

/// An airborne report.
LivePos airReport(LaLo place, double speed, double track, double alt = 35000);
/// A report on the ground.
LivePos groundReport(LaLo place, double speed, double track = 0);
/// The point `meters` away on `bearing` (degrees).
LaLo away(LaLo from, double bearing, double meters);

/// The active record with this hexid, its pose on `first`, which is due in 30 seconds.
LiveAc& addFlying(LivePos first, AcCategory category = AcCategory::Large, uint32_t hexid = flownHexid);
/// One report, received now; false if it neither joined the stream nor changed its end.
bool report(LivePos pos, uint32_t hexid = flownHexid);
/// One tick of every aircraft; gives the poses of the tick.
std::vector<PosEntry> tick();

/// Where a flight truly is, by the second.
using Path = std::function<LivePos(double seconds)>;

/// What a run of ticks showed of one aircraft.
struct FlightLog {
    std::vector<PosEntry> poses;  ///< by tick
    int segments = 0;
    int shortestSegment = 1 << 30;  ///< ticks between two set-ups
    double worstStep = 0;           ///< greatest way of a tick, as a multiple of what `speed` covers
    double worstLonStep = 0;        ///< degrees, the short way round
    double worstTurn = 0;           ///< degrees a second
    double worstPitchRate = 0;      ///< degrees a second
};

/// Flies `seconds` from now on with a report every `interval` seconds while `hears` allows; path time is feed
/// time.
FlightLog fly(
    const Path& path, double seconds, double interval,
    const std::function<bool(double)>& hears = [](double) { return true; });

/// Meters from `point` to the great circle through `start` on `bearing` (degrees).
double crossTrackMeters(LaLo start, double bearing, LaLo point);

}  // namespace skl::test
