// The decoding of a traffic line. Fields by number, from 0: 1 hexid, 2 latitude, 3 longitude, 4 altitude
// (ft), 5 vertical speed (ft/min), 7 track, 8 ground speed (kn), 9 callsign, 10 type, 11 tail, 12 origin, 13
// destination, 14 time stamp, 17 message type, 20 true airspeed, 23 roll, 25 true heading, 28 emitter
// category. The time stamp counts even for a record that is dropped later, and strings are built only behind
// the range filter, so that a record out of range costs no heap allocation. A failure is an exception with
// its log text; it ends with the line.
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <stdexcept>
#include <utility>

#include "core/locks.h"
#include "core/log.h"
#include "core/run_state.h"
#include "core/text.h"
#include "engine/engine_state.h"
#include "feed/traffic_reader.h"
#include "panel/traffic_range.h"

namespace skl {

namespace {

constexpr size_t minFields = 29;
constexpr int32_t delayTicks = 30 * ticksPerSecond;
constexpr double groundRadiusNm = 5;
/// Stands for the elevation where no airport is in sight: far below, so that no height counts as ground.
constexpr double noElevationFt = -1000;

/// In alphabetical order.
constexpr std::array<std::string_view, 9> notAircraft{"BALL", "EMER", "GLID", "GND", "GRND",
                                                      "PARA", "SERV", "SHIP", "VENT"};
constexpr std::array<std::string_view, 5> rejectedCategories{"B1", "B2", "B4", "C1", "C2"};

struct TasRow {
    double limitFt, tas;
};
constexpr std::array<TasRow, 4> defaultTas{{{2000, 180}, {5000, 220}, {10000, 250}, {20000, 350}}};
constexpr double highTas = 430;
/// Nothing rolls further than half a turn: more is noise.
constexpr double greatestRoll = 180;

/// Below this height above the airport, and no faster, an aircraft counts as on the ground.
struct GroundRow {
    double heightFt, speed;
};
constexpr std::array<GroundRow, 3> groundRows{{{45, 120}, {90, 80}, {120, 43}}};
constexpr double alwaysGroundSpeed = 35;
constexpr double highestGroundFt = 14000;

bool absent(std::string_view text) {
    return text == "null";
}

std::string_view orEmpty(std::string_view text) {
    return absent(text) ? std::string_view() : text;
}

/// Characters that would end a line of the log or of a list that is kept.
bool holdsControls(std::string_view text) {
    return std::any_of(text.begin(), text.end(), gf_isControl);
}

bool drop(std::atomic<uint64_t>& counter) {
    counter.fetch_add(1, std::memory_order_relaxed);
    return false;
}

[[noreturn]] void bad(std::string text) {
    throw std::runtime_error(std::move(text));
}

/// Unlike other numbers an altitude may be no number: it then counts as on the ground.
std::optional<double> readAltitude(std::string_view text) {
    double value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec != std::errc() || std::isinf(value)) return std::nullopt;
    return value;
}

bool isGround(double altitude, double speed, double elevation) {
    if (!(altitude > 0) || speed <= alwaysGroundSpeed) return true;
    if (altitude >= highestGroundFt) return false;
    const double height = altitude - elevation;
    if (height <= 0) return true;
    return std::any_of(groundRows.begin(), groundRows.end(),
                       [&](const GroundRow& row) { return height <= row.heightFt && speed <= row.speed; });
}

double tasFor(double altitude) {
    for (const TasRow& row : defaultTas)
        if (altitude <= row.limitFt) return row.tas;
    return highTas;
}

/// Whether the great-circle distance exceeds the range. Most positions are settled by bounds that need no
/// sines: the difference of latitude below, the way along meridian and parallel above.
bool outOfRange(LaLo centre, LaLo place, double range) {
    constexpr double nmPerDegree = 60.0, tolerance = 1.001;
    const double dLat = std::abs(place.lat - centre.lat), dLon = std::abs(place.lon - centre.lon);
    if (dLat * nmPerDegree > range * tolerance) return true;
    if ((dLat + dLon) * nmPerDegree * tolerance < range) return false;
    return gf_distanceNm(centre, place) > range;
}

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

}  // namespace

void TrafficReader::processText(std::string_view line) {
    // Ground vehicles are called so in whatever field the source has put it.
    if (line.find(" VEH") != std::string_view::npos) {
        drop(feedCounters.vehicles);
        return;
    }
    while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) line.remove_suffix(1);
    line_ = line;
    split(line, fields_);
    processLineSub();
}

void TrafficReader::processLineSub() {
    try {
        if (fields_.size() < minFields)
            bad(fmt::format("fewer than {} fields: {}", minFields, lf_printable(line_)));
        Decoded record;
        refreshSurroundings();
        if (!decodePlace(record) || !decodeKind(record) || !decodeHeight(record) || !decodeIdentity(record))
            return;
        decodeMotion(record);
        requirePlainTexts(record);
        queueRecord(record);
    } catch (const std::exception& error) {
        drop(feedCounters.badRecords);
        gf_log(fmt::format("exception in processLineSub: {}", error.what()));
    }
}

double TrafficReader::number(size_t field, std::string_view label) const {
    const auto value = gf_readNumber(fields_[field]);
    if (!value) bad(fmt::format("{}:{}", label, lf_printable(fields_[field])));
    return *value;
}

