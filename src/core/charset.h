// Character sets of text files, and reading their lines as UTF-8.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace skl {

enum class Charset {
    ansi = 0,
    unicode = 1,
    unicodeBigEndian = 2,
    utf8WithBom = 3,
    utf8WithoutBom = 4,
    noneFound = 5
};

Charset gf_detectCharset(const std::filesystem::path& path);
/// Appends all lines to `lines`, without their LF or CR LF. False after a message when a conversion fails;
/// throws std::runtime_error for noneFound.
bool gf_readLines(Charset charset, const std::filesystem::path& path, std::vector<std::string>& lines);
std::string_view gf_charsetName(Charset charset);

}  // namespace skl
