// The engine with a simulator that consists of the queues alone: it takes creations and removals as a frame
// would, and answers through the sim inbox as the SimConnect side does. Types and one livery for each are
// known.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "engine/live_ac.h"
#include "feed/traffic_update.h"
#include "simlink/ai_commands.h"
#include "tests/support/temp_folder.h"

namespace skl::test {

inline constexpr uint32_t anyHexid = 0x400001;

class EngineTest : public TempFolderTest {
  protected:
    void SetUp() override;
    void TearDown() override;

    /// A record in "active" with this object id, its pose and its stream at `place`.
    static LiveAc& active(uint32_t hexid, const std::string& callsign, uint32_t objectId,
                          LaLo place = {51, 1});
    /// A record in "buffer" with two points, due now.
    static LiveAc& buffered(uint32_t hexid, const std::string& callsign, LaLo place = {51, 1});
    static LiveAc& record(uint32_t hexid);
    static bool exists(uint32_t hexid);
    /// What the engine has queued for the simulator and the frame has not taken.
    static std::vector<std::string> events();
};

/// A point in the air, eastbound at 300 knots.
LivePos airPoint(LaLo place, int32_t time = 0);
LivePos groundPoint(LaLo place, double speed, int32_t time = 0);
/// A first report of an A320 of British Airways, received now.
TrafficUpdate firstReport(uint32_t hexid = anyHexid, const std::string& callsign = "BAW12");

/// The far end: a frame every third tick.
class QueueSimulator {
  public:
    struct Object {
        uint32_t hexid;
        std::string callsign;
        int32_t shownAt;
        bool shown = false;
    };
    /// Lets the engine run; the simulator looks at the queues after each tick.
    void run(int ticks, const std::function<void(int)>& each = {});

    int32_t delay = 30;          ///< ticks from the request to the identification
    bool silent = false;         ///< creates, but never tells
    std::set<std::string> full;  ///< callsigns for which there is no room
    std::set<std::string> refused;
    std::map<uint32_t, Object> objects;
    std::vector<uint32_t> removals;  ///< ids, as asked
    int created = 0;
    uint32_t nextId = 1000;

  private:
    void frame();
};

}  // namespace skl::test
