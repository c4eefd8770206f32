// Log.txt in the working folder: one flushed line an entry, "===> " before warnings and errors. Any thread.
#pragma once

#include <filesystem>
#include <string_view>

namespace skl {

/// Rotates Log.txt to Log0.txt to Log00.txt, opens a new one and writes the banner. Throws std::runtime_error
/// "Failed to write file <path>".
void gf_startLog(const std::filesystem::path& path = "Log.txt");
/// For tests and the process end.
void gf_closeLog();

void gf_log(std::string_view text);
void gf_logError(std::string_view text);     ///< with "===> " in front
void gf_logIndented(std::string_view text);  ///< with ten blanks in front: details under a line
void gf_logRunning(std::string_view text);   ///< only while no stop is asked for

}  // namespace skl
