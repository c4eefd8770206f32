// A process that starts with much data: the index of 44,000 airports, the enciphered reference database with
// 500,000 registrations, and 60,000 liveries out of their file into the catalogue. Each run is a process of
// its own, so that its memory is its own too.
#include <fmt/format.h>

#include <cstdlib>
#include <fstream>

#include "airports/airport_index.h"
#include "bench/bench.h"
#include "bench/world_data.h"
#include "core/folders.h"
#include "core/log.h"
#include "core/parameters.h"
#include "core/text.h"
#include "distribution/cipher_key.h"
#include "liveries/catalogue.h"
#include "liveries/reference_db.h"
#include "panel/panel_state.h"
#include "platform/system.h"

namespace skl::bench {

namespace {

namespace fs = std::filesystem;

constexpr int manyAirports = 44000;
const char* const indexFile = "airports_msfs.xml";

void writeAirportIndex(const fs::path& path) {
    std::ofstream file(path);
    file << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<airports>\n";
    for (int i = 0; i < manyAirports; ++i)
        file << fmt::format("  <airport code=\"{}{:05}\" lat=\"{:.6f}\" lon=\"{:.6f}\" alt=\"{}\"{}/>\n",
                            static_cast<char>('A' + i % 26), i, i % 1700 * 0.1 - 85, i % 3590 * 0.1 - 179.5,
                            i % 9000, i % 5 ? "" : fmt::format(" iata=\"{:03}\"", i % 1000));
    file << "</airports>\n";
}

void makeData() {
    fs::create_directories(paths::input);
    const std::string plain = "dbase-plain.xml";
    writeAirportIndex(paths::input / indexFile);
    writeDbase(plain, manyRegistrations);
    writeLiveries(manyLiveries);
    gf_streamEncrypt(cipherKey, plain, paths::dbaseEnc);
    fs::remove(plain);
    gf_clearDbase();
}

}  // namespace

Start startOnce(const fs::path& self, const fs::path& folder) {
    const std::string command =
        fmt::format("XDG_CONFIG_HOME='{0}' XDG_DATA_HOME='{0}' '{1}' --cold-start > start.txt",
                    gf_pathText(folder), gf_pathText(self));
    require(std::system(command.c_str()) == 0, "the process failed");
    Start start;
    std::ifstream("start.txt") >> start.seconds >> start.peakKb >> start.registrations >> start.liveries >>
        start.airports;
    return start;
}

int coldStartChild() {
    const auto begin = Clock::now();
    gf_startLog();
    SCAN_LIVERIES.value = false;
    gf_readAirports(indexFile);
    gf_readDbase();
    gf_startLiveries();
    const double seconds = secondsSince(begin);
    fmt::print("{} {} {} {} {}\n", seconds, platform::memoryUse().peakKb, dbaseRecords.size(),
               g_panel.liveryCount.load(), airportIndex.size());
    return 0;
}

Rows coldStartRows() {
    const WorkFolder folder;
    const fs::path self = fs::read_symlink("/proc/self/exe");
    makeData();
    Start best{1e9, 1e9};
    for (int run = 0; run < runs; ++run) {
        const Start start = startOnce(self, folder.path());
        require(start.registrations >= manyRegistrations && start.liveries == manyLiveries &&
                    start.airports == manyAirports,
                "the data was not read whole");
        best.seconds = std::min(best.seconds, start.seconds);
        best.peakKb = std::min(best.peakKb, start.peakKb);
    }
    return {{fmt::format("Cold start, {} airports, {} registrations, {} liveries", manyAirports,
                         manyRegistrations, manyLiveries),
             "below 3 s", fmt::format("{:.2f} s", best.seconds), best.seconds < 3},
            {"", "below 400 MB", fmt::format("{:.0f} MB at the peak", best.peakKb / 1024),
             best.peakKb > 0 && best.peakKb / 1024 < 400}};
}

}  // namespace skl::bench
