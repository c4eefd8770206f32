// A folder tree, file by file. In name order, so that the same tree gives the same result on every file
// system; links are followed, since packages are often linked in, and each folder is entered once, so that a
// loop of links ends.
#pragma once

#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace skl {

/// A folder that cannot be read.
struct TreeWalkProblem : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct TreeVisitor {
    /// Whether a folder below the root is left out, by its path in UTF-8.
    std::function<bool(std::string_view path)> skipsFolder;
    /// Each entry that is no folder, whatever kind of file it is.
    std::function<void(const std::filesystem::directory_entry& entry, const std::string& path)> visit;
    bool skipsUnreadable = false;  ///< a folder below the root that cannot be read is passed over
};

/// Walks until the end or a stop of the run. `place` is the path that was last looked at. Throws
/// TreeWalkProblem, and what `visit` throws.
void gf_walkTree(const std::filesystem::path& root, const TreeVisitor& visitor, std::string& place);

}  // namespace skl
