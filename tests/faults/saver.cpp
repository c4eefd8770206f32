// Saves one of the program's files once, between two calls of the system that nothing else here makes, so
// that a tracer knows which calls belong to the save: saver KIND old|new. Exit status 0 whether it was saved
// or not: a save that fails ends nothing.
#include <sys/types.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <functional>
#include <map>
#include <string>

#include "airports/addon_scan.h"
#include "airports/airport_file.h"
#include "core/folders.h"
#include "core/log.h"
#include "core/parameter_store.h"
#include "core/parameters.h"
#include "liveries/liveries_file.h"
#include "liveries/livery_scan.h"
#include "parking/airport_list.h"

namespace {

using namespace skl;

/// Long enough to go to the disk in more than one piece.
std::string filling(bool isNew) {
    return std::string(20000, isNew ? 'n' : 'o');
}

void saveParameter(bool isNew) {
    MSFS_INSTALL_PATH.set(filling(isNew));
    gf_saveParameter(MSFS_INSTALL_PATH);
}

void fillLiveries(bool isNew) {
    for (int i = 0; i < 300; ++i) {
        LiveryData livery;
        livery.airline = "BAW";
        livery.model = "A320";
        livery.title = (isNew ? "new " : "old ") + std::to_string(i);
        scannedLiveries.push_back(livery);
    }
}

AirportFile airport(bool isNew) {
    AirportFile file;
    file.code = "EGLL";
    file.airportName = isNew ? "new" : "old";
    for (int i = 0; i < 100; ++i) {
        Stand stand;
        stand.id = "A" + std::to_string(i);
        stand.lat = stand.lon = 51;
        stand.radius = 0.02;
        stand.options.push_back({.airl = "BAW",
                                 .type = "A320",
                                 .reg = "G-EUUA",
                                 .hours = 1,
                                 .optionId = 1,
                                 .day = 1,
                                 .real = true});
        file.stands.push_back(stand);
    }
    return file;
}

void mark() {
    // The parent's number is of no use to anybody else here.
    (void)::getppid();
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    const std::string kind = argv[1];
    const bool isNew = argv[2] == std::string("new");
    gf_startLog();
    std::function<void()> prepare = [] {}, save;
    if (kind == "parameters") {
        prepare = [] {
            const auto& lists = gf_parameterLists();
            gf_readParameters(lists.hidden, lists.checks, lists.numbers, lists.combos, lists.texts,
                              lists.liveTexts);
        };
        save = [&] { saveParameter(isNew); };
    } else if (kind == "liveries") {
        prepare = [&] { fillLiveries(isNew); };
        save = [] { gf_writeLiveriesFile(); };
    } else if (kind == "airport") {
        save = [&] { gf_writeApf(airport(isNew), "learned.xml", ApfMode::learned); };
    } else if (kind == "generated") {
        save = [&] {
            const AirportFile file = airport(isNew);
            const auto write = [&file](const std::filesystem::path& path) {
                return gf_writeApf(file, path, ApfMode::generated);
            };
            // The line is told by the scan, and the last call of the save is the renaming.
            if (lf_keepGenerated(file, "airports/EGLL.xml", write)) gf_log("generated");
        };
    } else if (kind == "airports") {
        prepare = [&] { lf_promoteParkAirport("EGLL", filling(isNew), {51, 0}); };
        save = [] { lf_storeParkAirport("EGLL"); };
    } else if (kind == "text") {
        save = [&] { gf_writeText(filling(isNew), "text.txt", false); };
    } else {
        return 2;
    }
    prepare();
    mark();
    save();
    mark();
    return 0;
}
