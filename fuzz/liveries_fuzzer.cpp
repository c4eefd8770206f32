// LiveriesScanned.xml: any bytes.
#include <cstdint>
#include <filesystem>

#include "core/errors.h"
#include "fuzz/scratch_folder.h"
#include "liveries/liveries_file.h"
#include "liveries/livery_scan.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const skl::fuzz::ScratchFolder folder;
    std::filesystem::create_directories("output");
    skl::fuzz::write("output/LiveriesScanned.xml", data, size);
    try {
        skl::gf_readLiveriesFile();
    } catch (const skl::UserErrorException&) {
    }
    skl::scannedLiveries.clear();
    return 0;
}
