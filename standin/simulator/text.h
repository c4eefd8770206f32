// Small helpers for texts: case, trimming, fields of a line, numbers, texts for JSON.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace simulator {

std::string lowerCase(std::string_view text);
std::string upperCase(std::string_view text);
std::string_view trimmed(std::string_view text);

// Fields between blanks and tabs.
std::vector<std::string> words(std::string_view line);

// A whole, finite number in plain decimal form, independent of the locale; nothing for anything else.
std::optional<double> numberOf(std::string_view text);

// As UTF-8: texts that are not are taken as Latin-1, so that every title can stand in JSON.
std::string utf8Of(std::string_view text);

}  // namespace simulator
