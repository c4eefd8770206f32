// Conversion by the system, in its strict mode.
#include <windows.h>

#include <limits>

#include "platform/text_conversion.h"

namespace win32 {

static_assert(sizeof(wchar_t) == sizeof(char16_t));

namespace {

int lengthOf(size_t length) {
    if (length > static_cast<size_t>(std::numeric_limits<int>::max()))
        throw std::overflow_error("Input string too long: size_t-length doesn't fit into int.");
    return static_cast<int>(length);
}

[[noreturn]] void fail(const char* invalid, const char* other) {
    const DWORD code = ::GetLastError();
    throw Utf8ConversionException(code == ERROR_NO_UNICODE_TRANSLATION ? invalid : other, code);
}

[[noreturn]] void failUtf8(const char* other) {
    fail("Invalid UTF-8 sequence found in input string.", other);
}

[[noreturn]] void failUtf16(const char* other) {
    fail("Invalid UTF-16 sequence found in input string.", other);
}

}  // namespace

std::u16string utf8ToUtf16(std::string_view text) {
    const int length = lengthOf(text.size());
    if (length == 0) return {};
    const int count = ::MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), length, nullptr, 0);
    if (count == 0)
        failUtf8(
            "Cannot get result string length when converting from UTF-8 to UTF-16 (MultiByteToWideChar "
            "failed).");
    std::u16string result(static_cast<size_t>(count), u'\0');
    if (::MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), length,
                              reinterpret_cast<wchar_t*>(result.data()), count) == 0)
        failUtf8("Cannot convert from UTF-8 to UTF-16 (MultiByteToWideChar failed).");
    return result;
}

std::string utf16ToUtf8(std::u16string_view text) {
    const int length = lengthOf(text.size());
    if (length == 0) return {};
    const auto* wide = reinterpret_cast<const wchar_t*>(text.data());
    const int count =
        ::WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, wide, length, nullptr, 0, nullptr, nullptr);
    if (count == 0)
        failUtf16(
            "Cannot get result string length when converting from UTF-16 to UTF-8 (WideCharToMultiByte "
            "failed).");
    std::string result(static_cast<size_t>(count), '\0');
    if (::WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, wide, length, result.data(), count, nullptr,
                              nullptr) == 0)
        failUtf16("Cannot convert from UTF-16 to UTF-8 (WideCharToMultiByte failed).");
    return result;
}

}  // namespace win32
