// Data in the size of a large installation: the database that ships with many more registrations, and a
// catalogue of liveries. The same at every call.
#pragma once

#include <random>
#include <string>
#include <vector>

#include "liveries/livery_data.h"

namespace skl::bench {

/// The document of the reference database that ships.
std::string shippedDbase();
/// Writes it with so many registrations more.
void writeDbase(const std::string& path, int registrations);

/// Airlines and types in the shares in which a sky has them: few have much.
class Choice {
  public:
    explicit Choice(uint32_t seed);
    std::string airline();
    std::string type();
    std::string anyType();  ///< any of the database, all alike
    std::string registration();
    bool chance(double share) { return std::uniform_real_distribution<double>(0, 1)(random_) < share; }

  private:
    size_t below(size_t count) { return std::uniform_int_distribution<size_t>(0, count - 1)(random_); }
    std::mt19937 random_;
    std::vector<std::string> airlines_, allTypes_;
};

/// A livery; every title once. Needs the database.
LiveryData makeLivery(Choice& choice, int number);
/// output/LiveriesScanned.xml of the working folder.
void writeLiveries(int count);

inline constexpr int manyRegistrations = 500000, manyLiveries = 60000;

}  // namespace skl::bench
