// Registration codes tie one aircraft to one livery. Three sources, later ones overruling earlier ones: the
// atc_id lines of the scanned sections, the distributed file, the user's text files. Titles without a
// registration in the two files are never used. Worker thread, at the start-up.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace skl {

struct RegcodeRow {
    std::string title;
    std::vector<std::string> regs;
    bool special = false;  ///< not to be picked by chance for other aircraft
};

/// Fills dontUseTitles. Before the scan.
void gf_readDontUseTitles();
/// After the catalogue's titles are stored, while scannedLiveries holds them.
void gf_collectInlineRegcodes();
/// After gf_collectInlineRegcodes.
void gf_applyOfflineRegcodes();
/// The two readers append to `rows`; false if there were errors, which are logged. A bad row costs itself.
bool gf_readAigRegcodes(std::vector<RegcodeRow>& rows);
bool gf_readMyRegcodes(const std::filesystem::path& folder, std::vector<RegcodeRow>& rows);

}  // namespace skl
