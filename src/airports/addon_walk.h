// The walk over one folder of packages.
#pragma once

#include <filesystem>

namespace skl {

/// Hands each scenery file that holds airports to the threads of the scan, and waits for them. What fails is
/// logged and ends the walk of this folder.
void lf_walkFolder(const std::filesystem::path& folder);

}  // namespace skl
