// A learned airport file laid over a sound archived one: any bytes.
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "airports/airport_file.h"
#include "core/errors.h"
#include "fuzz/scratch_folder.h"

namespace {

constexpr std::string_view archived =
    R"(<parameters><parameter name="airport_name" value="Heathrow"/><parameter name="altitude" value="83"/>)"
    R"(</parameters><parkpositions>)"
    R"(<parkpos id="A1" latitude="51.472" longitude="-0.453" heading="90" radius="30">)"
    R"(<opt reg="G-EUUA" airl="BAW" type="A320" day="1" hh="0,1,47" cs="BAW1:BAW2"/></parkpos>)"
    R"(<parkpos id="A2" latitude="51.473" longitude="-0.453" heading="90" radius="30"/></parkpositions>)";

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const skl::fuzz::ScratchFolder folder;
    static const std::string archive = "airports/my_thirdparty/EGLL.xml", learned = "learned.xml";
    std::filesystem::create_directories("airports/my_thirdparty");
    skl::fuzz::write(archive, reinterpret_cast<const uint8_t*>(archived.data()), archived.size());
    skl::fuzz::write(learned, data, size);
    skl::AirportFile file;
    skl::QualityFactors quality;
    std::vector<skl::Stand> stands;
    bool handmade = false;
    try {
        skl::gf_readApf(archive, file, quality, stands);
        skl::lf_readLearned(learned, file, stands, handmade);
        file.stands = stands;
        skl::gf_writeApf(file, "written.xml", skl::ApfMode::learned);
    } catch (const skl::UserErrorException&) {
    }
    return 0;
}
