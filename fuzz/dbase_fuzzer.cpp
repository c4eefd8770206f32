// The reference database behind its deciphering: any bytes.
#include <cstdint>
#include <stdexcept>

#include "core/errors.h"
#include "fuzz/scratch_folder.h"
#include "liveries/reference_db.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const skl::fuzz::ScratchFolder folder;
    skl::fuzz::write("dbase.xml", data, size);
    try {
        skl::gf_readDbaseXml("dbase.xml");
        skl::gf_category("A320");
        skl::gf_halfSpanNm("B744");
        skl::gf_regInTitle("AI A320 BAW G-EUUA");
    } catch (const skl::UserErrorException&) {
    } catch (const std::runtime_error&) {
    }
    skl::gf_clearDbase();
    return 0;
}
