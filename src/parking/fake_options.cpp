// Made-up aircraft for an airport that nobody has seen yet: one for each stand, of the kind that would fit.
#include <fmt/format.h>

#include <array>
#include <cmath>
#include <span>
#include <string_view>

#include "core/parameters.h"
#include "core/random.h"
#include "core/run_state.h"
#include "liveries/reference_db.h"
#include "parking/statics.h"

namespace skl {

namespace {

struct Pair {
    std::string_view airline, type;
};

constexpr std::array<Pair, 1> helicopters{{{"PVT", "EC35"}}};
constexpr std::array<Pair, 5> freighters{
    {{"FDX", "C208"}, {"FDX", "B752"}, {"FDX", "B763"}, {"UPS", "A306"}, {"DHK", "B763"}}};
constexpr std::array<Pair, 19> privates{{{"PVT", "C172"},
                                         {"PVT", "C206"},
                                         {"PVT", "P28A"},
                                         {"PVT", "PC12"},
                                         {"PVT", "C550"},
                                         {"PVT", "TBM9"},
                                         {"PVT", "LJ25"},
                                         {"PVT", "GLF6"},
                                         {"PVT", "FA6X"},
                                         {"PVT", "FA8X"},
                                         {"PVT", "GLF4"},
                                         {"PVT", "GLF5"},
                                         {"PVT", "LJ60"},
                                         {"PVT", "DHC7"},
                                         {"PVT", "DH8A"},
                                         {"PVT", "DH8C"},
                                         {"PVT", "E550"},
                                         {"PVT", "CL30"},
                                         {"PVT", "GA6C"}}};
constexpr std::array<Pair, 4> canada{{{"ACA", "B789"}, {"ACA", "B38M"}, {"ROU", "A321"}, {"JZA", "CRJ9"}}};
constexpr std::array<Pair, 7> europe{{{"KLM", "B77W"},
                                      {"SAS", "A320"},
                                      {"EZY", "A320"},
                                      {"RYR", "B738"},
                                      {"DLH", "A320"},
                                      {"KLM", "B738"},
                                      {"BAW", "A21N"}}};
constexpr std::array<Pair, 10> unitedStates{{{"UAL", "B77W"},
                                             {"DAL", "B739"},
                                             {"JBU", "BCS3"},
                                             {"FFT", "A320"},
                                             {"UAL", "B78X"},
                                             {"UAL", "B738"},
                                             {"AAL", "B738"},
                                             {"SKW", "E75L"},
                                             {"SWA", "B737"},
                                             {"FFT", "A320"}}};
constexpr std::array<Pair, 3> farEast{{{"ANA", "A20N"}, {"JAL", "A35K"}, {"JAL", "B738"}}};
constexpr std::array<Pair, 3> china{{{"CSA", "A320"}, {"CES", "A333"}, {"CES", "A321"}}};
constexpr std::array<Pair, 1> elsewhere{{{"ZZZ", "B738"}}};

struct Offer {
    std::span<const Pair> pairs;
    bool mustFit = true;
};

/// By the first letter of the airport's code.
Offer offerForGate(const std::string& code) {
    switch (code.empty() ? '\0' : code.front()) {
        case 'C':
            return {canada};
        case 'E':
            return {europe};
        case 'K':
            return {unitedStates};
        case 'R':
            return {farEast};
        case 'Z':
            return {china};
        default:
            return {elsewhere, false};
    }
}

Offer offerFor(const std::string& code, const Stand& stand) {
    if (stand.heli) return {helicopters, false};
    if (stand.cargo) return {freighters};
    return stand.ramp ? Offer{privates} : offerForGate(code);
}

/// nullptr if none fits.
const Pair* choose(const Offer& offer, const Stand& stand) {
    std::vector<const Pair*> fitting;
    for (const Pair& pair : offer.pairs)
        if (!offer.mustFit || lf_standFits(stand, gf_halfSpanNm(pair.type))) fitting.push_back(&pair);
    if (fitting.empty()) return nullptr;
    const bool draw = RANDOM.value && fitting.size() >= 2;
    return fitting[draw ? mt()() % fitting.size() : 0];
}

}  // namespace

bool lf_standFits(const Stand& stand, double halfSpanNm) {
    constexpr double overhang = 0.0009719222462203025, smallSpan = 0.009611230689557531;  // 1.8 m, 17.8 m
    constexpr double roomForSmall = 0.00755939524838013, roomForLarge = 0.011339092872570195;  // 14 m, 21 m
    if (halfSpanNm - stand.radius > overhang) return false;
    const double room = halfSpanNm <= smallSpan ? roomForSmall : roomForLarge;
    return std::round((stand.radius - halfSpanNm) / room) == 0;
}

void lf_addFakeOptions(const std::string& code, std::vector<Stand>& stands) {
    if (!PARK_FAKE.value) return;
    const WeekSlot now = gf_weekSlotNow();
    int32_t number = 1;
    for (Stand& stand : stands) {
        const Pair* pair = choose(offerFor(code, stand), stand);
        if (!pair) continue;
        StandOption option;
        option.airl = pair->airline;
        option.type = pair->type;
        option.reg = fmt::format("REGFAKE{}", number);
        option.cs = fmt::format("FAKE{}", number);
        option.hours = uint64_t{1} << now.halfHour;
        option.optionId = static_cast<int32_t>(stand.options.size()) + 1;
        option.day = now.day;
        option.fromArchive = true;
        stand.options.push_back(std::move(option));
        ++number;
    }
}

}  // namespace skl
