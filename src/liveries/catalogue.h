// The livery catalogue: filled once a start-up, constant during a flight. Worker thread.
#pragma once

#include <array>
#include <atomic>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "core/fnv.h"
#include "engine/live_ac.h"
#include "liveries/livery_ref.h"

namespace skl {

struct CatalogueTitle {
    std::string title;
    bool cargo = false;
};
using TitleList = std::vector<LiveryRef>;

extern StringMap<StringMap<std::vector<CatalogueTitle>>> liveriesByAirline;  ///< owner of all titles
extern StringMap<StringMap<TitleList>> titlesByAirlineType[2];               ///< [1] cargo
extern StringMap<TitleList> titlesByType[2];
extern std::vector<std::string> typesLight, typesBuzjet, typesRotorcraft;
extern StringMap<LiveryRef> regcodeToTitle;       ///< registrations with a livery of their own
extern std::vector<LiveryRef> specialTitles;      ///< to be filled by gf_addSpecialTitle
extern std::vector<LiveryRef> uncreatableTitles;  ///< refused in this run; filled by gf_addUncreatable
extern StringSet uncreatableKeys;                 ///< type, blank, airline of each
extern StringMap<std::vector<std::string>> similarAvailable;
extern StringMap<StringMap<std::vector<std::string>>> similarByAirline;
extern std::array<uint64_t, 6> matchCounters;  ///< hits a step, live traffic; never cleared
extern std::atomic<bool> catalogueLoaded;
extern std::atomic<bool> clearCatalogueRequested;  ///< the panel asks the worker to read the liveries afresh

// --- start-up
/// Scans or loads, by SCAN_LIVERIES. Throws UserErrorException. After a stop it returns with the switch still
/// on.
void gf_startLiveries();
void gf_loadCatalogue();
/// Empties all tables; every holder of a title has to be empty before.
void gf_clearCatalogue();
void gf_reserveCatalogue();

// --- matching
/// Picks the title of a live aircraft; record.title stays empty if there is none.
void gf_matchLiveLivery(LiveAc& record);
/// Likewise for a statically parked aircraft; `standCargo` and `standName` are those of its stand.
bool gf_matchStaticLivery(AcBase& record, bool standCargo, std::string_view standName);
/// Keeps a livery from being picked for aircraft other than those that it is made for.
void gf_addSpecialTitle(LiveryRef title);
bool gf_isUncreatable(LiveryRef title);
/// Notes a refusal; gives the number of titles refused in this run.
size_t gf_addUncreatable(LiveryRef title, const std::string& key);
void gf_clearUncreatable();
void gf_logMatchSummary();
/// The aircraft without a livery alone, every 20 minutes; with LOG only.
void gf_logUnmatched();

}  // namespace skl
