// Scenery files with airports: any words.
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <vector>

#include "airports/bgl.h"
#include "fuzz/scratch_folder.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const skl::fuzz::ScratchFolder folder;
    std::vector<uint32_t> words((size + 3) / 4);
    if (size) std::memcpy(words.data(), data, size);
    try {
        skl::lf_processBglWords(words, "fuzzed.bgl");
    } catch (const std::out_of_range&) {
    }
    return 0;
}
