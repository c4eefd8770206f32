// The version file of the site: any text, with a site that has nothing.
#include <cstdint>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>

#include "distribution/site.h"
#include "distribution/updates.h"
#include "fuzz/scratch_folder.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const skl::fuzz::ScratchFolder folder;
    skl::gf_setSiteBase("");
    std::istringstream text(std::string(reinterpret_cast<const char*>(data), size));
    try {
        skl::lf_applyVersions(text);
    } catch (const nlohmann::json::exception&) {
    }
    return 0;
}
