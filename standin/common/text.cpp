// Texts without the locale.
#include "standin/common/text.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <fstream>
#include <nlohmann/json.hpp>

namespace standin {

namespace {

constexpr std::string_view kBlanks = " \t\r\n";

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
    const auto first = text.find_first_not_of(kBlanks);
    return first == std::string_view::npos ? std::string_view{}
                                           : text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> fields;
    for (std::size_t at = 0; at <= text.size();) {
        const auto end = std::min(text.find(separator, at), text.size());
        fields.push_back(text.substr(at, end - at));
        at = end + 1;
    }
    return fields;
}

std::vector<std::string> words(std::string_view line) {
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

std::optional<std::string> bytesOf(std::string_view hex) {
    if (hex.empty() || hex.size() % 2 != 0) {
        return std::nullopt;
    }
    std::string bytes;
    for (std::size_t at = 0; at < hex.size(); at += 2) {
        unsigned value = 0;
        const char* end = hex.data() + at + 2;
        const auto [rest, error] = std::from_chars(hex.data() + at, end, value, 16);
        if (error != std::errc{} || rest != end) {
            return std::nullopt;
        }
        bytes.push_back(static_cast<char>(value));
    }
    return bytes;
}

std::string utf8Of(std::string_view text) {
    try {
        static_cast<void>(nlohmann::json(text).dump());
        return std::string(text);
    } catch (const nlohmann::json::type_error&) {
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
}

std::string readLines(const std::string& file, const std::function<void(const std::string& line)>& take) {
    std::ifstream in(file, std::ios::binary);
    for (std::string line; std::getline(in, line);) {
        if (line.ends_with('\r')) {
            line.pop_back();
        }
        take(line);
    }
    // A folder can be opened, but not read.
    return !in.is_open() || in.bad() ? fmt::format("cannot read {}", file) : "";
}

std::string readWords(const std::string& file,
                      const std::function<std::string(const std::vector<std::string>& words)>& take) {
    std::string complaint;
    int number = 0;
    const auto unreadable = readLines(file, [&](const std::string& line) {
        ++number;
        const auto fields = words(line);
        if (!complaint.empty() || fields.empty() || fields[0].front() == '#') {
            return;
        }
        if (const auto wrong = take(fields); !wrong.empty()) {
            complaint = fmt::format("{}, line {}: {}: {}", file, number, wrong, line);
        }
    });
    return unreadable.empty() ? complaint : unreadable;
}

}  // namespace standin
