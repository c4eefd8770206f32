// The search for scenery files with airports, against reading the first 4 KB of the same files: 5,000 files,
// of which one in a hundred holds an airport. The files lie in memory: what is found is written to the disk
// for good, file by file, and on some disks that alone takes longer than all the reading.
#include <fmt/format.h>

#include <fstream>

#include "airports/addon_scan.h"
#include "airports/bgl.h"
#include "bench/bench.h"
#include "core/folders.h"
#include "liveries/livery_scan.h"
#include "tests/support/bgl_writer.h"

namespace skl::bench {

namespace {

constexpr int files = 5000, filesAFolder = 50, oneInSoMany = 100;
constexpr size_t firstBytes = 4096, otherBytes = 8000;
constexpr double goal = 2;

std::vector<fs::path> makeTree() {
    std::vector<fs::path> paths;
    const std::string other =
        test::bglFile({{.type = 9, .records = test::bglRecord(50, std::string(otherBytes, 'x'))}});
    const std::string airport =
        test::bglFile(test::bglAirport("EGLL", 25000, test::bglParkings(std::vector<test::BglParking>(60))));
    for (int i = 0; i < files; ++i) {
        const fs::path folder = fmt::format("tree/package{}/scenery", i / filesAFolder);
        fs::create_directories(folder);
        paths.push_back(folder / fmt::format("file{}.bgl", i));
        std::ofstream(paths.back(), std::ios::binary) << (i % oneInSoMany == 0 ? airport : other);
    }
    return paths;
}

void readFirst(const std::vector<fs::path>& paths) {
    std::vector<char> buffer(firstBytes);
    for (const fs::path& path : paths) {
        std::ifstream file(path, std::ios::binary);
        file.read(buffer.data(), static_cast<std::streamsize>(buffer.size()));
        keep(buffer[0]);
    }
}

}  // namespace

Rows bglScanRows() {
    const WorkFolder folder(true);
    const auto paths = makeTree();
    workerLimit = 2;
    double first = 1e9, scan = 1e9;
    for (int run = 0; run < runs; ++run) {
        first = std::min(first, secondsOf([&] { readFirst(paths); }));
        scan = std::min(scan, secondsOf([] { lf_scanFolders({"tree"}); }));
    }
    require(airportsGenerated, "no airport was found");
    return {{fmt::format("Scan of {} scenery files, {} with airports", files, files / oneInSoMany),
             fmt::format("at most {:.1f} times reading their first 4 KB", goal),
             fmt::format("{:.2f} times ({:.0f} ms against {:.0f} ms)", scan / first, scan * 1e3, first * 1e3),
             scan <= goal * first}};
}

}  // namespace skl::bench
