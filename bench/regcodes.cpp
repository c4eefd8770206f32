// Registration codes: 100,000 rows, half of them out of the distributed file and half out of a file of the
// user, read and put into a catalogue of 60,000 liveries. Many replace a tie that stands already.
#include <fmt/format.h>

#include <fstream>

#include "bench/bench.h"
#include "bench/world_data.h"
#include "core/folders.h"
#include "core/log.h"
#include "core/parameters.h"
#include "distribution/cipher_key.h"
#include "liveries/catalogue.h"
#include "liveries/reference_db.h"
#include "liveries/regcodes.h"

namespace skl::bench {

namespace {

namespace fs = std::filesystem;

constexpr size_t rowsOfEach = 50000, specialEvery = 20;

std::vector<std::string> allTitles() {
    std::vector<std::string> titles;
    for (const auto& [airline, types] : liveriesByAirline)
        for (const auto& [type, liveries] : types)
            for (const auto& livery : liveries) titles.push_back(livery.title);
    return titles;
}

void writeDistributed(const std::vector<std::string>& titles, Choice& choice) {
    std::string text = "<AIG-regcodes>\n";
    for (size_t i = 0; i < rowsOfEach; ++i)
        text += fmt::format("<livery title=\"{}\" reg=\"{}\"{}/>\n", titles[i % titles.size()],
                            choice.registration(), i % specialEvery == 0 ? " special=\"true\"" : "");
    std::ofstream("regcodes-plain.xml", std::ios::binary) << text << "</AIG-regcodes>\n";
    gf_streamEncrypt(cipherKey, "regcodes-plain.xml", paths::regcodesEnc);
}

void writeUsers(const std::vector<std::string>& titles, Choice& choice) {
    fs::create_directories(paths::myRegcodes);
    std::ofstream file(paths::myRegcodes / "mine.txt", std::ios::binary);
    for (size_t i = 0; i < rowsOfEach; ++i)
        file << fmt::format("{};{},{}\n", titles[titles.size() - 1 - i % titles.size()],
                            choice.registration(), choice.registration());
}

}  // namespace

Rows regcodeRows() {
    const WorkFolder folder;
    gf_startLog();
    gf_readDbaseXml(shippedDbase());
    for (const auto& path : {paths::input, paths::info, paths::errors}) fs::create_directories(path);
    writeLiveries(manyLiveries);
    SCAN_LIVERIES.value = false;
    gf_startLiveries();
    const auto inlineTies = regcodeToTitle;
    const auto titles = allTitles();
    Choice choice(31);
    writeDistributed(titles, choice);
    writeUsers(titles, choice);
    double seconds = 1e9;
    for (int run = 0; run < runs; ++run) {
        regcodeToTitle = inlineTies;
        specialTitles.clear();
        seconds = std::min(seconds, secondsOf(gf_applyOfflineRegcodes));
        require(specialTitles.size() == rowsOfEach / specialEvery, "not all rows were applied");
    }
    gf_clearCatalogue();
    gf_clearDbase();
    gf_closeLog();
    return {
        {fmt::format("Registration rows, {} read and applied to {} liveries", 2 * rowsOfEach, manyLiveries),
         "below 0.3 s", fmt::format("{:.0f} ms", seconds * 1e3), seconds < 0.3}};
}

}  // namespace skl::bench
