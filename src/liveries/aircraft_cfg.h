// The text of one aircraft.cfg: its lines, the two patterns that lines are tested with, and the walk over its
// [fltsim.x] sections. Patterns are case-sensitive and cover the whole line.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace skl {

using CfgLines = std::span<const std::string_view>;

/// A file's lines as UTF-8, without their ends. The views hold until the next read into the same object.
struct CfgText {
    std::string bytes;
    std::vector<std::string> converted;  ///< the lines of a UTF-16 file
    std::vector<std::string_view> lines;
};
enum class CfgRead { done, gone, noCharset, failed };
/// Reads a file, one in UTF-8 or ANSI in a single pass. Only `failed` has left a line in the log.
CfgRead lf_readCfg(const std::filesystem::path& path, CfgText& text);

/// The value of a line `blanks key blanks = blanks value blanks`, as it stands; nothing for any other line
/// and for one without a value.
std::optional<std::string_view> lf_keyValue(std::string_view line, std::string_view key);
/// A value that begins with a double quote: what stands between the first pair. Any other: itself.
std::string_view lf_unquoted(std::string_view value);
std::string_view lf_trimmed(std::string_view text);
/// The value that counts: without quotes, trimmed. It may be empty, `key=""`.
inline std::string_view lf_plainValue(std::string_view value) {
    return lf_trimmed(lf_unquoted(value));
}

/// A letter, digit or underscore of ASCII.
inline bool lf_isWordCharacter(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
}

/// The number of a line that begins a section, as written; "10000" for one that is not well formed.
std::optional<std::string_view> lf_sectionNumber(std::string_view line);
inline constexpr int32_t highestSection = 10000;

enum class SectionCheck { good, noSection, badNumber, unreadableNumber };
/// Whether all section numbers are usable. `wrong` gets the text of one that is no 32-bit number.
SectionCheck lf_checkSections(CfgLines lines, std::string_view& wrong);

/// Where a `[` has to stand to end a section that has begun.
enum class SectionEnd { bracketInFirstSix, bracketAnywhere };
/// Calls `section` for each section in order, with the lines from its header on. The lines are those of
/// `text`, so a section is one stretch of them.
void lf_walkSections(CfgLines lines, SectionEnd end, const std::function<void(CfgLines)>& section);

}  // namespace skl
