// The seam to the simulator: the calls of SimConnect that the program makes, and the messages that come back.
// open, dispatch and close belong to the SimConnect thread; the other calls may come from any thread under
// g_simLock.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace skl {

/// Position of a new object: degrees, feet, degrees; airspeed in knots.
struct SimInitPosition {
    double lat = 0, lon = 0, alt = 0, pitch = 0, bank = 0, heading = 0;
    uint32_t onGround = 0;
    uint32_t airspeed = 0;
};

/// One message of the simulator: all of its bytes, header included. Read it by core/byte_reader.h.
struct SimRecv {
    uint32_t id = 0;  ///< dwID
    std::span<const std::byte> bytes;
};

class SimConnect {
  public:
    enum class Dispatch { alive, quit, lost };

    virtual ~SimConnect() = default;
    /// Connects and waits for the simulator's OPEN, which is kept as the first message of the dispatch. Looks
    /// at `stop` at least every 100 ms. False when nothing answers, within 5 s.
    virtual bool open(std::string_view application, const std::function<bool()>& stop) = 0;
    /// What in the settings keeps `open` from trying at all; empty when it is only that nothing answers.
    virtual std::string openTrouble() const { return {}; }
    /// False when the connection was dead already.
    virtual bool close() = 0;
    /// Delivers every message that has arrived whole, then sends what waits; never waits. What the handler
    /// throws goes through. `quit`: the simulator has said that it ends. `lost`: the stream ended without
    /// that.
    virtual Dispatch callDispatch(const std::function<void(const SimRecv&)>& handler) = 0;
    /// Output of earlier calls that the simulator has not taken yet.
    virtual bool backlogged() = 0;

    // Requests. False only when the connection is known to be dead; after a QUIT they do nothing and give
    // true.
    virtual bool subscribeToSystemEvent(uint32_t event, std::string_view name) = 0;
    virtual bool addToDataDefinition(uint32_t definition, std::string_view variable, std::string_view unit,
                                     uint32_t type) = 0;
    virtual bool mapClientEventToSimEvent(uint32_t event, std::string_view name) = 0;
    virtual bool addClientEventToNotificationGroup(uint32_t group, uint32_t event) = 0;
    virtual bool setNotificationGroupPriority(uint32_t group, uint32_t priority) = 0;
    virtual bool requestDataOnSimObject(uint32_t request, uint32_t definition, uint32_t object,
                                        uint32_t period) = 0;
    virtual bool requestDataOnSimObjectType(uint32_t request, uint32_t definition, uint32_t radiusMeters,
                                            uint32_t type) = 0;
    virtual bool setDataOnSimObject(uint32_t definition, uint32_t object,
                                    std::span<const std::byte> data) = 0;
    virtual bool transmitClientEvent(uint32_t object, uint32_t event, uint32_t data, uint32_t group) = 0;
    virtual bool aiCreateNonAtcAircraft(std::string_view title, std::string_view tail,
                                        const SimInitPosition& at, uint32_t request) = 0;
    virtual bool aiReleaseControl(uint32_t object, uint32_t request) = 0;
    virtual bool aiRemoveObject(uint32_t object, uint32_t request) = 0;
    virtual bool aiSetAircraftFlightPlan(uint32_t object, std::string_view path, uint32_t request) = 0;
    /// The number that an exception about the request made last will carry.
    virtual bool getLastSentPacketId(uint32_t& id) = 0;
};

/// Makes the client of a session: over the wire unless a test has set its own maker.
std::unique_ptr<SimConnect> gf_makeSimConnect();
void gf_setSimConnectMaker(std::function<std::unique_ptr<SimConnect>()> maker);

}  // namespace skl
