// Small helpers for texts, independent of the locale: case, trimming, fields, numbers, bytes in hexadecimal
// form, lines of a file, texts for JSON.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace standin {

std::string lowerCase(std::string_view text);
std::string upperCase(std::string_view text);
std::string_view trimmed(std::string_view text);

// Fields between separators, empty ones too; at least one.
std::vector<std::string_view> split(std::string_view text, char separator);

// Fields between blanks and tabs.
std::vector<std::string> words(std::string_view line);

// A whole, finite number in decimal form; nothing for anything else.
std::optional<double> numberOf(std::string_view text);

// "48656c6c6f" gives "Hello"; nothing for an empty text, an odd length or another character.
std::optional<std::string> bytesOf(std::string_view hex);

// As UTF-8: texts that are not are taken as Latin-1, so that every one can stand in JSON.
std::string utf8Of(std::string_view text);

// Hands over the lines of a file without their ends; gives the complaint for the user, or nothing.
std::string readLines(const std::string& file, const std::function<void(const std::string& line)>& take);

// Hands over the words of each line, but for blank ones and those that begin with '#'. `take` gives what is
// wrong with the line, or nothing; the complaint for the user names file and line.
std::string readWords(const std::string& file,
                      const std::function<std::string(const std::vector<std::string>& words)>& take);

}  // namespace standin
