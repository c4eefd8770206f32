// Scenery files with airports: any words.
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "airports/addon_scan_state.h"
#include "airports/bgl.h"
#include "fuzz/scratch_folder.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const skl::fuzz::ScratchFolder folder;
    std::vector<uint32_t> words((size + 3) / 4);
    if (size) std::memcpy(words.data(), data, size);
    std::vector<std::string> lines;  // of this input alone
    skl::lf_collectScanLog(&lines);
    skl::fuzz::write("fuzzed.bgl", data, size);
    skl::lf_hasAirportSection("fuzzed.bgl");
    try {
        skl::lf_processBglWords(words, "fuzzed.bgl");
    } catch (const std::out_of_range&) {
    }
    skl::lf_collectScanLog(nullptr);
    return 0;
}
