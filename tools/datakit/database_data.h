// What the reference database is made of, with where each piece comes from.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "core/fnv.h"
#include "tools/datakit/source_file.h"

namespace skl::datakit {

enum class Category { light, business, large, heavy, highPerformance, rotorcraft };

struct TypeEntry {
    Category category = Category::light;
    std::optional<double> span;  ///< metres
    bool cargo = false;
    std::vector<std::string> similar;  ///< types that may stand in for it
    Place place;
    uint64_t aircraft = 0;  ///< registrations of it
};

struct AirlineEntry {
    bool cargo = false;
    uint64_t line = 0;
};

struct Registration {
    std::string reg, airl, type, opr;
    bool cargo = false;
};

struct Fix {
    std::string wrong, right;
};

/// Airports of a publisher, each with the number of stands of the site's file behind its code.
struct Publication {
    std::string publisher;
    std::vector<std::string> airports;
};

struct Database {
    std::map<std::string, TypeEntry> types;
    std::map<std::string, AirlineEntry> airlines;
    std::vector<Registration> registrations;
    std::vector<std::vector<std::string>> publishers;  ///< the name shown first, then other spellings
    std::vector<Fix> fixes;
    std::vector<std::string> simAirports;  ///< of MSFS 2020 itself
    std::vector<Publication> publications20, publications24;
};

/// Each reads a table into the database; what is inconsistent is told, with what became of it. Types and
/// airlines are to be read before the others.
void readTypes(SourceFile& file, Database& database);
void readAirlines(SourceFile& file, Database& database);
void readFixes(SourceFile& file, Database& database);
void readPublishers(SourceFile& file, Database& database);
void readSimAirports(SourceFile& file, Database& database);
void readPublications(SourceFile& file, Database& database);

/// Registrations of several files, each aircraft once.
class RegistrationReader {
  public:
    RegistrationReader(Database& database, Progress& progress) : database_(database), progress_(progress) {}
    void read(SourceFile& file);

  private:
    struct First {
        uint32_t file = 0, line = 0;
    };
    std::string airline(SourceFile& file, const Place& place, std::string_view text, const std::string& reg);

    Database& database_;
    Progress& progress_;
    std::vector<std::string> files_;
    StringMap<First> met_;         ///< by registration without hyphens
    StringMap<bool> unknownTold_;  ///< airlines
};

/// What no single row shows: spans missing for types in use, similar types that are none.
void checkDatabase(Database& database, Findings& findings);
/// dbase.xml. A list that the program wants and that would be empty holds ZZZZ, which is no airport and no
/// type, and is told. Throws Failure without types or airlines.
std::string databaseXml(const Database& database, Findings& findings);

/// A registration in upper case: 2 to 12 letters, digits and hyphens.
std::optional<std::string> registrationOf(std::string_view text);

}  // namespace skl::datakit
