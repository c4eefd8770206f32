// aircraft.cfg files of both forms, in any character set: any bytes.
#include <cstdint>
#include <string_view>

#include "fuzz/scratch_folder.h"
#include "liveries/cfg_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const skl::fuzz::ScratchFolder folder;
    skl::fuzz::write("aircraft.cfg", data, size);
    skl::CfgText buffer;
    for (const bool ivao : {false, true}) {
        skl::CfgYield yield;
        const skl::CfgFile file{"aircraft.cfg", "ivao_x-csl/A320/aircraft.cfg", ivao};
        if (ivao)
            skl::lf_searchIvaoFile(1, file, buffer, yield);
        else
            skl::lf_searchLiveriesinFile(1, file, buffer, yield);
    }
    return 0;
}
