// A process that starts with much data: the enciphered reference database with 500,000 registrations, and
// 60,000 liveries out of their file into the catalogue. Each run is a process of its own, so that its memory
// is its own too.
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

void makeData() {
    fs::create_directories(paths::input);
    const std::string plain = "dbase-plain.xml";
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
    gf_readDbase();
    if (fs::exists(paths::input / "airports_msfs.xml")) gf_readAirports("airports_msfs.xml");
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
        require(start.registrations >= manyRegistrations && start.liveries == manyLiveries,
                "the data was not read whole");
        best.seconds = std::min(best.seconds, start.seconds);
        best.peakKb = std::min(best.peakKb, start.peakKb);
    }
    return {{fmt::format("Cold start, {} registrations, {} liveries", manyRegistrations, manyLiveries),
             "below 3 s", fmt::format("{:.2f} s", best.seconds), best.seconds < 3},
            {"", "below 400 MB", fmt::format("{:.0f} MB at the peak", best.peakKb / 1024),
             best.peakKb > 0 && best.peakKb / 1024 < 400}};
}

}  // namespace skl::bench
