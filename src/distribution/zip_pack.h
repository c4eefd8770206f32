// A pack of small text files in a zip. Every byte of it is foreign: sizes and counts are bounded, and no
// entry names a place outside the folder that the pack goes to.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace skl {

struct PackFile {
    std::string stem;  ///< the entry's name without folders and extension
    std::string text;
};

/// The files of a pack in their order; folders are left out, what cannot be read is logged and left out.
/// Nothing if the bytes are no zip.
std::optional<std::vector<PackFile>> lf_readPack(std::string_view bytes);
/// The stem of an entry's name; empty for a folder, and for one that is no name of a file.
std::string lf_packStem(std::string_view name);

}  // namespace skl
