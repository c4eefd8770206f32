// Character sets by the first 1027 bytes of a file, and its lines as UTF-8. Bytes of an ANSI file are given
// as they are.
#include "core/charset.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <fstream>
#include <stdexcept>

#include "core/log.h"
#include "core/messages.h"
#include "core/text.h"
#include "platform/system.h"
#include "platform/text_conversion.h"

namespace skl {

namespace {

constexpr size_t bytesLookedAt = 1027;
constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";

/// How many bytes the sequence has that begins with `lead`; 0 for a byte that begins none.
size_t sequenceLength(unsigned char lead) {
    if (lead < 0x80) return 1;
    if (lead >> 5 == 0x06) return 2;
    if (lead >> 4 == 0x0E) return 3;
    if (lead >> 3 == 0x1E) return 4;
    return 0;
}

bool looksLikeUtf8(std::string_view bytes) {
    while (!bytes.empty()) {
        const size_t length = sequenceLength(static_cast<unsigned char>(bytes.front()));
        if (length == 0 || length > bytes.size()) return false;
        for (char follower : bytes.substr(1, length - 1))
            if (static_cast<unsigned char>(follower) >> 6 != 0x02) return false;
        bytes.remove_prefix(length);
    }
    return true;
}

/// Splits at LF and cuts one CR off each line; the end of the file ends a line that is not empty.
template <class Char, class Take>
void forEachLine(std::basic_string_view<Char> text, Take take) {
    while (!text.empty()) {
        const size_t end = text.find(Char('\n'));
        auto line = text.substr(0, end);
        if (!line.empty() && line.back() == Char('\r')) line.remove_suffix(1);
        take(line);
        if (end == text.npos) return;
        text.remove_prefix(end + 1);
    }
}

/// The units of a UTF-16 file without its mark. An odd byte at the end is left out.
std::u16string utf16Units(std::string_view bytes, bool bigEndian) {
    std::u16string units;
    units.reserve(bytes.size() / 2);
    for (size_t at = 2; at + 1 < bytes.size(); at += 2) {
        const auto first = static_cast<unsigned char>(bytes[at]);
        const auto second = static_cast<unsigned char>(bytes[at + 1]);
        units.push_back(static_cast<char16_t>(bigEndian ? first << 8 | second : second << 8 | first));
    }
    return units;
}

bool addWideLines(const std::u16string& units, std::vector<std::string>& lines) {
    try {
        forEachLine(std::u16string_view(units),
                    [&lines](std::u16string_view line) { lines.push_back(win32::utf16ToUtf8(line)); });
        return true;
    } catch (const win32::Utf8ConversionException& error) {
        gf_showMessage(fmt::format("conversion from error from utf16 to utf8, code: {}", error.code()), true);
    } catch (const std::runtime_error& error) {
        gf_showMessage(fmt::format("conversion from error from utf16 to utf8: {}", error.what()), true);
    }
    return false;
}

/// False if the file cannot be read; a folder opens, but gives no bytes.
bool readAll(const std::filesystem::path& path, std::string& bytes) {
    std::ifstream file(path, std::ios::binary);
    std::array<char, 65536> buffer;
    while (file) {
        file.read(buffer.data(), static_cast<std::streamsize>(buffer.size()));
        bytes.append(buffer.data(), static_cast<size_t>(file.gcount()));
    }
    return file.eof() && !file.bad();
}

}  // namespace

std::string_view gf_charsetName(Charset charset) {
    static constexpr std::array<std::string_view, 6> names{
        "ANSI", "Unicode", "Unicode_big_endian", "UTF8_with_BOM", "UTF8_without_BOM", "none_found"};
    return names.at(static_cast<size_t>(charset));
}

Charset gf_detectCharset(const std::filesystem::path& path) {
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        const int failure = platform::lastFileError();
        gf_log(fmt::format("Cannot open file {} for character encoding. Win32 error: {}", gf_pathText(path),
                           failure));
        return Charset::noneFound;
    }
    std::array<char, bytesLookedAt> buffer{};
    file.read(buffer.data(), static_cast<std::streamsize>(buffer.size()));
    const std::string_view bytes(buffer.data(), static_cast<size_t>(file.gcount()));
    if (file.bad() || bytes.size() < 2) return Charset::noneFound;
    if (bytes.starts_with(utf8Mark)) return Charset::utf8WithBom;
    if (bytes.starts_with("\xFF\xFE")) return Charset::unicode;
    if (bytes.starts_with("\xFE\xFF")) return Charset::unicodeBigEndian;
    return looksLikeUtf8(bytes) ? Charset::utf8WithoutBom : Charset::ansi;
}

bool gf_readLines(Charset charset, const std::filesystem::path& path, std::vector<std::string>& lines) {
    if (charset > Charset::utf8WithoutBom)
        throw std::runtime_error(
            fmt::format("file {} has unknown charset: {}", gf_pathText(path), gf_charsetName(charset)));
    std::string bytes;
    if (!readAll(path, bytes)) {
        gf_log(fmt::format("Cannot read file {}", gf_pathText(path)));
        return false;
    }
    if (charset == Charset::unicode || charset == Charset::unicodeBigEndian)
        return addWideLines(utf16Units(bytes, charset == Charset::unicodeBigEndian), lines);
    std::string_view text = bytes;
    if (charset == Charset::utf8WithBom) text.remove_prefix(std::min(utf8Mark.size(), text.size()));
    forEachLine(text, [&lines](std::string_view line) { lines.emplace_back(line); });
    return true;
}

}  // namespace skl
