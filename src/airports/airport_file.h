// The airport file: the stands of one airport and what was seen on them. Up to two documents are merged for
// one airport, an archived one (from the site or generated from the user's scenery) and the learned one,
// which this program writes. Names of files on the site and names that begin with "airports" are relative
// with '/'; they become paths only when a file is opened. Worker thread only, but for gf_writeApf on values
// of its caller.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "core/geodesy.h"

namespace pugi {
class xml_document;
}

namespace skl {

/// A stay of a live aircraft that has not ended yet.
struct OpenStay {
    uint32_t hexId = 0;
    int32_t day = 0, halfHour = 0;  ///< its start
    int32_t optionId = 0;
};

/// One aircraft seen on a stand on one weekday.
struct StandOption {
    std::string airl;          ///< ICAO airline
    std::string type;          ///< ICAO type
    std::string reg;           ///< registration, or callsign where none was known
    std::string cs, cs2;       ///< callsign, and the second one of the same stay
    uint64_t hours = 0;        ///< bit n: the half hour that begins n * 30 minutes after midnight UTC
    int32_t optionId = 0;      ///< from 1 within the stand; 0: spent, ignored by every reader
    int32_t day = 0;           ///< 1 Monday to 7 Sunday
    bool fromArchive = false;  ///< not written back to a learned file
    bool real = false;         ///< seen at the stand by position; else soft
};

struct Stand {
    std::vector<StandOption> options;
    std::unordered_map<uint32_t, OpenStay> realStays, softStays;  ///< by transponder id
    std::string id;                                    ///< the stand's name, unique within an airport
    std::vector<uint32_t> adjacent;                    ///< sid of each stand that overlaps this one
    double lat = 0, lon = 0;                           ///< degrees
    double heading = 0;                                ///< radians
    double radius = 0;                                 ///< nautical miles
    uint32_t sid = 0;                                  ///< ordinal in `stands`, from 1; given after the merge
    bool manual = false;                               ///< made by the user in the learned file
    bool radiusChanged = false, cargoChanged = false;  ///< the learned file overrules the archived value
    bool duplicateId = false;                          ///< only while scenery is scanned
    bool filled = false;                               ///< a static aircraft is planned or stands here
    bool occupied = false;
    bool reserved = false;  ///< held free for the user
    bool blocked = false;   ///< the aircraft of a neighbouring stand overlaps it
    bool cargo = false, ramp = false, heli = false;
    LaLo pos() const { return {lat, lon}; }
};

struct QualityFactors {
    int32_t real = -1, soft = -1;  ///< 0 to 100; -1: not known
    bool operator==(const QualityFactors&) const = default;
};

struct AirportFile {
    std::string code;
    std::string airportName;
    std::string bglPath;                ///< what the file was generated from
    std::string publisher;              ///< "stock", "simaddon", a publisher's name, or "unknown"
    std::string manufacturer, creator;  ///< only with an unknown publisher
    int32_t qfReal = -1, qfSoft = -1;
    int32_t altitude = 0;               ///< feet
    bool handmade = false;              ///< the learned file replaces the archived one
    int32_t trafficWeek = 0;            ///< RT_traffic_week
    std::filesystem::path learnedPath;  ///< where the learned file of this airport is read and saved
    std::vector<Stand> stands;
};

/// `stock`: what a data site serves, stands and options with the figures of the file.
enum class ApfMode { learned = 0, generated = 1, stock = 2 };

/// The file of an airport: a name that begins with "airports" (local) or a site path; empty if there is none.
std::string gf_findAirportFile(const std::string& code);
/// Whether one of the places of gf_findAirportFile holds a file.
bool gf_airportFileKnown(const std::string& code);
/// Forgets what the site answered about stock files: the user asked to look again, or a new run.
void gf_forgetProbes();
/// Reads an airport file and merges the learned one. Empty on success, else the reason. The airport in sight
/// must be set: its elevation takes the file's. Throws UserErrorException 65 or 94.
std::string gf_readApf(const std::string& fileName, AirportFile& airportFile, QualityFactors& quality,
                       std::vector<Stand>& stands);
/// Merges the learned file at `path`. A file that cannot be read whole is first kept as a copy with a "0"
/// before its last dot. Passes on UserErrorException.
void lf_readLearned(const std::filesystem::path& path, AirportFile& airportFile, std::vector<Stand>& stands,
                    bool& handmade);
/// Where the learned file of an archived file lies. The publisher is cleaned of separators and "..".
std::filesystem::path gf_learnedPath(std::string_view fileName, std::string_view publisher);
/// The document of `file` and its stands, for a writer of its own; false if that failed.
bool lf_apfDocument(const AirportFile& file, ApfMode mode, pugi::xml_document& document);
/// Writes `file` and its stands in one step; false if that failed.
bool gf_writeApf(const AirportFile& file, const std::filesystem::path& path, ApfMode mode);
/// How well the stands are known, over their options.
QualityFactors gf_qualityFactors(const std::vector<Stand>& stands);
/// "45/12" for real and soft options; the soft one, or both, left out where not known.
std::string gf_qualityText(QualityFactors quality);
/// Nautical miles from `position` to the closest stand of any airport, and its name; 100.0 on any failure.
double gf_readDestApfForClosestStand(const std::string& code, LaLo position, std::string& standId);

// --- for the scan of add-on airports
/// The publisher row; empty if there is none, or no file.
std::string gf_publisherOfFile(const std::filesystem::path& path);
/// Why a generated file of an unknown publisher could not be placed; empty if it could.
std::string gf_manifestInfoOfFile(const std::filesystem::path& path);
/// Whether the site's stock file of an airport is a good teacher for an add-on version of it.
bool gf_offlineLearnable(const std::string& code);

/// "0,1,47" to a set of half hours and back. Items that are no half hour are logged and left out.
uint64_t gf_hours2bitset(std::string_view text);
std::string gf_bitset2hours(uint64_t hours);

}  // namespace skl
