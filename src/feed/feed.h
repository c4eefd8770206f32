// The traffic feed as the rest of the program sees it: the link to RealTraffic, the two readers, their
// values.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "core/fnv.h"
#include "core/geodesy.h"
#include "core/task.h"

namespace skl {

inline constexpr uint16_t trafficPort = 49005;
inline constexpr uint16_t qnhPort = 49004;

extern std::atomic<bool> g_realTrafficHere;  ///< RealTraffic is installed on this PC
extern std::atomic<bool> rtConnected;        ///< the client socket is up
extern std::atomic<bool> rtLevel2;  ///< RealTraffic reported level 2: the feed's time is the program's clock
extern std::atomic<int32_t> qnh;    ///< hectopascals, 1013 until told

// --- the link; worker thread only
/// Listens for RealTraffic. Throws std::runtime_error.
void gf_startListener(const std::string& port);
/// Waits for RealTraffic until a stop, then asks for its version.
void gf_rtHandshake();
/// One look for a client, without waiting; true if one was taken.
bool waitForClient();
bool sendDataPacket(std::string_view text);
/// One reply; empty on failure, on a stop, or when 5 s have passed without a whole JSON object.
std::string gf_rtReceive();
/// The user's position to RealTraffic, once a second; notices the loss and the return of the link.
void gf_sendPosition();
void gf_sendSimTime(int64_t seconds);
/// The end of a run: "exit" to a connected client, both sockets closed, rtConnected cleared.
void gf_closeLink();
/// Whether records may be taken: no link is needed, or it is up.
bool gf_linkAllowsTraffic();

// --- the readers
/// The bodies of the two reader threads; a stop is seen within the 1 s that a receive may wait.
std::shared_ptr<Task> gf_trafficReaderTask(uint16_t port);
std::shared_ptr<Task> gf_qnhReaderTask(uint16_t port);
void gf_stopReaders();
void gf_updateReaderLamps();
bool gf_anyReaderStale();
/// The centre of the range filter, degrees.
void gf_setFilterPos(LaLo position);
/// The airport in sight as the ground filter needs it: its position and elevation (feet); nothing while there
/// is none.
struct GroundReference {
    LaLo position;
    double elevationFt = 0;
};
void gf_setGroundReference(std::optional<GroundReference> reference);
/// The stamp of the last record, seconds since 1970; 0 before the first.
double gf_feedTimestamp();
/// Values back to the start, as after the loss of the link.
void gf_resetFeed();
/// From now on the callsigns of all records in range are collected, into an empty set.
void gf_collectCallsigns();
/// Ends the collecting and gives what came in.
StringSet gf_takeCallsigns();
/// No more callsigns are collected, and those collected are forgotten: the end of a run.
void gf_stopCollectingCallsigns();

/// What became of the traffic datagrams, since the process started. All that arrive count as datagrams; a
/// tail too long counts under noIdentity, a rejected category under notAircraft.
struct FeedCounters {
    std::atomic<uint64_t> datagrams{0}, queued{0}, vehicles{0}, outOfRange{0}, noModel{0}, notAircraft{0},
        noIdentity{0}, staticIds{0}, blockedNames{0}, ground{0}, notAccepting{0}, badRecords{0},
        duplicates{0}, oversized{0};
};
extern FeedCounters feedCounters;

}  // namespace skl
