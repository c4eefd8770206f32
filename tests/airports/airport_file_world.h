// An airport in sight, and documents of it built from rows and stands.
#pragma once

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "airports/airport_file.h"
#include "distribution/site.h"
#include "liveries/reference_db.h"
#include "panel/requests.h"
#include "parking/airport_in_sight.h"
#include "parking/park_airport.h"
#include "parking/stands.h"
#include "tests/support/temp_folder.h"

namespace skl::test {

inline const std::string archivedName = "airports/my_thirdparty/EHAM.xml";
inline const std::string learnedName = "airports/learned/thirdparty/Zeta Works/EHAM.xml";
inline const std::string usualRows = "altitude=-11;airport_name=Schiphol;publisher=Zeta Works";

/// A document out of rows "name=value;name=value" and the inside of <parkpositions>.
inline std::string apf(const std::string& rows, const std::string& parkpositions) {
    std::string text = "<?xml version=\"1.0\"?>\n<parameters>\n";
    for (size_t at = 0; at < rows.size();) {
        const size_t end = std::min(rows.find(';', at), rows.size());
        const std::string row = rows.substr(at, end - at);
        text += fmt::format("<parameter name=\"{}\" value=\"{}\"/>\n", row.substr(0, row.find('=')),
                            row.substr(row.find('=') + 1));
        at = end + 1;
    }
    return text + "</parameters>\n<parkpositions>\n" + parkpositions + "</parkpositions>\n";
}

/// A <parkpos> at 52, 4 with what is given, options inside.
inline std::string parkpos(const std::string& id, const std::string& attributes = "",
                           const std::string& options = "") {
    return fmt::format(R"(<parkpos id="{}" latitude="52" longitude="4" {}>{}</parkpos>)", id, attributes,
                       options);
}

class AirportFileTest : public TempFolderTest {
  protected:
    void SetUp() override {
        TempFolderTest::SetUp();
        gf_setSiteBase("");
        gf_forgetProbes();
        gf_clearDbase();
        gf_resetStands();
        gf_resetRequests();
        std::filesystem::create_directories("airports");
        parkAirport = {.code = "EHAM", .lat = 52.3, .lon = 4.76, .alt = -3};
    }
    /// Reads the archived file afresh; the reason if that failed.
    std::string read(const std::string& name = archivedName) {
        file = {};
        read_.clear();
        return gf_readApf(name, file, quality, read_);
    }
    /// Writes both documents, an empty one not, and reads them.
    std::string read(const std::string& archived, const std::string& learned) {
        writeFile(archivedName, archived);
        if (!learned.empty()) writeFile(learnedName, learned);
        return read();
    }
    /// Each stand read, with its flags: cargo, ramp, heli, manual, and what the learned file changed.
    std::string standTexts() const {
        std::string all;
        const auto flag = [](const char* name, bool set) { return set ? name : ""; };
        for (const Stand& each : read_)
            all +=
                fmt::format("{}:{} {:.1f}m {:.0f}deg{}{}{}{}{}{}\n", each.sid, each.id,
                            each.radius * metersPerNm, toDeg(each.heading), flag(" cargo", each.cargo),
                            flag(" ramp", each.ramp), flag(" heli", each.heli), flag(" manual", each.manual),
                            flag(" radius+", each.radiusChanged), flag(" cargo+", each.cargoChanged));
        return all;
    }
    /// Each option of a stand: "2:R1 KLM B738 day 1 hh 4,5 cs A:B soft learned".
    std::string optionTexts(size_t place) const {
        std::string all;
        for (const StandOption& each : read_.at(place).options)
            all += fmt::format("{}:{} {} {} day {} hh {} cs {}:{} {} {}\n", each.optionId, each.reg,
                               each.airl, each.type, each.day, gf_bitset2hours(each.hours), each.cs, each.cs2,
                               each.real ? "real" : "soft", each.fromArchive ? "archived" : "learned");
        return all;
    }

    AirportFile file;
    QualityFactors quality;
    std::vector<Stand> read_;
};

}  // namespace skl::test
