// Sets of half hours of the day as text: "0,1,47".
#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <iterator>

#include "airports/airport_file.h"
#include "core/log.h"

namespace skl {

namespace {

constexpr int halfHours = 48;

bool isBlank(char c) {
    return c == ' ';
}

/// -1 if the item is no half hour.
int halfHourOf(std::string_view item) {
    while (item.starts_with(' ')) item.remove_prefix(1);
    int value = 0;
    const auto result = std::from_chars(item.data(), item.data() + item.size(), value);
    const bool whole =
        result.ec == std::errc{} && std::all_of(result.ptr, item.data() + item.size(), isBlank);
    return whole && value >= 0 && value < halfHours ? value : -1;
}

}  // namespace

uint64_t gf_hours2bitset(std::string_view text) {
    uint64_t hours = 0;
    if (text.empty()) return hours;
    for (size_t begin = 0; begin <= text.size();) {
        const size_t end = std::min(text.find(',', begin), text.size());
        const std::string_view item = text.substr(begin, end - begin);
        const int halfHour = halfHourOf(item);
        if (halfHour >= 0)
            hours |= uint64_t{1} << halfHour;
        else
            gf_logError(fmt::format("{} invalid hour '{}' in {}", "gf_hours2bitset", item, text));
        begin = end + 1;
    }
    return hours;
}

std::string gf_bitset2hours(uint64_t hours) {
    std::string text;
    for (int halfHour = 0; halfHour < halfHours; ++halfHour) {
        if ((hours >> halfHour & 1) == 0) continue;
        if (!text.empty()) text += ',';
        fmt::format_to(std::back_inserter(text), "{}", halfHour);
    }
    return text;
}

}  // namespace skl
