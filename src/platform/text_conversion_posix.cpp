// Conversion without the system's help, strict as its strict mode: overlong forms, surrogates in UTF-8, lone
// surrogates in UTF-16 and values above 10FFFF are refused.
#include "platform/text_conversion.h"

#include <limits>

namespace win32 {

namespace {

constexpr uint32_t noUnicodeTranslation = 1113;
constexpr const char* badUtf8 = "Invalid UTF-8 sequence found in input string.";
constexpr const char* badUtf16 = "Invalid UTF-16 sequence found in input string.";

void testLength(size_t length) {
    if (length > static_cast<size_t>(std::numeric_limits<int>::max()))
        throw std::overflow_error("Input string too long: size_t-length doesn't fit into int.");
}

bool isSurrogate(char32_t point) {
    return point >= 0xD800 && point <= 0xDFFF;
}

/// Takes one character off the front of `text`.
char32_t takeUtf8(std::string_view& text) {
    const auto lead = static_cast<unsigned char>(text.front());
    const size_t length = lead < 0x80   ? 1
                          : lead < 0xC2 ? 0
                          : lead < 0xE0 ? 2
                          : lead < 0xF0 ? 3
                          : lead < 0xF5 ? 4
                                        : 0;
    if (length == 0 || length > text.size()) throw Utf8ConversionException(badUtf8, noUnicodeTranslation);
    char32_t point = length == 1 ? lead : lead & (0x7Fu >> length);
    for (size_t at = 1; at < length; ++at) {
        const auto follower = static_cast<unsigned char>(text[at]);
        if (follower >> 6 != 0x02) throw Utf8ConversionException(badUtf8, noUnicodeTranslation);
        point = point << 6 | (follower & 0x3Fu);
    }
    const char32_t least = length == 3 ? 0x800 : length == 4 ? 0x10000 : 0;
    if (point < least || point > 0x10FFFF || isSurrogate(point))
        throw Utf8ConversionException(badUtf8, noUnicodeTranslation);
    text.remove_prefix(length);
    return point;
}

char32_t takeUtf16(std::u16string_view& text) {
    const char32_t first = text.front();
    text.remove_prefix(1);
    if (!isSurrogate(first)) return first;
    if (first > 0xDBFF || text.empty() || text.front() < 0xDC00 || text.front() > 0xDFFF)
        throw Utf8ConversionException(badUtf16, noUnicodeTranslation);
    const char32_t second = text.front();
    text.remove_prefix(1);
    return 0x10000 + ((first - 0xD800) << 10) + (second - 0xDC00);
}

void appendUtf8(std::string& result, char32_t point) {
    const auto follower = [point](int shift) { return static_cast<char>(0x80 | (point >> shift & 0x3F)); };
    if (point < 0x80) {
        result.push_back(static_cast<char>(point));
    } else if (point < 0x800) {
        result.push_back(static_cast<char>(0xC0 | point >> 6));
        result.push_back(follower(0));
    } else if (point < 0x10000) {
        result.push_back(static_cast<char>(0xE0 | point >> 12));
        result.push_back(follower(6));
        result.push_back(follower(0));
    } else {
        result.push_back(static_cast<char>(0xF0 | point >> 18));
        result.push_back(follower(12));
        result.push_back(follower(6));
        result.push_back(follower(0));
    }
}

}  // namespace

std::u16string utf8ToUtf16(std::string_view text) {
    testLength(text.size());
    std::u16string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const char32_t point = takeUtf8(text);
        if (point < 0x10000) {
            result.push_back(static_cast<char16_t>(point));
        } else {
            result.push_back(static_cast<char16_t>(0xD800 + ((point - 0x10000) >> 10)));
            result.push_back(static_cast<char16_t>(0xDC00 + ((point - 0x10000) & 0x3FF)));
        }
    }
    return result;
}

std::string utf16ToUtf8(std::u16string_view text) {
    testLength(text.size());
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) appendUtf8(result, takeUtf16(text));
    return result;
}

}  // namespace win32