bool TrafficReader::decodePlace(Decoded& record) {
    record.feedTime = number(14, "timestamp");
    feedTimestamp_.store(record.feedTime, std::memory_order_relaxed);
    record.pos.lat = number(2, "lat");
    record.pos.lon = number(3, "lon");
    const LaLo place = record.pos.pos();
    if (std::abs(place.lat) > 90 || std::abs(place.lon) > 180 || !positionKnown(place))
        bad(fmt::format("invalid lalo: {:.6f},{:.6f}", place.lat, place.lon));
    if (outOfRange(surroundings_.filterPos, place, rangeNm)) return drop(feedCounters.outOfRange);
    return true;
}

bool TrafficReader::decodeKind(Decoded& record) {
    const std::string_view tail = fields_[11];
    if (tail.size() > 12) return drop(feedCounters.noIdentity);
    record.regcode = orEmpty(tail);
    if (!holdsControls(fields_[9])) collectCallsign(fields_[9]);

    const std::string_view model = fields_[10];
    if (model.empty() || absent(model) || model == "0" || model == "ZZZZ") return drop(feedCounters.noModel);
    const std::string_view category = orEmpty(fields_[28]);
    if (!category.empty()) {
        const bool rejected = std::find(rejectedCategories.begin(), rejectedCategories.end(), category) !=
                              rejectedCategories.end();
        if (rejected || model.size() > 4 || std::binary_search(notAircraft.begin(), notAircraft.end(), model))
            return drop(feedCounters.notAircraft);
    }
    record.model = model;
    if (fields_[17] == "adsb_icao") decodeTrueHeading(record.pos);
    return true;
}

void TrafficReader::decodeTrueHeading(LivePos& pos) {
    const double degrees = number(25, "trueheading");
    if (degrees > 360) bad(fmt::format("trueheading: {:.2f}", degrees));
    if (degrees < 0) return;
    pos.trueHeading = degrees == 0 ? 2 * pi : toRad(degrees);
    pos.hasTrueHeading = true;
}

bool TrafficReader::decodeHeight(Decoded& record) {
    const auto hexid = gf_readUnsigned(fields_[1]);
    if (!hexid) bad(fmt::format("hexid incorrect{}", lf_printable(fields_[1])));
    if (*hexid <= highestStaticId) return drop(feedCounters.staticIds);
    record.hexid = *hexid;

    record.pos.speed = std::max(number(8, "gs"), 0.0);
    const auto altitude = readAltitude(fields_[4]);
    if (!altitude)
        bad(fmt::format("altitude {} incorrect, from: {}", lf_printable(fields_[4]), lf_printable(line_)));
    const double elevation = surroundings_.ground ? surroundings_.ground->elevationFt : noElevationFt;
    record.pos.airborne = !isGround(*altitude, record.pos.speed, elevation);
    record.pos.alt = record.pos.airborne ? *altitude : 0;
    return true;
}

bool TrafficReader::decodeIdentity(Decoded& record) {
    const std::string_view callsign = orEmpty(fields_[9]);
    if (callsign.find('@') == std::string_view::npos) record.callsign = callsign;
    if (record.callsign == "ERARMTR0" || record.callsign == "AIRPORT1")
        return drop(feedCounters.blockedNames);
    if (record.regcode.empty() && record.callsign.empty()) return drop(feedCounters.noIdentity);
    if (record.pos.airborne) return true;
    // Traffic on the ground matters only at the airport where the user is.
    const auto& airport = surroundings_.ground;
    if (!airport || gf_distanceNm(airport->position, record.pos.pos()) > groundRadiusNm)
        return drop(feedCounters.ground);
    return true;
}

void TrafficReader::decodeMotion(Decoded& record) {
    LivePos& pos = record.pos;
    if (!fields_[7].empty()) {
        const auto track = gf_readNumber(fields_[7]);
        if (!track) bad(fmt::format("track incorrect {}", lf_printable(fields_[7])));
        pos.track = *track;
    }
    if (pos.track == 0 && pos.hasTrueHeading) pos.track = toDeg(*pos.trueHeading);
    pos.vs = number(5, "vs");
    record.origin = orEmpty(fields_[12]);
    record.destination = orEmpty(fields_[13]);
    if (pos.airborne) {
        const double roll = number(23, "roll");
        if (roll != -1 && roll != 0 && std::abs(roll) <= greatestRoll) pos.roll = -toRad(roll);
    }
    const auto tas = gf_readNumber(fields_[20]);
    if (!tas) bad(fmt::format("TAS incorrect{}", lf_printable(fields_[20])));
    pos.tas = *tas == -1 ? tasFor(pos.alt) : *tas;
}

void TrafficReader::requirePlainTexts(const Decoded& record) {
    for (const std::string_view text :
         {record.callsign, record.model, record.regcode, record.origin, record.destination})
        if (holdsControls(text)) bad(fmt::format("control characters: {}", lf_printable(text)));
}

void TrafficReader::queueRecord(Decoded& record) {
    record.pos.stopped = false;
    const LockGuard guard(g_trafficLock);
    if (!g_acceptTraffic) {
        drop(feedCounters.notAccepting);
        return;
    }
    record.pos.time = engineTick + delayTicks;
    // Built in its place: moving a record into the queue would cost as much as reading its numbers.
    TrafficUpdate& update = trafficInbox.emplace_back();
    update.model = record.model;
    update.origin = record.origin;
    update.destination = record.destination;
    update.callsign = record.callsign;
    update.regcode = record.regcode;
    update.pos = record.pos;
    update.feedTime = record.feedTime;
    update.hexid = record.hexid;
    feedCounters.queued.fetch_add(1, std::memory_order_relaxed);
}

}  // namespace skl
