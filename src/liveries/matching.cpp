// The ladder from an aircraft to the title of an installed livery: its own registration (1), its airline and
// type (2), a similar type of its airline (3), a generic livery (4), its type (5), a similar type (6). Called
// on the main cycle's thread; the tables do not change meanwhile.
#include <fmt/format.h>

#include <algorithm>
#include <random>

#include "core/log.h"
#include "core/parameters.h"
#include "core/random.h"
#include "liveries/catalogue.h"
#include "liveries/catalogue_views.h"

namespace skl {

namespace {

constexpr std::string_view genericAirline = "ZZZ";
constexpr std::string_view privateAirline = "PVT";
constexpr int randomTries = 5;
constexpr int depthAirline = 2, depthSimilar = 3, depthGeneric = 4;

using TypeNames = std::vector<std::string_view>;

template <class Map>
auto* findIn(const Map& map, std::string_view key) {
    const auto it = map.find(key);
    return it == map.end() ? nullptr : &it->second;
}

size_t randomIndex(size_t count) {
    return RANDOM.value && count >= 2 ? mt()() % count : 0;
}

/// A title of the list, as far as possible none that belongs to particular registrations.
void pick(AcBase& record, const TitleList& titles) {
    if (titles.empty()) return;
    for (int i = 0; i < randomTries; ++i) {
        record.title = titles[randomIndex(titles.size())];
        if (!lf_isSpecial(record.title)) return;
    }
    thread_local TitleList ordinary;
    ordinary.clear();
    std::copy_if(titles.begin(), titles.end(), std::back_inserter(ordinary),
                 [](LiveryRef title) { return !lf_isSpecial(title); });
    if (!ordinary.empty()) record.title = ordinary[randomIndex(ordinary.size())];
}

bool lookupPair(AcBase& record, std::string_view airline, std::string_view model, int bucket) {
    const auto* types = findIn(titlesByAirlineType[bucket], airline);
    const auto* titles = types ? findIn(*types, model) : nullptr;
    if (titles) pick(record, *titles);
    return !record.title.empty();
}

/// A cargo aircraft falls back to passenger liveries, a passenger aircraft never takes a cargo livery.
bool lookupPairPref(AcBase& record, std::string_view airline, std::string_view model) {
    if (lookupPair(record, airline, model, record.cargo ? 1 : 0)) return true;
    return record.cargo && lookupPair(record, airline, model, 0);
}

bool lookupType(AcBase& record, std::string_view model) {
    if (const auto* titles = findIn(titlesByType[record.cargo ? 1 : 0], model)) pick(record, *titles);
    return !record.title.empty();
}

bool regcodeOf(AcBase& record) {
    if (record.regcode.empty()) return false;
    if (const auto* title = findIn(regcodeToTitle, record.regcode)) record.title = *title;
    return !record.title.empty();
}

void setTypes(TypeNames& result, const std::vector<std::string>& types) {
    result.assign(types.begin(), types.end());
    if (RANDOM.value && result.size() > 1) std::shuffle(result.begin(), result.end(), mt());
}

/// The types that this airline has in place of one that it lacks. Valid until the next call.
const TypeNames& similarFor(std::string_view airline, std::string_view model) {
    thread_local TypeNames result;
    result.clear();
    const auto* types = findIn(similarByAirline, airline);
    const auto* similar = types ? findIn(*types, model) : nullptr;
    if (similar) setTypes(result, *similar);
    return result;
}

/// The first of the airline's similar types, all of the aircraft's own category.
bool similarStep(AcBase& record, std::string_view airline) {
    for (const auto type : similarFor(airline, record.model))
        if (gf_category(type) == record.category && lookupPairPref(record, airline, type)) return true;
    return false;
}

/// Of parked aircraft: the list is that of the record's airline, whichever airline is looked up.
bool staticSimilarStep(AcBase& record, std::string_view airline) {
    for (const auto type : similarFor(record.airline, record.model))
        if (lookupPairPref(record, airline, type)) return true;
    return false;
}

const std::vector<std::string>* typesOf(AcCategory category) {
    switch (category) {
        case AcCategory::Light:
            return &typesLight;
        case AcCategory::Buzjets:
            return &typesBuzjet;
        case AcCategory::Rotorcraft:
            return &typesRotorcraft;
        default:
            return nullptr;
    }
}

/// The types that may stand in for the record's at the last rung. Valid until the next call.
const TypeNames& substitutes(const AcBase& record, const std::vector<std::string>& ofCategory) {
    thread_local TypeNames result;
    result.clear();
    if (const auto* similar = findIn(similarAvailable, record.model))
        setTypes(result, *similar);
    else if (!ofCategory.empty())
        result.push_back(ofCategory[randomIndex(ofCategory.size())]);
    return result;
}

/// The rungs that live and parked aircraft share; gives the step of the hit, 0 without one.
int lastRungs(AcBase& record, int depth) {
    if (depth >= depthGeneric && lookupPairPref(record, genericAirline, record.model)) return 4;
    const auto* ofCategory = typesOf(record.category);
    if (!ofCategory) return 0;
    if (record.airline != privateAirline && lookupPairPref(record, genericAirline, record.model)) return 4;
    if (lookupType(record, record.model)) return 5;
    for (const auto type : substitutes(record, *ofCategory))
        if (lookupType(record, type)) return 6;
    return 0;
}

int climbLive(AcBase& record) {
    const int depth = MATCHING_DEPTH.value;
    if (regcodeOf(record)) return 1;
    if (depth < depthAirline) return 0;
    if (record.airline == privateAirline && lookupPairPref(record, genericAirline, record.model)) return 4;
    const bool hasAirline = !record.airline.empty();
    const bool hasOperator = hasAirline && !gf_dbaseOperator(record.regcode).empty();
    const std::string dbaseAirline = hasOperator ? gf_dbaseAirline(record.regcode) : std::string();
    if (hasAirline && lookupPairPref(record, record.airline, record.model)) return 2;
    if (hasOperator && lookupPairPref(record, dbaseAirline, record.model)) return 2;
    if (depth < depthSimilar) return 0;
    if (hasAirline && similarStep(record, record.airline)) return 3;
    if (hasOperator && similarStep(record, dbaseAirline)) return 3;
    return lastRungs(record, depth);
}

int climbStatic(AcBase& record) {
    const int depth = MATCHING_DEPTH.value;
    if (regcodeOf(record)) return 1;
    if (depth < depthAirline) return 0;
    if (record.airline == privateAirline && lookupPairPref(record, genericAirline, record.model)) return 4;
    const bool hasOperator = !gf_dbaseOperator(record.regcode).empty();
    const std::string dbaseAirline = hasOperator ? gf_dbaseAirline(record.regcode) : std::string();
    if (lookupPairPref(record, record.airline, record.model)) return 2;
    if (hasOperator && lookupPairPref(record, dbaseAirline, record.model)) return 2;
    if (depth < depthSimilar) return 0;
    if (staticSimilarStep(record, record.airline)) return 3;
    if (hasOperator && staticSimilarStep(record, dbaseAirline)) return 3;
    return lastRungs(record, depth);
}

/// A title that the simulator has refused ends the search: the aircraft stays without.
bool dropUncreatable(AcBase& record) {
    if (!gf_isUncreatable(record.title)) return false;
    record.title = {};
    return true;
}

}  // namespace

void gf_matchLiveLivery(LiveAc& record) {
    record.title = {};
    const int step = climbLive(record);
    if (step == 0 || dropUncreatable(record)) return;
    ++matchCounters[static_cast<size_t>(step - 1)];
    if (LOG.value) gf_logIndented(fmt::format("{} ={}= {}", gf_shortForm(record), step, record.title));
    record.isFsltl = record.title.find("FSLTL_") != LiveryRef::npos;
}

bool gf_matchStaticLivery(AcBase& record, bool standCargo, std::string_view standName) {
    if (!record.title.empty()) {
        if (LOG.value) gf_logIndented(fmt::format("{} =s= {}", gf_shortForm(record), record.title));
        return true;
    }
    record.cargo = standCargo;
    const int step = climbStatic(record);
    if (step == 0) {
        if (LOG.value) gf_log(fmt::format("{:8}: {} no livery match ...", standName, gf_longForm(record)));
        return false;
    }
    if (dropUncreatable(record)) return false;
    if (LOG.value) gf_logIndented(fmt::format("{} ={}= {}", gf_shortForm(record), step, record.title));
    return true;
}

}  // namespace skl
