// LiveriesScanned.xml, the reference database and the two files of registration codes: any bytes as each of
// them.
#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "core/errors.h"
#include "core/folders.h"
#include "fuzz/scratch_folder.h"
#include "liveries/liveries_file.h"
#include "liveries/livery_scan.h"
#include "liveries/reference_db.h"
#include "liveries/regcodes.h"

namespace {

/// What a damaged file may throw: the run ends with its message.
template <class Read>
void refusing(Read read) {
    try {
        read();
    } catch (const skl::UserErrorException&) {
    } catch (const std::runtime_error&) {
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const skl::fuzz::ScratchFolder folder;
    for (const char* path : {"output", "input/my_regcodes"}) std::filesystem::create_directories(path);
    for (const char* path :
         {"output/LiveriesScanned.xml", "input/AIG-regcodes.xml", "input/my_regcodes/a.txt", "dbase.xml"})
        skl::fuzz::write(path, data, size);
    refusing([] { skl::gf_readLiveriesFile(); });
    refusing([] { skl::gf_readDbaseXml("dbase.xml"); });
    std::vector<skl::RegcodeRow> rows;
    refusing([&] { skl::gf_readAigRegcodes(rows); });
    refusing([&] { skl::gf_readMyRegcodes(skl::paths::myRegcodes, rows); });
    skl::scannedLiveries.clear();
    skl::gf_clearDbase();
    return 0;
}
