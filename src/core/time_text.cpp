// Times are split up by the calendar of <chrono>, not by the C library, which keeps one result for all
// threads.
#include "core/time_text.h"

#include <fmt/format.h>

#include <array>
#include <chrono>
#include <string_view>

#include "core/clock.h"

namespace skl {

namespace {

constexpr std::array<std::string_view, 7> dayNames{"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
constexpr std::array<std::string_view, 12> monthNames{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                      "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
// The parts of a time string lie at fixed places, so only years of four digits can be split up.
constexpr int64_t firstSecond = -62167219200;  // 1 January 0000
constexpr int64_t lastSecond = 253402300799;   // 31 December 9999

template <size_t Count>
std::string_view nameOf(const std::array<std::string_view, Count>& names, unsigned index) {
    return index < Count ? names[index] : std::string_view("???");
}

}  // namespace

std::string gf_timeString(int64_t seconds) {
    if (seconds < firstSecond || seconds > lastSecond) return "Invalid time";
    const std::chrono::sys_seconds time{std::chrono::seconds(seconds)};
    const auto day = std::chrono::floor<std::chrono::days>(time);
    const std::chrono::year_month_day date(day);
    const std::chrono::hh_mm_ss clock(time - day);
    return fmt::format("{:3} {:3} {:02} {:02}:{:02}:{:02} {:4}",
                       nameOf(dayNames, std::chrono::weekday(day).c_encoding()),
                       nameOf(monthNames, static_cast<unsigned>(date.month()) - 1),
                       static_cast<unsigned>(date.day()), clock.hours().count(), clock.minutes().count(),
                       clock.seconds().count(), static_cast<int>(date.year()));
}

std::string gf_timeOfDay() {
    return gf_timeString(gf_utcSeconds()).substr(11, 8);
}

std::string gf_dateString() {
    const std::string now = gf_timeString(gf_utcSeconds());
    return fmt::format("{}, {}", now.substr(4, 6), now.substr(20, 4));
}

std::string gf_starLine(int width, int extra, bool newLineBefore, bool newLineAfter,
                        const std::string& title) {
    const int sum = width + extra < 0 ? 0 : width + extra;
    const size_t count = static_cast<size_t>(sum + sum % 2);
    std::string line;
    if (title.empty())
        line.assign(count, '*');
    else if (count > title.size() + 2)
        line = fmt::format("{0} {1} {0}", std::string(count / 2 - 1, '*'), title);
    else
        line = title;
    return fmt::format("{}{}{}", newLineBefore ? "\n" : "", line, newLineAfter ? "\n" : "");
}

}  // namespace skl
