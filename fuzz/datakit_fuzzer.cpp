// Sources of data files: any bytes as an apt.dat or a table of each kind. Whatever is made must be XML that
// parses.
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <pugixml.hpp>
#include <sstream>
#include <string>
#include <string_view>

#include "fuzz/scratch_folder.h"
#include "tools/datakit/commands.h"

namespace {

void make(const std::vector<std::string>& words, const std::filesystem::path& made) {
    std::filesystem::remove_all(made);
    std::ostringstream said;
    const int status = skl::datakit::run(words, said, said);
    if (status == 2) std::abort();  // the use is right, whatever the source
    std::error_code ignored;
    if (!std::filesystem::exists(made, ignored)) return;
    pugi::xml_document document;
    if (!document.load_file(made.c_str())) std::abort();
}

void put(const std::string& path, std::string_view text) {
    skl::fuzz::write(path, reinterpret_cast<const uint8_t*>(text.data()), text.size());
}

bool writeTables() {
    put("types.csv", "type,category\nA320,large\nB738,large\n");
    put("airlines.csv", "icao\nDLH\n");
    put("regs.csv", "registration,type\nD-AIUA,A320\n");
    put("apt.dat", "I\n1100\n1 40 0 0 XSKL Field\n1300 54 -12 0 gate jets 1\n99\n");
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const skl::fuzz::ScratchFolder folder;
    const std::string source = "source";
    skl::fuzz::write(source, data, size);
    static const bool tables = writeTables();
    if (!tables) return 0;
    // One of the kinds for each input, so that a round stays short.
    switch (size % 6) {
        case 0:
            make({"stands", "--out", "stock", "--only", "XSKL", "--hangars", source}, "stock/XSKL.xml");
            break;
        case 1:
            make({"airports", "--out", "index", source}, "index/airports_msfs.xml");
            break;
        case 2:
            make({"database", "--out", "dbase.xml", "--types", "types.csv", "--airlines", "airlines.csv",
                  "--registrations", source},
                 "dbase.xml");
            break;
        case 3:
            make({"database", "--out", "dbase.xml", "--types", source, "--airlines", "airlines.csv",
                  "--registrations", "regs.csv"},
                 "dbase.xml");
            break;
        case 4:
            make({"stands", "--out", "stock", "--sightings", source, "apt.dat"}, "stock/XSKL.xml");
            break;
        default:
            make({"regcodes", "--out", "codes.xml", source}, "codes.xml");
    }
    return 0;
}
