// Stands out of airport files: those that the program generates from scenery, and stock files made before.
#pragma once

#include <filesystem>
#include <optional>
#include <vector>

#include "tools/datakit/program_log.h"
#include "tools/datakit/stand_making.h"

namespace skl::datakit {

/// The files of a folder with the ending .xml, sorted; of a file itself.
std::vector<std::filesystem::path> airportFiles(const std::filesystem::path& path);
/// Reads one with the program's reader. What it complains about is told; nothing for a file that cannot be
/// used.
std::optional<StandList> standsOfFile(const std::filesystem::path& path, ProgramLog& log, Findings& findings);
/// The line of a byte of a text, from 1.
uint64_t lineAt(std::string_view text, size_t offset);

}  // namespace skl::datakit
