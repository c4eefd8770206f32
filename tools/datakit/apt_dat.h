// Airports out of apt.dat, the open table of airports that X-Plane and FlightGear use (formats 1000 to 1200).
// One airport at a time is held, since the whole file is large.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tools/datakit/codes.h"
#include "tools/datakit/source_file.h"

namespace skl::datakit {

enum class StandKind { gate, hangar, misc, tieDown };
enum class Operation { none, generalAviation, airline, cargo, military };

/// Which aircraft a stand is for, as rows 1300 tell; no bit: not told.
enum Users : unsigned { heavies = 1, jets = 2, turboprops = 4, props = 8, helicopters = 16, fighters = 32 };

struct AptStand {
    std::string name;
    LaLo place;
    double heading = 0;  ///< degrees, 0 up to 360
    StandKind kind = StandKind::misc;
    unsigned users = 0;
    char size = 0;  ///< A to F by the span of the largest aircraft; 0: not told
    Operation operation = Operation::none;
    std::vector<std::string> airlines;  ///< ICAO codes
    bool old = false;                   ///< of a row 15, which tells neither kind nor size
    uint64_t line = 0;
};

struct AptAirport {
    std::string code;  ///< its ICAO code where the file tells one, else its ident
    std::string iata, name;
    std::optional<LaLo> place;  ///< its own, else the middle of its runways, helipads or stands
    std::optional<double> elevation;
    bool closed = false;  ///< its name says so
    std::vector<AptStand> stands;
    uint64_t line = 0;
};

/// Whether the file begins as an apt.dat does.
bool isAptDat(const std::filesystem::path& path);
/// Hands over each airport. What is wrong with a row costs that row. Throws Failure for a file that is no
/// apt.dat, or of a form before 1000.
void readAptDat(SourceFile& file, const std::function<void(AptAirport&&)>& take);

}  // namespace skl::datakit
