// The stand on which an aircraft could have stood: the kinds of stands that suit it are tried in turn, first
// those of its size, then all of the kind.
#include <algorithm>
#include <array>
#include <cmath>
#include <span>
#include <vector>

#include "core/parameters.h"
#include "core/random.h"
#include "parking/learning.h"
#include "parking/park_airport.h"
#include "parking/stand_fit.h"
#include "parking/stands.h"

namespace skl {

namespace {

constexpr double tooSmallNm = 1.8 / metersPerNm;
constexpr double smallHalfSpanNm = 17.8 / metersPerNm;
constexpr double smallStepNm = 14 / metersPerNm, wideStepNm = 21 / metersPerNm;
constexpr long worstScore = 100;
constexpr size_t smallAirport = 10;                       // stands
constexpr uint32_t percent = 100, rampFirstPercent = 10;  // so many try a ramp first
constexpr std::string_view privateAirline = "PVT";

enum class Size { close, loose };
struct Tier {
    bool (*suits)(const Stand&);
    Size size;
};

bool isHeli(const Stand& stand) {
    return stand.heli;
}
bool isAnyRamp(const Stand& stand) {
    return stand.ramp;
}
bool isCargo(const Stand& stand) {
    return stand.cargo && !stand.heli;
}
bool isNoHeli(const Stand& stand) {
    return !stand.heli;
}
bool isRamp(const Stand& stand) {
    return stand.ramp && !stand.cargo && !stand.heli;
}
bool isGate(const Stand& stand) {
    return !stand.ramp && !stand.cargo && !stand.heli;
}

constexpr std::array<Tier, 4> helicopterTiers{
    {{isHeli, Size::close}, {isAnyRamp, Size::close}, {isHeli, Size::loose}, {isAnyRamp, Size::loose}}};
constexpr std::array<Tier, 4> cargoTiers{
    {{isCargo, Size::close}, {isCargo, Size::loose}, {isNoHeli, Size::close}, {isNoHeli, Size::loose}}};
constexpr std::array<Tier, 4> gateTiers{
    {{isGate, Size::close}, {isGate, Size::loose}, {isRamp, Size::close}, {isRamp, Size::loose}}};
constexpr std::array<Tier, 4> rampTiers{
    {{isRamp, Size::close}, {isRamp, Size::loose}, {isGate, Size::close}, {isGate, Size::loose}}};

std::span<const Tier> tiersFor(const LiveAc& record) {
    if (record.category == AcCategory::Rotorcraft) return helicopterTiers;
    if (record.cargo) return cargoTiers;
    if (record.category == AcCategory::Light || record.category == AcCategory::Buzjets ||
        record.airline == privateAirline)
        return std::span(rampTiers).first(2);
    const bool gateFirst = parkAirport.code.starts_with('K') || mt()() % percent >= rampFirstPercent;
    return gateFirst ? gateTiers : rampTiers;
}

struct Rated {
    uint32_t sid = 0;
    long score = 0;
    bool matches = false;
};

/// How far the stand is from the aircraft's size, 0 the best; above worstScore when it is too small.
long scoreOf(const Stand& stand, double halfSpanNm, Size size) {
    if (size == Size::loose) return std::lround(std::abs(halfSpanNm - stand.radius));
    if (halfSpanNm - stand.radius > tooSmallNm) return worstScore + 1;
    return std::lround((stand.radius - halfSpanNm) /
                       (halfSpanNm <= smallHalfSpanNm ? smallStepNm : wideStepNm));
}

bool isTaken(const Stand& stand, WeekSlot slot) {
    return std::any_of(stand.options.begin(), stand.options.end(), [slot](const StandOption& option) {
        return option.optionId != 0 && option.day == slot.day && (option.hours >> slot.halfHour & 1) != 0;
    });
}

/// The flight, or one of its airline and type, has stood here.
bool isItsStand(const Stand& stand, const LiveAc& record) {
    if (record.callsign.empty()) return false;
    return std::any_of(stand.options.begin(), stand.options.end(), [&record](const StandOption& option) {
        return option.real && option.optionId != 0 &&
               (option.cs == record.callsign || option.cs2 == record.callsign ||
                (option.airl == record.airline && option.type == record.model));
    });
}

std::vector<Rated> rate(const Tier& tier, WeekSlot slot, const LiveAc& record) {
    std::vector<Rated> rated;
    long best = worstScore;
    for (const Stand& stand : stands) {
        if (!tier.suits(stand)) continue;
        const long score = scoreOf(stand, record.halfSpanNm, tier.size);
        if (score > best || isTaken(stand, slot)) continue;
        best = score;
        rated.push_back({stand.sid, score, isItsStand(stand, record)});
    }
    return rated;
}

uint32_t choose(std::vector<Rated>& rated) {
    if (RANDOM.value) std::shuffle(rated.begin(), rated.end(), mt());
    return std::min_element(rated.begin(), rated.end(),
                            [](const Rated& a, const Rated& b) {
                                return a.matches != b.matches ? a.matches : a.score < b.score;
                            })
        ->sid;
}

}  // namespace

uint32_t lf_softStand(WeekSlot slot, const LiveAc& record, bool tryNext) {
    for (const Tier& tier : tiersFor(record)) {
        std::vector<Rated> rated = rate(tier, slot, record);
        if (!rated.empty()) return choose(rated);
    }
    if (!tryNext || stands.size() > smallAirport) return 0;
    return lf_softStand(lf_slotNext(slot), record, false);
}

}  // namespace skl
