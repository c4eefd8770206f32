// The two files of registration codes, the distributed one and the user's: any bytes as each.
#include <cstdint>
#include <filesystem>
#include <vector>

#include "core/errors.h"
#include "core/folders.h"
#include "fuzz/scratch_folder.h"
#include "liveries/regcodes.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const skl::fuzz::ScratchFolder folder;
    std::filesystem::create_directories("input/my_regcodes");
    for (const char* path : {"input/AIG-regcodes.xml", "input/my_regcodes/a.txt"})
        skl::fuzz::write(path, data, size);
    std::vector<skl::RegcodeRow> rows;
    try {
        skl::gf_readAigRegcodes(rows);
        skl::gf_readMyRegcodes(skl::paths::myRegcodes, rows);
    } catch (const skl::UserErrorException&) {
    }
    return 0;
}
