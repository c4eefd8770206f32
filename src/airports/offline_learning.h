// Add-on airports that the data site does not know yet can be learned offline by its maintainers from the
// stock file of the same airport. What they need for that is set aside.
#pragma once

#include <string>
#include <vector>

namespace skl {

/// Copies the generated files of these codes that can be learned, and tells the user what to do with them.
void lf_offlineLearning(const std::vector<std::string>& codes);

}  // namespace skl
