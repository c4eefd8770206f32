// Where the files of a data site lie below its folder `downloads`, and what the enciphered ones hold.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace skl::datakit {

namespace site_tree {
inline constexpr std::string_view downloads = "downloads";
inline constexpr std::string_view versions = "versions.json";
inline constexpr std::string_view database = "dbase.enc";
inline constexpr std::string_view regcodes = "AIG-regcodes.enc";
inline constexpr std::string_view pack = "mysimaddon24/my_simaddon2024.zip";
inline constexpr std::string_view index = "airports_msfs.xml";
inline constexpr std::string_view names = "airports_msfs_names.xml";
inline constexpr std::string_view common = "MSFS", of2024 = "MSFS2024";
inline constexpr std::string_view stock = "archive/stock", simaddon = "archive/simaddon",
                                  thirdparty = "archive/thirdparty";
}  // namespace site_tree

/// The folder `downloads` of a site: the path itself when that is its name, else the one below it.
std::filesystem::path downloadsOf(const std::filesystem::path& site);
/// What an enciphered file holds. Throws Failure when it cannot be opened with the program's key.
std::string decipheredText(const std::filesystem::path& path);

/// The part of a version that is raised.
enum class Raise { major, minor, patch };
/// "major", "minor" or "patch"; throws Misuse.
Raise raiseOf(const std::string& word);
/// Raises the versions of the data files that hold something else than when they were raised last, and writes
/// versions.json. Gives a line for each member. Throws Failure for a versions.json that cannot be read.
std::vector<std::string> raiseVersions(const std::filesystem::path& downloads, Raise raise);

}  // namespace skl::datakit
