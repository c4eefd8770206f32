// Where everything lives. Paths are relative to the working folder, the one that holds `docs`, unless said
// otherwise.
#pragma once

#include <atomic>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace skl {

namespace fs = std::filesystem;

namespace paths {
inline const fs::path docs = "docs";
inline const fs::path input = "input";
inline const fs::path dbaseEnc = "input/dbase.enc";
inline const fs::path dbaseXml = "input/dbase.xml";
inline const fs::path regcodesEnc = "input/AIG-regcodes.enc";
inline const fs::path regcodesXml = "input/AIG-regcodes.xml";
inline const fs::path myRegcodes = "input/my_regcodes";
inline const fs::path airports = "airports";
inline const fs::path myParkAirports = "airports/my_park_airports.txt";
inline const fs::path mySimaddon = "airports/my_simaddon";
inline const fs::path myThirdparty = "airports/my_thirdparty";
inline const fs::path learned = "airports/learned";
inline const fs::path learnedStock = "airports/learned/stock";
inline const fs::path learnedSimaddon = "airports/learned/simaddon";
inline const fs::path learnedThirdparty = "airports/learned/thirdparty";
inline const fs::path offlineLearning = "TBLO";
inline const fs::path output = "output";
inline const fs::path liveriesScanned = "output/LiveriesScanned.xml";
inline const fs::path info = "output/info";
inline const fs::path errors = "output/errors";
inline const fs::path objectList = "Callsign2ObjectId.txt";
inline constexpr std::string_view installer = "install_new_version.exe";
inline constexpr std::string_view community = "Community";
inline constexpr std::string_view official = "Official";
inline constexpr std::string_view official2024 = "Official2024";
}  // namespace paths

extern std::atomic<bool>
    sim2020;  ///< SIM_CHOICE is "MSFS 2020"; set once a run, behind the reading of parameters
std::string_view gf_simKey();  ///< "MSFS" or "MSFS2024", by sim2020

/// The user's roaming and local application data folders; empty, with a log line, if there is none.
fs::path gf_appDataPath();
fs::path gf_localAppDataPath();
/// The program's folder under the roaming application data; parameters.xml lives there.
fs::path gf_programDataPath();

/// What stands before the separator at `at`; a root, of a drive too, keeps its separator.
std::string gf_beforeSeparator(std::string_view path, size_t at);
/// A path out of a text that may have been written on another system: both separators are understood.
fs::path gf_nativePath(std::string_view text);
/// `path` if it exists, else the only existing path that equals it without case (ASCII), else `path` as it
/// is.
fs::path gf_findExisting(const fs::path& path);

/// Makes the folder tree and removes stale files. Throws std::filesystem::filesystem_error.
void gf_ensureFolders();
/// Cuts a last component "Community" (either separator, trailing ones dropped) off the selected install path.
void gf_stripCommunity();
/// The packages folder of the selected simulator, or empty.
fs::path gf_detectInstallPath();
/// The parameter that holds the selected simulator's packages folder.
class StringParameter& gf_installPathParameter();
/// The packages folder plus `subPath` (found without case if need be), e.g. gf_simPath(paths::community).
fs::path gf_simPath(std::string_view subPath);

/// Writes (replacing, in one step) or appends a text, with LF if `newLine`; false if that fails.
bool gf_writeText(std::string_view text, const fs::path& path, bool newLine, bool append = false);
/// Removes every file in the folder. Throws UserErrorException 5.
void gf_cleanFolder(const fs::path& folder);
int gf_countEntries(const fs::path& folder);
/// The names with extension .XML, in any case, in airports/my_thirdparty, sorted.
std::vector<std::string> gf_listAirportFiles();

}  // namespace skl
