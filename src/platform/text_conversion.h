// UTF-8 and UTF-16. Invalid input raises win32::Utf8ConversionException, it is never replaced.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace win32 {

class Utf8ConversionException : public std::runtime_error {
  public:
    Utf8ConversionException(const char* text, uint32_t code) : std::runtime_error(text), code_(code) {}
    uint32_t code() const { return code_; }  ///< 1113 for an invalid sequence

  private:
    uint32_t code_;
};

std::u16string utf8ToUtf16(std::string_view text);
std::string utf16ToUtf8(std::u16string_view text);

}  // namespace win32
