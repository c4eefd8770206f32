// Words and texts of aircraft for log lines.
#include "engine/live_ac.h"

#include <fmt/format.h>

#include <array>

namespace skl {

const char* gf_stageWord(FlightStage stage) {
    static constexpr std::array words{"pushing_back", "pushed_back", "taxi",   "take_off",
                                      "flying",       "parking",     "parked", "birth"};
    return words.at(static_cast<size_t>(stage));
}

const char* gf_stateWord(SimObjectState state) {
    static constexpr std::array words{"buffer", "adding2sim", "active", "liveryrespawn", "removingfromsim"};
    return words.at(static_cast<size_t>(state));
}

void gf_setStage(LiveAc& record, FlightStage stage) {
    if (record.stage == stage) return;
    record.prevStage = record.stage;
    record.stage = stage;
}

std::string gf_shortForm(const AcBase& record) {
    return fmt::format("{:3} {:4}", record.airline, record.model);
}

std::string gf_routeText(const AcBase& record) {
    if (record.origin.empty() && record.destination.empty()) return std::string(8, ' ');
    return fmt::format("{:3}->{:3}", record.origin, record.destination);
}

std::string gf_longForm(const AcBase& record) {
    return fmt::format("{:8} {:8} {}", record.callsign, record.regcode, gf_routeText(record));
}

std::string gf_description(const AcBase& record) {
    return fmt::format("{} {}", gf_longForm(record), gf_shortForm(record));
}

std::string gf_identityText(const AcBase& record) {
    return fmt::format("{:8} {} {}", record.callsign, record.regcode, gf_shortForm(record));
}

}  // namespace skl
