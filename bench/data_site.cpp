// A data site out of 30,000 airports with six stands each and 600,000 registrations, all its commands in one
// process, so that its memory is an upper bound for each; then the start of a program on that data, with
// 60,000 liveries.
#include <fmt/format.h>

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>

#include "bench/bench.h"
#include "bench/world_data.h"
#include "core/folders.h"
#include "core/text.h"
#include "liveries/reference_db.h"
#include "platform/system.h"
#include "tools/datakit/commands.h"

namespace skl::bench {

namespace {

namespace fs = std::filesystem;

constexpr int airports = 30000, standsOfEach = 6, registrations = 600000;

/// Airport number `i`: a code of four letters, each another, and a place on land or sea.
std::string codeOf(int i) {
    std::string code;
    for (int letter = 0; letter < 4; ++letter, i /= 26) code += static_cast<char>('A' + i % 26);
    return code;
}
double latOf(int i) {
    return -70 + i % 1400 * 0.1;
}
double lonOf(int i) {
    return -170 + i / 1400 * 15.0;
}

void writeAirports() {
    std::ofstream table("airports.csv"), apt("apt.dat");
    table << "ident,type,name,latitude_deg,longitude_deg,elevation_ft,iata_code\n";
    apt << "I\n1100 Version\n\n";
    for (int i = 0; i < airports; ++i) {
        const std::string code = codeOf(i);
        const double lat = latOf(i), lon = lonOf(i);
        table << fmt::format("{},small_airport,\"Airport, number {}\",{:.6f},{:.6f},{},\n", code, i, lat, lon,
                             i % 3000);
        apt << fmt::format(
            "1 {} 0 0 {} Airport number {}\n100 45 2 0 0.25 1 3 0 09 {:.8f} {:.8f} 0 0 2 1 1 0 27 {:.8f} "
            "{:.8f} 0 0 2 1 1 0\n",
            i % 3000, code, i, lat, lon, lat, lon + 0.02);
        for (int stand = 0; stand < standsOfEach; ++stand)
            apt << fmt::format(
                "1300 {:.8f} {:.8f} 90.00 gate jets|turboprops Gate {}\n1301 C airline dlh baw\n",
                lat + 0.001 + stand * 0.0004, lon, stand + 1);
    }
    apt << "99\n";
}

/// Types with the categories and spans of the database that ships, airlines likewise.
void writeTables() {
    gf_readDbaseXml(shippedDbase());
    const char* names[categoryCount] = {"light", "business",         "large",
                                        "heavy", "high_performance", "rotorcraft"};
    std::ofstream types("types.csv"), airlines("airlines.csv"), aircraft("registrations.csv");
    types << "type,category,span,cargo\n";
    for (const std::string& type : aircraftTypes) {
        const auto span = wingspanHalfNm.find(type);
        types << fmt::format(
            "{},{},{},{}\n", type, names[static_cast<int>(gf_category(type))],
            span == wingspanHalfNm.end() ? "" : fmt::format("{:.2f}", span->second * 2 * 1852),
            cargoTypes.contains(type) ? "yes" : "");
    }
    airlines << "icao,cargo\n";
    for (const std::string& airline : icaoAirlines) airlines << airline << ",\n";
    aircraft << "registration,type,operator,airline,cargo\n";
    Choice choice(17);
    for (int i = 0; i < registrations; ++i) {
        const std::string airline = choice.airline();
        aircraft << fmt::format("X{}-{:05},{},{},{},\n", static_cast<char>('A' + i / 100000), i % 100000,
                                choice.type(), airline, airline);
    }
    gf_clearDbase();
}

struct Making {
    double seconds = 0, peakKb = 0;
};

Making makeOnce(const fs::path& self) {
    for (const char* made : {"index", "stock", "site"}) fs::remove_all(made);
    const int status =
        std::system(fmt::format("'{}' --data-site > making.txt 2> making.log", gf_pathText(self)).c_str());
    require(status == 0, "the site was not made");
    Making making;
    std::ifstream("making.txt") >> making.seconds >> making.peakKb;
    const auto files = fs::directory_iterator("site/downloads/MSFS/archive/stock");
    require(std::distance(begin(files), end(files)) == airports, "not all airports have a file");
    return making;
}

}  // namespace

int dataSiteChild() {
    const auto start = Clock::now();
    const std::vector<std::vector<std::string>> commands{
        {"airports", "--out", "index", "airports.csv", "apt.dat"},
        {"database", "--out", "dbase.xml", "--types", "types.csv", "--airlines", "airlines.csv",
         "--registrations", "registrations.csv"},
        {"stands", "--out", "stock", "apt.dat"},
        {"site", "--out", "site", "--airports", "index", "--database", "dbase.xml", "--stock", "stock"}};
    for (const auto& command : commands)
        if (const int status = datakit::run(command, std::cerr, std::cerr)) return status;
    fmt::print("{} {}\n", secondsSince(start), platform::memoryUse().peakKb);
    return 0;
}

Rows dataSiteRows() {
    const WorkFolder folder;
    const fs::path self = fs::read_symlink("/proc/self/exe");
    writeAirports();
    writeTables();
    Making best{1e9, 1e9};
    // It writes some hundred megabytes: two runs tell enough.
    for (int run = 0; run < 2; ++run) {
        const Making making = makeOnce(self);
        best = {std::min(best.seconds, making.seconds), std::min(best.peakKb, making.peakKb)};
    }
    fs::create_directories(paths::input);
    fs::copy_file("site/downloads/dbase.enc", paths::dbaseEnc);
    fs::copy_file("site/downloads/airports_msfs.xml", paths::input / "airports_msfs.xml");
    gf_readDbaseXml(shippedDbase());
    writeLiveries(manyLiveries);
    gf_clearDbase();
    Start fastest{1e9, 1e9};
    for (int run = 0; run < runs; ++run) {
        const Start start = startOnce(self, folder.path());
        require(start.registrations == registrations && start.airports == airports &&
                    start.liveries == manyLiveries,
                "the site's data was not read whole");
        fastest.seconds = std::min(fastest.seconds, start.seconds);
        fastest.peakKb = std::min(fastest.peakKb, start.peakKb);
    }
    return {{fmt::format("Data site of {} airports, {} registrations", airports, registrations), "below 20 s",
             fmt::format("{:.1f} s", best.seconds), best.seconds < 20},
            {"", "below 1 GB", fmt::format("{:.0f} MB at the peak", best.peakKb / 1024),
             best.peakKb / 1024 < 1024},
            {"Cold start on it, 60000 liveries", "below 3 s", fmt::format("{:.2f} s", fastest.seconds),
             fastest.seconds < 3},
            {"", "below 400 MB", fmt::format("{:.0f} MB at the peak", fastest.peakKb / 1024),
             fastest.peakKb > 0 && fastest.peakKb / 1024 < 400}};
}

}  // namespace skl::bench
