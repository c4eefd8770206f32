// The airport index and the plain names: any bytes as both.
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

#include "airports/airport_index.h"
#include "fuzz/scratch_folder.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const skl::fuzz::ScratchFolder folder;
    std::filesystem::create_directories("input");
    for (const char* path : {"input/airports_msfs.xml", "input/airports_msfs_names.xml"})
        skl::fuzz::write(path, data, size);
    try {
        skl::gf_readAirports("airports_msfs.xml");
        skl::gf_readAirportNames();
    } catch (const std::runtime_error&) {
    }
    for (const skl::Airport& airport : skl::airportIndex) {
        if (!std::isfinite(airport.lat) || !std::isfinite(airport.lon) || !std::isfinite(airport.alt))
            std::abort();
        if (!skl::gf_findAirport(airport.code)) std::abort();
        if (airport.code.find_first_of("/\\:.") != std::string::npos) std::abort();  // names files
    }
    skl::gf_closestAirport({51.47, -0.45});
    skl::gf_clearAirports();
    return 0;
}
