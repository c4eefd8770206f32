// The aircraft of the reference database.
#include <fmt/format.h>

#include <algorithm>

#include "core/text.h"
#include "tools/datakit/codes.h"
#include "tools/datakit/csv.h"
#include "tools/datakit/database_data.h"

namespace skl::datakit {

namespace {

constexpr size_t shortestReg = 2, longestReg = 12;

std::string withoutHyphens(std::string reg) {
    std::erase(reg, '-');
    return reg;
}

}  // namespace

std::optional<std::string> registrationOf(std::string_view text) {
    std::string reg = gf_upper(text);
    if (reg.size() < shortestReg || reg.size() > longestReg) return std::nullopt;
    const bool plain = std::all_of(reg.begin(), reg.end(), [](char c) {
        return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-';
    });
    return plain ? std::optional(std::move(reg)) : std::nullopt;
}

/// The code of an airline; empty for a text that is none. Unknown ones are told once each, and kept.
std::string RegistrationReader::airline(SourceFile& file, const Place& place, std::string_view text,
                                        const std::string& reg) {
    if (text.empty()) return {};
    const auto code = airlineCode(text);
    if (!code) {
        file.findings().tell("airlines of registrations", place,
                             fmt::format("{}: '{}' is no code of three letters: left open", reg, text));
        return {};
    }
    if (!database_.airlines.contains(*code) && unknownTold_.try_emplace(*code, true).second)
        file.findings().tell("unknown airlines", place,
                             fmt::format("{}: airline {} is not in the table of airlines: kept", reg, *code));
    return *code;
}

void RegistrationReader::read(SourceFile& file) {
    enum { registration, type, operatedBy, airl, cargo };
    CsvTable table(file, {{"registration", true, {"reg"}},
                          {"type", true, {"icao_type", "typecode"}},
                          // Where a table has codes and names of operators, the codes.
                          {"operatoricao", false, {"operator_icao", "operator", "opr"}},
                          {"airline", false, {"airl"}},
                          {"cargo"}});
    files_.push_back(file.name());
    while (table.next()) {
        progress_.step();
        const Place place = table.at();
        const auto reg = registrationOf(table[registration]);
        if (!reg) {
            file.findings().tell("registrations", place,
                                 fmt::format("'{}' is no registration: left out", table[registration]));
            continue;
        }
        const auto known = database_.types.find(gf_upper(table[type]));
        if (known == database_.types.end()) {
            file.findings().tell(
                "unknown types", place,
                fmt::format("{}: type '{}' is not in the table of types: left out", *reg, table[type]));
            continue;
        }
        const First here{static_cast<uint32_t>(files_.size() - 1), static_cast<uint32_t>(place.line)};
        const auto [first, added] = met_.try_emplace(withoutHyphens(*reg), here);
        if (!added) {
            file.findings().tell("doubled registrations", place,
                                 fmt::format("{} stands in {}:{} already: left out", *reg,
                                             files_[first->second.file], first->second.line));
            continue;
        }
        Registration row{.reg = *reg, .type = known->first, .cargo = isYes(table[cargo])};
        row.airl = airline(file, place, table[airl], *reg);
        row.opr = airline(file, place, table[operatedBy], *reg);
        if (row.airl.empty()) row.airl = row.opr;
        if (row.opr == row.airl) row.opr.clear();
        ++known->second.aircraft;
        database_.registrations.push_back(std::move(row));
    }
}

}  // namespace skl::datakit
