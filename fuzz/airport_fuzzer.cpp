// Airport files, as the archived and as the learned one of an airport: any bytes.
#include <cstdint>
#include <filesystem>
#include <string_view>
#include <vector>

#include "airports/airport_file.h"
#include "core/errors.h"
#include "fuzz/scratch_folder.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const skl::fuzz::ScratchFolder folder;
    static const std::string name = "airports/my_thirdparty/EGLL.xml";
    std::filesystem::create_directories("airports/my_thirdparty");
    skl::fuzz::write(name, data, size);
    skl::AirportFile file;
    skl::QualityFactors quality;
    std::vector<skl::Stand> stands;
    bool handmade = false;
    try {
        skl::gf_readApf(name, file, quality, stands);
        skl::lf_readLearned(name, file, stands, handmade);
    } catch (const skl::UserErrorException&) {
    }
    return 0;
}
