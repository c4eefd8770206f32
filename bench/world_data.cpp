// Shares of types and airlines as they are in a sky over Europe, roughly: a few airlines have most liveries,
// each type has a generic one but for rare types.
#include "bench/world_data.h"

#include <fmt/format.h>

#include <array>
#include <cmath>
#include <fstream>
#include <iterator>

#include "bench/bench.h"
#include "core/folders.h"
#include "liveries/liveries_file.h"
#include "liveries/livery_scan.h"
#include "liveries/reference_db.h"

namespace skl::bench {

namespace {

constexpr std::array<std::string_view, 10> prefixes{"N",   "D-A", "G-",  "F-G", "HB-",
                                                    "PH-", "EC-", "C-F", "VH-", "JA"};

/// Most of what flies, by class; the share of each class in percent.
struct TypeClass {
    int share;
    std::vector<std::string_view> types;
};
const std::array<TypeClass, 6> typeClasses{
    {{58,
      {"A320", "B738", "A319", "A321", "A20N", "A21N", "B38M", "B737", "B739", "E190", "E75L", "E195", "CRJ9",
       "DH8D", "AT76", "BCS3"}},
     {18,
      {"B77W", "A333", "B789", "A359", "A332", "B788", "B744", "B763", "B772", "A388", "B748", "A339", "B77L",
       "MD11", "A306"}},
     {9, {"C56X", "E55P", "C68A", "GLF5", "GLEX", "F2TH", "CL35", "FA7X", "LJ45", "C25A"}},
     {9, {"C172", "P28A", "SR22", "C182", "PC12", "DA42", "BE36", "C208"}},
     {4, {"EC35", "A139", "EC45", "AS50", "R44", "B06"}},
     {2, {"F16", "F18S", "EUFI", "F35"}}}};

/// Registration number `i`, each another.
std::string registrationOf(size_t i) {
    std::string text(prefixes[i % prefixes.size()]);
    size_t rest = i / prefixes.size();
    for (int letter = 0; letter < 4; ++letter, rest /= 26) text += static_cast<char>('A' + rest % 26);
    return text;
}

}  // namespace

std::string shippedDbase() {
    return SKYLANTERN_SOURCES "/dbase.xml";
}

Choice::Choice(uint32_t seed)
    : random_(seed),
      airlines_(icaoAirlines.begin(), icaoAirlines.end()),
      allTypes_(aircraftTypes.begin(), aircraftTypes.end()) {
    require(!airlines_.empty() && !allTypes_.empty(), "no reference database");
    std::shuffle(airlines_.begin(), airlines_.end(), std::mt19937(1));
}

std::string Choice::airline() {
    const double place = std::pow(std::uniform_real_distribution<double>(0, 1)(random_), 3.0);
    return airlines_[static_cast<size_t>(place * static_cast<double>(airlines_.size()))];
}

std::string Choice::type() {
    int place = static_cast<int>(below(100));
    for (const auto& [share, types] : typeClasses) {
        if (place < share) return std::string(types[below(types.size())]);
        place -= share;
    }
    return std::string(typeClasses.front().types.front());
}

std::string Choice::anyType() {
    return allTypes_[below(allTypes_.size())];
}

std::string Choice::registration() {
    return registrationOf(below(static_cast<size_t>(manyRegistrations)));
}

void writeDbase(const std::string& path, int registrations) {
    gf_readDbaseXml(shippedDbase());
    std::ifstream in(shippedDbase(), std::ios::binary);
    std::string text(std::istreambuf_iterator<char>(in), {});
    const size_t end = text.rfind("</dbase>");
    require(end != std::string::npos, "the reference database has another form");
    text.resize(end);
    Choice choice(11);
    for (int i = 0; i < registrations; ++i) {
        const std::string airline = choice.airline();
        fmt::format_to(std::back_inserter(text), "  <db reg=\"{}\" airl=\"{}\" type=\"{}\"",
                       registrationOf(static_cast<size_t>(i)), airline, choice.type());
        if (choice.chance(0.1)) fmt::format_to(std::back_inserter(text), " opr=\"{}\"", choice.airline());
        if (choice.chance(0.05)) text += " cargo=\"true\"";
        text += "/>\n";
    }
    text += "</dbase>\n";
    std::ofstream(path, std::ios::binary) << text;
}

LiveryData makeLivery(Choice& choice, int number) {
    LiveryData livery;
    // Rare types come in the colours of their owners only, never in a generic livery.
    const bool rare = choice.chance(0.015);
    livery.model = rare ? choice.anyType() : choice.type();
    livery.airline = !rare && choice.chance(0.04) ? "ZZZ" : choice.airline();
    livery.cargo = choice.chance(0.06);
    if (choice.chance(0.5)) livery.regcode = choice.registration();
    livery.title = fmt::format("AIG_{} {} {} {}", livery.model, livery.airline, livery.regcode, number);
    return livery;
}

void writeLiveries(int count) {
    Choice choice(13);
    scannedLiveries.clear();
    for (int i = 0; i < count; ++i) scannedLiveries.push_back(makeLivery(choice, i));
    lf_sortScannedLiveries();
    std::filesystem::create_directories(paths::output);
    gf_writeLiveriesFile();
    scannedLiveries.clear();
}

}  // namespace skl::bench
