// Small helpers for texts: fields, words, numbers, bytes in hexadecimal form.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace realtraffic {

// Fields between separators, empty ones too; at least one.
std::vector<std::string_view> split(std::string_view text, char separator);

// Fields between blanks and tabs.
std::vector<std::string> words(std::string_view line);

// A whole, finite number in plain decimal form, independent of the locale; nothing for anything else.
std::optional<double> numberOf(std::string_view text);

// "48656c6c6f" gives "Hello"; nothing for an empty text, an odd length or another character.
std::optional<std::string> bytesOf(std::string_view hex);

// As UTF-8: texts that are not are taken as Latin-1, so that every one can stand in JSON.
std::string utf8Of(std::string_view text);

}  // namespace realtraffic
