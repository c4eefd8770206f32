// Small text routines. Upper case and blanks are those of ASCII, so that no locale changes what is found
// equal.
#include "core/text.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace skl {

namespace {

constexpr std::string_view blanks = " \t\n\r";

char upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

template <class Number>
std::optional<Number> readStart(std::string_view text) {
    Number value{};
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec != std::errc{}) return {};
    return value;
}

}  // namespace

std::string gf_trim(std::string_view text) {
    const size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return std::string(text.substr(first, text.find_last_not_of(blanks) - first + 1));
}

std::string gf_upper(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), upper);
    return result;
}

bool gf_equalsUpper(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char left, char right) { return upper(left) == upper(right); });
}

std::vector<std::string> gf_splitComma(std::string_view text) {
    std::vector<std::string> pieces;
    while (!text.empty()) {
        const size_t comma = text.find(',');
        pieces.emplace_back(text.substr(0, comma));
        if (comma == std::string_view::npos) break;
        text.remove_prefix(comma + 1);
    }
    return pieces;
}

std::string gf_betweenQuotes(std::string_view text) {
    const size_t first = text.find('"');
    if (first == std::string_view::npos) return std::string(text);
    const size_t second = text.find('"', first + 1);
    if (second == std::string_view::npos) return {};
    return std::string(text.substr(first + 1, second - first - 1));
}

int gf_percent(int64_t part, int64_t whole) {
    if (whole < 1) return 0;
    return static_cast<int>(std::llround(static_cast<double>(part) * 100.0 / static_cast<double>(whole)));
}

size_t gf_countCharacters(std::string_view utf8) {
    return static_cast<size_t>(std::count_if(
        utf8.begin(), utf8.end(), [](char c) { return (static_cast<unsigned char>(c) >> 6) != 2; }));
}

std::string_view gf_plural(uint64_t count) {
    return count == 1 ? "" : "s";
}

bool gf_parseBool(std::string_view text) {
    return !text.empty() && std::string_view("1tTyY").find(text.front()) != std::string_view::npos;
}

bool gf_isControl(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte < 0x20 || byte == 0x7f;
}

std::string gf_pathText(const std::filesystem::path& path) {
    try {
        const std::u8string text = path.is_absolute() ? path.u8string() : path.generic_u8string();
        return {text.begin(), text.end()};
    } catch (const std::exception&) {
        // Half a surrogate pair in a name on Windows: the rest can still be shown.
        std::string text;
        for (const auto unit : path.native()) {
            const auto value = static_cast<uint32_t>(unit);
            text.push_back(value < 0x80 ? static_cast<char>(value) : '?');
        }
        return text;
    }
}

std::filesystem::path gf_pathFromText(std::string_view utf8) {
    try {
        return std::u8string(utf8.begin(), utf8.end());
    } catch (const std::exception&) {
        // Bytes of a code page, where names are UTF-16. No file is called like this, and none is made.
        std::u8string text(utf8.begin(), utf8.end());
        for (char8_t& unit : text)
            if (unit >= 0x80) unit = u8'?';
        return text;
    }
}

std::optional<double> gf_readNumber(std::string_view text) {
    const auto value = readStart<double>(text);
    if (value && !std::isfinite(*value)) return {};
    return value;
}

std::optional<int32_t> gf_readInt(std::string_view text) {
    return readStart<int32_t>(text);
}

std::optional<uint32_t> gf_readUnsigned(std::string_view text) {
    return readStart<uint32_t>(text);
}

}  // namespace skl
