// The reference database that ships with the program: types, categories, spans, airlines, publishers,
// registrations. Filled once a process by gf_readDbase, constant afterwards, read from any thread without a
// lock.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "core/fnv.h"

namespace skl {

enum class AcCategory : int { Light = 0, Buzjets = 1, Large = 2, Heavy = 3, HighPerf = 4, Rotorcraft = 5 };
inline constexpr int categoryCount = 6;
const char* gf_categoryName(AcCategory category);

struct DbaseRecord {
    std::string airl;  ///< ICAO code of the airline whose colours the aircraft wears
    std::string type;
    std::string opr;  ///< ICAO code of the operator when it differs; may be empty
    bool cargo = false;
};

struct ThirdPartyRow {
    std::string pub;
    std::vector<std::string> arpts;
};

using TypeSet = std::set<std::string, std::less<>>;

extern TypeSet aircraftTypes, heavyTypes, largeTypes, buzjetTypes, highPerfTypes, rotorcraftTypes, cargoTypes;
extern TypeSet icaoAirlines, cargoOperators, simAddons20;
extern std::vector<std::vector<std::string>> similarRows, publisherRows;
extern std::map<std::string, double, std::less<>> wingspanHalfNm;
extern double maxHalfSpanNm;
extern double categoryAvgHalfNm[categoryCount];
extern StringMap<std::string> modelFixes;
extern std::vector<ThirdPartyRow> thirdParties20, thirdParties24;
extern StringMap<DbaseRecord> dbaseRecords;
extern const StringMap<std::string> modelTable;  ///< folder name of a stock aircraft to its type

/// Reads input/dbase.enc. Throws std::runtime_error or UserErrorException 60 or 61.
bool gf_readDbase();
/// Reads a plain document of the same form into the tables; what gf_readDbase does behind the deciphering.
void gf_readDbaseXml(const std::string& path);
/// Empties every table: for tests.
void gf_clearDbase();

AcCategory gf_category(std::string_view type);
bool gf_isAircraftType(std::string_view type);
bool gf_isIcaoAirline(std::string_view code);
/// Half the wing span in nautical miles: the type's, else the mean of its category.
double gf_halfSpanNm(std::string_view type);
bool gf_halfSpanKnown(std::string_view type);
std::optional<DbaseRecord> gf_dbaseLookup(std::string_view registration);
std::string gf_dbaseAirline(std::string_view registration);
std::string gf_dbaseOperator(std::string_view registration);
/// The first registration, in file order, of fewer than 6 characters that stands in `title`.
std::optional<std::string> gf_regInTitle(std::string_view title);
std::string gf_publisherOf(std::string_view text);

}  // namespace skl
