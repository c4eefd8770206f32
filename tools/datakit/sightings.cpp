#include "tools/datakit/sightings.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>

#include "core/text.h"
#include "tools/datakit/codes.h"
#include "tools/datakit/csv.h"

namespace skl::datakit {

namespace {

constexpr int lastHalfHour = 47, sunday = 7;
constexpr int32_t lastWeek = 1'000'000;
constexpr std::array<std::string_view, 7> weekdays{"MONDAY", "TUESDAY",  "WEDNESDAY", "THURSDAY",
                                                   "FRIDAY", "SATURDAY", "SUNDAY"};
constexpr std::string_view privateAirline = "PVT";  // as the program calls whoever has no airline

enum { airportColumn, registration, airline, type, callsign, weekday, halfHours, standColumn, weekColumn };

/// The whole text as a number of 0 to `highest`; -1 for another.
int wholeOf(std::string_view text, int highest) {
    int value = -1;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool whole = result.ec == std::errc{} && result.ptr == text.data() + text.size();
    return whole && value >= 0 && value <= highest ? value : -1;
}

/// "1", "Mon" or "monday"; -1 for a text that is no weekday.
int weekdayOf(std::string_view text) {
    if (const int number = wholeOf(text, 7); number > 0) return number;
    const std::string name = gf_upper(text);
    for (size_t i = 0; name.size() >= 3 && i < weekdays.size(); ++i)
        if (weekdays[i].starts_with(name)) return static_cast<int>(i + 1);
    return -1;
}

/// The bits of `first` to `last`.
uint64_t bits(int first, int last) {
    uint64_t set = 0;
    for (int i = first; i <= last; ++i) set |= uint64_t{1} << i;
    return set;
}

/// Hands each number, or range of them, of a list to `take`; false if one of them is none.
template <class Read, class Take>
bool eachRange(std::string_view text, Read read, Take take) {
    const auto items = itemsOf(text);
    for (const std::string& item : items) {
        const size_t dash = item.find('-');
        const int first = read(std::string_view(item).substr(0, dash));
        const int last = dash == item.npos ? first : read(std::string_view(item).substr(dash + 1));
        if (first < 0 || last < 0) return false;
        take(first, last);
    }
    return !items.empty();
}

int halfHourOf(std::string_view text) {
    return wholeOf(text, lastHalfHour);
}

/// What is wrong with a row; empty if nothing is.
std::string fill(const CsvTable& table, Sighting& sighting) {
    sighting.cs = gf_upper(table[callsign]);
    if (const size_t colon = sighting.cs.find(':'); colon != std::string::npos) {
        sighting.cs2 = gf_trim(sighting.cs.substr(colon + 1));
        sighting.cs = gf_trim(sighting.cs.substr(0, colon));
    }
    sighting.reg = gf_upper(table[registration]);
    if (sighting.reg.empty()) sighting.reg = sighting.cs;
    if (sighting.reg.empty()) return "neither a registration nor a callsign";
    const auto airl = table[airline].empty() ? std::string(privateAirline) : airlineCode(table[airline]);
    if (!airl) return fmt::format("'{}' is no code of an airline", table[airline]);
    sighting.airl = *airl;
    const auto model = typeCode(table[type]);
    if (!model) return fmt::format("'{}' is no designator of a type", table[type]);
    sighting.type = *model;
    if (weekdaysOf(table[weekday]) == 0) return fmt::format("'{}' is no weekday", table[weekday]);
    if (halfHoursOf(table[halfHours]) == HalfHours{})
        return fmt::format("'{}' is no list of half hours, 0 to 47", table[halfHours]);
    if (!table[weekColumn].empty()) {
        sighting.week = wholeOf(table[weekColumn], lastWeek);
        if (sighting.week < 0) return fmt::format("'{}' is no number of a week", table[weekColumn]);
    }
    sighting.stand = table[standColumn];
    return {};
}

void add(Sighting sighting, int day, uint64_t hours, std::vector<Sighting>& all) {
    if (hours == 0) return;
    sighting.day = day;
    sighting.hours = hours;
    all.push_back(std::move(sighting));
}

}  // namespace

uint32_t weekdaysOf(std::string_view text) {
    uint64_t days = 0;
    const bool whole = eachRange(text, weekdayOf, [&days](int first, int last) {
        days |= first <= last ? bits(first, last) : bits(first, sunday) | bits(1, last);
    });
    return whole ? static_cast<uint32_t>(days) : 0;
}

HalfHours halfHoursOf(std::string_view text) {
    HalfHours hours;
    const bool whole = eachRange(text, halfHourOf, [&hours](int first, int last) {
        hours.today |= bits(first, first <= last ? last : lastHalfHour);
        if (first > last) hours.tomorrow |= bits(0, last);
    });
    return whole ? hours : HalfHours{};
}

void readSightings(SourceFile& file, const std::string& airport, int32_t week,
                   SightingsByAirport& sightings) {
    CsvTable table(file, {{"airport", airport.empty(), {"icao"}},
                          {"registration", true, {"reg"}},
                          {"airline", true, {"airl"}},
                          {"type", true},
                          {"callsign", false, {"cs"}},
                          {"weekday", true, {"day"}},
                          {"half_hours", true, {"hh"}},
                          {"stand"},
                          {"week"}});
    while (table.next()) {
        const auto code =
            table.has(airportColumn) ? airportCode(table[airportColumn]) : std::optional(airport);
        Sighting sighting{.place = table.at(), .week = week};
        std::string wrong =
            code ? fill(table, sighting) : fmt::format("'{}' is no code of an airport", table[airportColumn]);
        if (!wrong.empty()) {
            file.findings().tell("sightings", table.at(), wrong + ": left out");
            continue;
        }
        const uint32_t days = weekdaysOf(table[weekday]);
        const HalfHours hours = halfHoursOf(table[halfHours]);
        for (int day = 1; day <= sunday; ++day) {
            if ((days >> day & 1) == 0) continue;
            add(sighting, day, hours.today, sightings[*code]);
            add(sighting, day % sunday + 1, hours.tomorrow, sightings[*code]);
        }
    }
}

}  // namespace skl::datakit
