// Small text routines that many subsystems share. ASCII case only, whatever the locale.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace skl {

std::string gf_trim(std::string_view text);  ///< without blanks, tabs, CR and LF at both ends
std::string gf_upper(std::string_view text);
bool gf_equalsUpper(std::string_view a, std::string_view b);  ///< a equals b in upper case
/// The pieces as they are, empty ones too, but none behind a comma at the end.
std::vector<std::string> gf_splitComma(std::string_view text);
/// Between the first and second double quote. No quote: all; no second one: nothing.
std::string gf_betweenQuotes(std::string_view text);
/// part * 100 / whole to the nearest; 0 if whole is below 1.
int gf_percent(int64_t part, int64_t whole);
/// Characters of a UTF-8 text.
size_t gf_countCharacters(std::string_view utf8);
/// "s" for every count but 1.
std::string_view gf_plural(uint64_t count);
/// True when the first character is one of 1 t T y Y.
bool gf_parseBool(std::string_view text);
/// Whether the ASCII character controls instead of showing: it would end a line, or be no name of a file.
bool gf_isControl(char c);
/// The whole path as UTF-8, with / in one that is not absolute; never throws. Bytes that are no UTF-8 stay as
/// they are; of a name that has no UTF-8, the ASCII stays.
std::string gf_pathText(const std::filesystem::path& path);
/// The path of a text in UTF-8. The class itself would take a text for one in the encoding of the system.
std::filesystem::path gf_pathFromText(std::string_view utf8);

/// The number at the start of `text`, whatever follows it; nothing if none is there, if it does not fit, or
/// if it is not finite. Independent of the locale. No leading blank or plus.
std::optional<double> gf_readNumber(std::string_view text);
std::optional<int32_t> gf_readInt(std::string_view text);
std::optional<uint32_t> gf_readUnsigned(std::string_view text);

}  // namespace skl
