// Texts without the locale.
#include "standin/simulator/text.h"

#include <charconv>
#include <cmath>

namespace simulator {

namespace {

bool isUtf8(std::string_view text) {
    std::size_t follow = 0;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (follow > 0) {
            if ((byte & 0xC0U) != 0x80U) {
                return false;
            }
            --follow;
        } else if (byte >= 0xC2 && byte <= 0xDF) {
            follow = 1;
        } else if (byte >= 0xE0 && byte <= 0xEF) {
            follow = 2;
        } else if (byte >= 0xF0 && byte <= 0xF4) {
            follow = 3;
        } else if (byte >= 0x80) {
            return false;
        }
    }
    return follow == 0;
}

}  // namespace

std::string lowerCase(std::string_view text) {
    std::string result(text);
    for (char& c : result) {
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
    }
    return result;
}

std::string upperCase(std::string_view text) {
    std::string result(text);
    for (char& c : result) {
        c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c;
    }
    return result;
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r\n";
    const auto first = text.find_first_not_of(kBlanks);
    return first == std::string_view::npos ? std::string_view{}
                                           : text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::vector<std::string> words(std::string_view line) {
    constexpr std::string_view kBlanks = " \t\r\n";
    std::vector<std::string> result;
    for (auto first = line.find_first_not_of(kBlanks); first != std::string_view::npos;
         first = line.find_first_not_of(kBlanks, first)) {
        const auto last = std::min(line.find_first_of(kBlanks, first), line.size());
        result.emplace_back(line.substr(first, last - first));
        first = last;
    }
    return result;
}

std::optional<double> numberOf(std::string_view text) {
    double value = 0;
    const char* end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc{} || rest != end || !std::isfinite(value)) {
        return std::nullopt;
    }
    return value;
}

std::string utf8Of(std::string_view text) {
    if (isUtf8(text)) {
        return std::string(text);
    }
    std::string result;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80) {
            result.push_back(c);
        } else {
            result.push_back(static_cast<char>(0xC0U | byte >> 6U));
            result.push_back(static_cast<char>(0x80U | (byte & 0x3FU)));
        }
    }
    return result;
}

}  // namespace simulator
