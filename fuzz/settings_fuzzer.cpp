// What the user edits, and what finds the simulator and an airport's file: any bytes as SimConnect.cfg, as
// the simulator's own settings, as parameters.xml, as the list of airports and as a link file.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <pugixml.hpp>
#include <string>
#include <string_view>

#include "airports/airport_file.h"
#include "airports/airport_index.h"
#include "core/folders.h"
#include "core/parameter_store.h"
#include "core/parameters.h"
#include "distribution/site.h"
#include "fuzz/scratch_folder.h"
#include "parking/airport_list.h"
#include "platform/simconnect/config.h"

namespace {

namespace fs = std::filesystem;

bool prepare() {
    ::setenv("XDG_CONFIG_HOME", (fs::current_path() / "config").c_str(), 1);
    ::setenv("XDG_DATA_HOME", (fs::current_path() / "data").c_str(), 1);
    for (const fs::path folder : {"config/Skylantern", "data/MSFSPackages", "airports/my_thirdparty"})
        fs::create_directories(folder);
    skl::gf_setSiteBase("");
    skl::airportIndex = {{.code = "EGLL", .lat = 51.47, .lon = -0.45}};
    return true;
}

void require(bool holds) {
    if (!holds) std::abort();
}

/// What cannot be used is replaced by defaults, and what is written can be read again.
void readParameters() {
    const auto& lists = skl::gf_parameterLists();
    skl::gf_readParameters(lists.hidden, lists.checks, lists.numbers, lists.combos, lists.texts,
                           lists.liveTexts);
    for (const skl::IntParameter* number : lists.combos)
        require(number->value == number->clamp(number->value));
    pugi::xml_document written;
    require(written.load_file("config/Skylantern/parameters.xml"));
    skl::gf_resetParameters();
}

void readAirportList() {
    skl::lf_readMyParkAirports();
    skl::lf_promoteParkAirport("EGLL", "A1", {51.47, -0.45});
    skl::lf_storeParkAirport("EGLL");
    const auto lines = skl::lf_parkAirportLines();
    require(lines && std::count(lines->begin(), lines->end(), "EGLL,A1") == 1);
    skl::gf_resetParkAirports();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const skl::fuzz::ScratchFolder folder;
    static const bool ready = prepare();
    require(ready);
    skl::SimConnectAddress address;
    std::string trouble;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    if (skl::lf_parseSimConnectConfig(text, address, trouble))
        require(!address.host.empty() && address.port != 0);
    else
        require(!trouble.empty());
    for (const char* path : {"data/MSFSPackages/UserCfg.opt", "config/Skylantern/parameters.xml",
                             "airports/my_park_airports.txt", "airports/my_thirdparty/EGLL.txt"})
        skl::fuzz::write(path, data, size);
    skl::gf_detectInstallPath();
    readParameters();
    readAirportList();
    // Whatever a link says, what is learned of the airport is kept with all that is learned.
    const std::string found = skl::gf_findAirportFile("EGLL");
    require(found.empty() ||
            skl::gf_learnedPath(found, "").generic_string().starts_with("airports/learned/"));
    return 0;
}
