// The catalogue's tables, their filling out of the liveries file, and their end. Titles are owned by
// liveriesByAirline; all other tables hold views of them, so that it is filled first and emptied last.
#include "liveries/catalogue.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "core/log.h"
#include "liveries/catalogue_views.h"
#include "liveries/category_report.h"
#include "liveries/liveries_file.h"
#include "liveries/livery_scan.h"
#include "liveries/regcodes.h"
#include "liveries/similar_types.h"
#include "panel/panel_state.h"

namespace skl {

StringMap<StringMap<std::vector<CatalogueTitle>>> liveriesByAirline;
StringMap<StringMap<TitleList>> titlesByAirlineType[2];
StringMap<TitleList> titlesByType[2];
std::vector<std::string> typesLight, typesBuzjet, typesRotorcraft;
StringMap<LiveryRef> regcodeToTitle;
std::vector<LiveryRef> specialTitles;
std::vector<LiveryRef> uncreatableTitles;
StringSet uncreatableKeys;
StringMap<std::vector<std::string>> similarAvailable;
StringMap<StringMap<std::vector<std::string>>> similarByAirline;
std::array<uint64_t, 6> matchCounters{};
std::atomic<bool> catalogueLoaded{false};
std::atomic<bool> clearCatalogueRequested{false};

namespace {

constexpr size_t groupReserve = 4048;

TitleSet specialSet, uncreatableSet;  // the same as the vectors, for the search

/// The liveries of one airline and type in the master table.
struct Group {
    std::string_view airline, type;
    const std::vector<CatalogueTitle>* liveries;
};

/// Liveries of the same airline and type are neighbours, since the list is sorted.
std::vector<Group> fillMaster() {
    std::vector<Group> groups;
    std::vector<CatalogueTitle> group;
    group.reserve(groupReserve);
    for (auto it = scannedLiveries.begin(); it != scannedLiveries.end();) {
        const auto first = it;
        group.clear();
        for (; it != scannedLiveries.end() && it->airline == first->airline && it->model == first->model;
             ++it)
            group.push_back({it->title, it->cargo});
        const auto airline = liveriesByAirline.try_emplace(first->airline).first;
        const auto type = airline->second.try_emplace(first->model, group.begin(), group.end()).first;
        groups.push_back({airline->first, type->first, &type->second});
    }
    return groups;
}

void fillViews(std::vector<Group> groups) {
    for (const auto& group : groups)
        for (const auto& livery : *group.liveries)
            titlesByAirlineType[livery.cargo][std::string(group.airline)][std::string(group.type)].push_back(
                livery.title);
    std::stable_sort(groups.begin(), groups.end(),
                     [](const Group& a, const Group& b) { return a.type < b.type; });
    for (const auto& group : groups)
        for (const auto& livery : *group.liveries)
            titlesByType[livery.cargo][std::string(group.type)].push_back(livery.title);
}

void fillCatalogue() {
    gf_clearCatalogue();
    gf_readLiveriesFile();
    g_panel.liveryCount = scannedLiveries.size();
    gf_invalidate(Band::status);
    fillViews(fillMaster());
    gf_collectInlineRegcodes();
    gf_applyOfflineRegcodes();
    gf_log(fmt::format("{} registration codes", regcodeToTitle.size()));
    gf_log(fmt::format("{} airlines, {} pax aircraft models and {} cargo aircraft models",
                       liveriesByAirline.size(), titlesByType[0].size(), titlesByType[1].size()));
    lf_buildSimilarTypes();
    for (int category = 0; category < categoryCount; ++category)
        gf_reportCategory(static_cast<AcCategory>(category));
    catalogueLoaded = true;
    gf_invalidate(Band::options);
}

}  // namespace

void gf_loadCatalogue() {
    if (catalogueLoaded)
        gf_log("Processing scanned liveries skipped; already done in previous start-up");
    else
        fillCatalogue();
    lf_enableCategoryControls();
    scannedLiveries.clear();
}

void gf_clearCatalogue() {
    catalogueLoaded = false;
    regcodeToTitle.clear();
    specialTitles.clear();
    specialSet.clear();
    uncreatableTitles.clear();
    uncreatableSet.clear();
    for (auto& table : titlesByAirlineType) table.clear();
    for (auto& table : titlesByType) table.clear();
    for (auto* types : {&typesLight, &typesBuzjet, &typesRotorcraft}) types->clear();
    similarAvailable.clear();
    similarByAirline.clear();
    dontUseTitles.clear();
    liveriesByAirline.clear();
}

void gf_reserveCatalogue() {
    typesLight.reserve(64);
    typesBuzjet.reserve(128);
    typesRotorcraft.reserve(32);
    specialTitles.reserve(4096);
}

void gf_addSpecialTitle(LiveryRef title) {
    specialTitles.push_back(title);
    specialSet.insert(title);
}

bool lf_isSpecial(LiveryRef title) {
    return !specialSet.empty() && specialSet.contains(title);
}

bool gf_isUncreatable(LiveryRef title) {
    return !uncreatableSet.empty() && uncreatableSet.contains(title);
}

size_t gf_addUncreatable(LiveryRef title, const std::string& key) {
    if (uncreatableSet.insert(title).second) uncreatableTitles.push_back(title);
    uncreatableKeys.insert(key);
    return uncreatableTitles.size();
}

void gf_clearUncreatable() {
    uncreatableTitles.clear();
    uncreatableSet.clear();
    uncreatableKeys.clear();
}

}  // namespace skl
