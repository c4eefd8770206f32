// The livery scan with two workers against grep over the same files, both with a warm cache: 20,000
// aircraft.cfg with 6 KB on average and three liveries each.
#include <fmt/format.h>

#include <cstdlib>
#include <fstream>

#include "bench/bench.h"
#include "bench/world_data.h"
#include "core/folders.h"
#include "core/log.h"
#include "core/parameters.h"
#include "liveries/livery_scan.h"
#include "liveries/reference_db.h"
#include "liveries/start_liveries.h"

namespace skl::bench {

namespace {

namespace fs = std::filesystem;

constexpr int files = 20000, sectionsAFile = 3, filesAPackage = 250;
constexpr size_t meanBytes = 6144;
constexpr const char* tree = "packages";

std::string sectionText(Choice& choice, int number, int section) {
    const LiveryData livery = makeLivery(choice, number);
    std::string text = fmt::format("[fltsim.{}]\ntitle = \"{}\"\nmodel = \"\"\n", section, livery.title);
    text += fmt::format("panel=\"\"\nsound=\"\"\ntexture=\"{}{}\"\n", livery.airline, section);
    text += fmt::format("icao_airline = {}\nui_manufacturer = \"Traffic\"\nui_type = \"{}\"\n",
                        livery.airline, livery.model);
    text += fmt::format("ui_variation = \"{0} {1}\"\nui_createdby = \"The makers\"\nisAirTraffic=1\n",
                        livery.airline, livery.regcode);
    if (!livery.regcode.empty()) text += fmt::format("atc_id = {}\n", livery.regcode);
    text += fmt::format("atc_parking_types = {}\natc_heavy = 0\n", livery.cargo ? "CARGO" : "GATE,RAMP");
    return text + "atc_parking_codes = \"\"\n\n";
}

/// Tables of lights and sounds, as they follow the liveries in real files.
void pad(std::string& text, size_t size) {
    text += "[LIGHTS]\n";
    for (int i = 0; text.size() < size; ++i)
        text += fmt::format(
            "lightdef.{} = Type:{}#Index:1#LocalPosition:{:.2f},-{:.2f},3.1#EffectFile:LIGHT_{}\n", i, i % 7,
            i * 0.25, i * 0.5, i);
}

void makeTree() {
    Choice choice(17);
    for (int i = 0; i < files; ++i) {
        const fs::path folder = fs::path(tree) / fmt::format("pack{:03}", i / filesAPackage) / "SimObjects" /
                                "Airplanes" / fmt::format("AI_{:05}", i);
        fs::create_directories(folder);
        std::string text =
            "[VERSION]\nmajor = 1\nminor = 0\n\n[GENERAL]\natc_type = \"AIRCRAFT\"\natc_model = "
            "\"AIRCRAFT\"\n";
        text +=
            fmt::format("icao_type_designator = \"{}\" ; as the register has it\ncategory = \"airplane\"\n\n",
                        choice.type());
        for (int section = 0; section < sectionsAFile; ++section)
            text += sectionText(choice, i * sectionsAFile + section, section);
        // From three quarters to five quarters of the mean.
        pad(text, meanBytes * static_cast<size_t>(75 + i % 51) / 100);
        std::ofstream(folder / "aircraft.cfg", std::ios::binary) << text;
    }
}

/// Into a file: with /dev/null behind it grep would stop at the first hit of each file.
double secondsOfGrep() {
    return secondsOf([] {
        const int status = std::system(fmt::format("LC_ALL=C grep -rc fltsim {} > counts.txt", tree).c_str());
        require(status == 0, "grep failed");
    });
}

double secondsOfWalk() {
    gf_beginLiveryScan();
    return secondsOf([] { gf_scanLiveryFolder(1, tree); });
}

/// With the corrections of the database, sorting, the liveries file and the reports.
double secondsOfWholeScan() {
    return secondsOf([] { require(gf_scanLiveries({tree}), "nothing found"); });
}

}  // namespace

Rows liveryScanRows() {
    const WorkFolder folder;
    gf_startLog();
    gf_readDbaseXml(shippedDbase());
    for (const auto& path : {paths::output, paths::info, paths::errors}) fs::create_directories(path);
    makeTree();
    workerLimit = 2;
    double grep = 1e9, walk = 1e9, whole = 1e9;
    size_t found = 0;
    secondsOfGrep();
    for (int run = 0; run < runs; ++run) {
        grep = std::min(grep, secondsOfGrep());
        walk = std::min(walk, secondsOfWalk());
        found = scannedLiveries.size();
        whole = std::min(whole, secondsOfWholeScan());
    }
    gf_beginLiveryScan();
    gf_clearDbase();
    gf_closeLog();
    require(found == size_t{files} * sectionsAFile, fmt::format("{} liveries found", found));
    return {{fmt::format("Livery scan of {} files, 2 workers", files), "at most 3.0 times grep -rc fltsim",
             fmt::format("{:.2f} times ({:.0f} ms against {:.0f} ms)", walk / grep, walk * 1e3, grep * 1e3),
             walk <= 3 * grep},
            {"The same with its reports and the liveries file", "",
             fmt::format("{:.0f} ms for {} liveries", whole * 1e3, found), std::nullopt}};
}

}  // namespace skl::bench
