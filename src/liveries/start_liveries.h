// The choice of the folders to scan, and a scan from the removal of the old reports to the written file.
// Worker thread.
#pragma once

#include <string>
#include <vector>

namespace skl {

/// Appends the folders to scan, in the order of their rank. Throws UserErrorException 48 if the user has
/// given none.
void gf_selectLiveryFolders(std::vector<std::string>& folders);
/// False if no livery was found. After a stop true, with nothing written.
bool gf_scanLiveries(const std::vector<std::string>& folders);

}  // namespace skl
