// The pack of add-on airports: any bytes; no name leads out of its folder.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "distribution/zip_pack.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const auto files = skl::lf_readPack({reinterpret_cast<const char*>(data), size});
    if (!files) return 0;
    for (const auto& file : *files)
        if (file.stem.empty() || file.stem.find_first_of("/\\:") != std::string::npos || file.stem == "..")
            std::abort();
    return 0;
}
