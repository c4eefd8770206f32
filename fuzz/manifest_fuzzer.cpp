// manifest.json of a package: any text.
#include <cstdint>
#include <string>

#include "airports/publisher.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    skl::lf_parseManifest(std::string(reinterpret_cast<const char*>(data), size));
    return 0;
}
