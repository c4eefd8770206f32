// The kit run by its command line in a folder of its own.
#pragma once

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "airports/airport_index.h"
#include "core/log.h"
#include "liveries/reference_db.h"
#include "tests/support/temp_folder.h"
#include "tools/datakit/commands.h"

namespace skl::test {

class DatakitTest : public TempFolderTest {
  protected:
    void TearDown() override {
        gf_clearDbase();
        gf_clearAirports();
        TempFolderTest::TearDown();
    }
    /// Runs a command and gives its status; what it said is kept.
    int kit(const std::vector<std::string>& words) {
        std::ostringstream out, notes;
        const int status = datakit::run(words, out, notes);
        said = out.str() + notes.str();
        return status;
    }
    bool says(const std::string& text) const { return said.find(text) != std::string::npos; }
    std::string said;
};

inline const std::string aptHead = "I\n1100 Version\n\n";

/// The tables of a small reference database, and dbase.xml out of them.
inline void writeDatabaseTables() {
    writeFile(
        "types.csv",
        "type,category,span,cargo,similar\nA320,large,34.1,,A321\nA321,large,34.1,,\nB77L,heavy,64.8,yes,\n"
        "C172,light,11,,\nEC35,rotorcraft,10.2,,\nC56X,business,17.2,,\nF16,high_performance,9.8,,\n");
    writeFile("airlines.csv", "icao,cargo\nDLH,\nBAW,\nFDX,yes\nPVT,\n");
    writeFile("regs.csv",
              "registration,type,operator,airline,cargo\nD-AIUA,A320,DLH,DLH,\nN851FD,B77L,FDX,FDX,1\n");
}
inline const std::vector<std::string> databaseCommand{"database",     "--out",           "dbase.xml",
                                                      "--types",      "types.csv",       "--airlines",
                                                      "airlines.csv", "--registrations", "regs.csv"};

}  // namespace skl::test
