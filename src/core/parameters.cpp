// The settings with their defaults, bounds and controls. Nothing outside this file may read one before main
// begins; the lists are built when they are first asked for.
#include "core/parameters.h"

#include <type_traits>

#include "core/locks.h"
#include "core/parameter_store.h"

namespace skl {

// Hidden switches.
BoolParameter RANDOM("RANDOM", true);
BoolParameter MSFS_2020("MSFS_2020", false);

// Switches with a check box: default, control id, left edge, top of the row.
CheckParameter AEROWINX("AEROWINX", false, 32775, 652, 203);
CheckParameter CALLSIGN_OBJECTIDS("CALLSIGN_OBJECTIDS", false, 32822, 748, 231);
CheckParameter COLLISION_USER_AIR("COLLISION_USER_AIR", true, 32833, 323, 287);
CheckParameter COLLISION_USER_GND("COLLISION_USER_GND", true, 32834, 217, 287);
CheckParameter COLLISION_LIVE_PARKED_GND("COLLISION_LIVE_PARKED_GND", false, 32835, 430, 287);
CheckParameter SUPPRESS_STUB("SUPPRESS_STUB", true, 32800, 536, 147);
CheckParameter LOG("LOG", true, 32779, 652, 147);
CheckParameter ALWAYS_ON_TOP("ALWAYS_ON_TOP", false, 32771, 748, 147);
CheckParameter SCAN_LIVERIES("SCAN_LIVERIES", true, 32797, 5, 147);
CheckParameter LIG_AUTOMATIC("LIG_AUTOMATIC", true, 32798, 217, 147);
CheckParameter LIG_PRIORITIZE("LIG_PRIORITIZE", false, 32799, 450, 147);
CheckParameter SCAN_AIRPORTS("SCAN_AIRPORTS", true, 32801, 5, 175);
CheckParameter LIGHT_AIRCRAFT("LIGHT_AIRCRAFT", true, 32809, 323, 203);
CheckParameter HELICOPTERS("HELICOPTERS", true, 32810, 430, 203);
CheckParameter HIGH_PERF_AIRCRAFT("HIGH_PERF_AIRCRAFT", true, 32811, 536, 203);
CheckParameter NAV_LIGHTS_WHILE_PARKED("NAV_LIGHTS_WHILE_PARKED", true, 32778, 652, 175);
CheckParameter AUTO_RANGE("AUTO_RANGE", true, 32819, 323, 231);
CheckParameter LEARN_SOFT("LEARN_SOFT", true, 32777, 748, 175);
CheckParameter STRAIGHT_PBS_ONLY("STRAIGHT_PBS_ONLY", false, 32856, 652, 315);
CheckParameter PARK_SOFT("PARK_SOFT", true, 32851, 151, 371);
CheckParameter PARK_FAKE("PARK_FAKE", false, 32852, 5, 371);
CheckParameter WEEK("WEEK", false, 32854, 71, 371);
CheckParameter INITIAL_LOAD_ONLY("INITIAL_LOAD_ONLY", false, 32850, 430, 371);
CheckParameter GUID_CHANGES("GUID_CHANGES", true, 32773, 748, 203);

// Plain numbers: default, lowest, highest.
IntParameter CUSTOM_PARKING_PERCENTAGE("CUSTOM_PARKING_PERCENTAGE", -1, -1, 100);
IntParameter MAIN_WINDOW_X("MAIN_WINDOW_X", 400, -30000, 30000);
IntParameter MAIN_WINDOW_Y("MAIN_WINDOW_Y", 20, -30000, 30000);
IntParameter LATERAL_RANGE("LATERAL_RANGE", 40, 2, 100);
IntParameter AIRPORT_RANGE("AIRPORT_RANGE", 20, 8, 30);
IntParameter AUTO_RANGE_ABOVE_HEIGHT("AUTO_RANGE_ABOVE_HEIGHT", 49000, 18000, 49000);
IntParameter AIRPORT_HEIGHT("AIRPORT_HEIGHT", 18000, 2000, 45000);
IntParameter LAST_EPOCH_TIME("LAST_EPOCH_TIME:", 0, 0,
                             2147483647);  // the colon is part of the name in the file
IntParameter HOLDING_THRESHOLD_METERS("HOLDING_THRESHOLD_METERS", 250, 10, 4000);
IntParameter MAX_HOLDING_MINUTES("MAX_HOLDING_MINUTES", 20, 1, 60);
IntParameter CUSTOM_MAX_PARK("CUSTOM_MAX_PARK", -1, -1, 500);
IntParameter MAX_LIVE("MAX_LIVE", -1, -1, 300);
IntParameter AI_PACKAGE_ORDER("AI_PACKAGE_ORDER", 1, 1, 6);

// Numbers with a combo box.
ComboIntParameter MATCHING_DEPTH("MATCHING_DEPTH", 4, {1, 2, 3, 4}, 32808, 217, 203);
ComboIntParameter RANGE("RANGE", 40,
                        {2, 3, 4, 5, 6, 8, 10, 12, 14, 16, 18, 20, 25, 30, 35, 40, 50, 65, 80, 100}, 32818,
                        217, 231);
IntParameter MAX_FIT("MAX_FIT", 47, 0, 47);
ComboIntParameter AR_ABOVE_HEIGHT("AR_ABOVE_HEIGHT", 48000,
                                  {18000, 21000, 24000, 27000, 30000, 33000, 36000, 39000, 42000, 45000,
                                   48000},
                                  32820, 455, 231);
ComboIntParameter MAX_PARK_SEL("MAX_PARK_SEL", 500, {0, 10, 25, 50, 75, 100, 500}, 32846, 323, 315);
ComboIntParameter MAX_LIVE_SEL("MAX_LIVE_SEL", 500, {0, 10, 25, 50, 75, 100, 500}, 32847, 536, 315);
ComboIntParameter AIRP_RANGE("AIRP_RANGE", 20, {5, 10, 15, 20, 25, 30}, 32840, 353, 343);
ComboIntParameter AIRP_HEIGHT("AIRP_HEIGHT", 18000,
                              {2000, 4000, 6000, 8000, 10000, 12000, 14000, 16000, 18000, 36000, 48000},
                              32841, 566, 343);

// Texts.
StringParameter PROGRAM_VERSION("PROGRAM_VERSION", "");
StringParameter MSFS_INSTALL_PATH("MSFS_INSTALL_PATH", "");
StringParameter PORT_NUMBER("PORT_NUMBER", "10747");
std::array<StringParameter, 10> lfolders{{StringParameter("lfolder0", ""), StringParameter("lfolder1", ""),
                                          StringParameter("lfolder2", ""), StringParameter("lfolder3", ""),
                                          StringParameter("lfolder4", ""), StringParameter("lfolder5", ""),
                                          StringParameter("lfolder6", ""), StringParameter("lfolder7", ""),
                                          StringParameter("lfolder8", ""), StringParameter("lfolder9", "")}};
StringParameter PROGRAM_INSTALL_PATH("PROGRAM_INSTALL_PATH", "");
StringParameter AIG_VERSION("AIG_VERSION", "");
StringParameter DBASE_VERSION("DBASE_VERSION", "");
StringParameter MYSIMADDON24_VERSION("MYSIMADDON24_VERSION", "");
StringParameter MSFS_2024_INSTALL_PATH("MSFS_2024_INSTALL_PATH", "");
ComboStringParameter AI_PACKAGE_SELECTOR("AI_PACKAGE_SELECTOR", "AIG, FSLTL, JF",
                                         {"AIG, FSLTL, JF", "AIG, JF, FSLTL", "FSLTL, AIG, JF",
                                          "FSLTL, JF, AIG", "JF, AIG, FSLTL", "JF, FSLTL, AIG"},
                                         32791, 308, 147);
EditStringParameter DESTINATION("DESTINATION", "", 32839, 217, 343);

// Texts whose control follows the value at once.
EditStringParameter BLOCK_CALLSIGN("BLOCK_CALLSIGN", "", 32828, 217, 259);
ComboStringParameter SIM_CHOICE("SIM_CHOICE", "MSFS 2020", {"MSFS 2020", "MSFS 2024"}, 32790, 5, 119);

// Controls without a row in the file.
EditIntParameter parking_percentage("parking_percentage", 30, 0, 100, 32848, 323, 371);
EditFloatParameter MAX_FIT_FL("MAX_FIT_FL", 24.0f, 0.5f, 24.0f, 32855, 566, 371);
EditStringParameter ALL_INSTALL_PATH("ALL_INSTALL_PATH", "", 32788, 111, 119);
EditStringParameter CALLSIGN_2_OBJECTID("CALLSIGN_2_OBJECTID", "", 32774, 460, 259);
ButtonParameter unblockButton("Unblock", 32829, 323, 257);
ButtonParameter rereadButton("Re-read", 32838, 758, 341);
ButtonParameter flushStaticButton("Flush static", 32858, 758, 369);

namespace {

StringList textList() {
    StringList texts{&PROGRAM_VERSION, &MSFS_INSTALL_PATH, &PORT_NUMBER};
    for (auto& folder : lfolders) texts.push_back(&folder);
    const StringList rest{
        &PROGRAM_INSTALL_PATH,   &AIG_VERSION,         &DBASE_VERSION, &MYSIMADDON24_VERSION,
        &MSFS_2024_INSTALL_PATH, &AI_PACKAGE_SELECTOR, &DESTINATION};
    texts.insert(texts.end(), rest.begin(), rest.end());
    return texts;
}

void disable(Parameter& parameter) {
    if (auto* control = dynamic_cast<ControlParameter*>(&parameter)) control->enabled = false;
}

template <class SomeParameter>
void resetOne(SomeParameter& parameter) {
    if constexpr (std::is_base_of_v<StringParameter, SomeParameter>)
        parameter.set(parameter.defaultValue);
    else
        parameter.value = parameter.defaultValue;
    disable(parameter);
}

template <class List>
void resetList(const List& list) {
    for (auto* parameter : list) resetOne(*parameter);
}

}  // namespace

std::string StringParameter::get() const {
    LockGuard guard(g_parameterLock);
    return value_;
}

void StringParameter::set(std::string text) {
    LockGuard guard(g_parameterLock);
    value_ = std::move(text);
}

bool StringParameter::empty() const {
    LockGuard guard(g_parameterLock);
    return value_.empty();
}

bool StringParameter::operator==(const std::string& text) const {
    LockGuard guard(g_parameterLock);
    return value_ == text;
}

const ParameterLists& gf_parameterLists() {
    static const ParameterLists lists{
        {&RANDOM, &MSFS_2020},
        {&AEROWINX,
         &CALLSIGN_OBJECTIDS,
         &COLLISION_USER_AIR,
         &COLLISION_USER_GND,
         &COLLISION_LIVE_PARKED_GND,
         &SUPPRESS_STUB,
         &LOG,
         &ALWAYS_ON_TOP,
         &SCAN_LIVERIES,
         &LIG_AUTOMATIC,
         &LIG_PRIORITIZE,
         &SCAN_AIRPORTS,
         &LIGHT_AIRCRAFT,
         &HELICOPTERS,
         &HIGH_PERF_AIRCRAFT,
         &NAV_LIGHTS_WHILE_PARKED,
         &AUTO_RANGE,
         &LEARN_SOFT,
         &STRAIGHT_PBS_ONLY,
         &PARK_SOFT,
         &PARK_FAKE,
         &WEEK,
         &INITIAL_LOAD_ONLY,
         &GUID_CHANGES},
        {&CUSTOM_PARKING_PERCENTAGE, &MAIN_WINDOW_X, &MAIN_WINDOW_Y, &LATERAL_RANGE, &AIRPORT_RANGE,
         &AUTO_RANGE_ABOVE_HEIGHT, &AIRPORT_HEIGHT, &LAST_EPOCH_TIME, &HOLDING_THRESHOLD_METERS,
         &MAX_HOLDING_MINUTES, &CUSTOM_MAX_PARK, &MAX_LIVE, &AI_PACKAGE_ORDER},
        {&MATCHING_DEPTH, &RANGE, &MAX_FIT, &AR_ABOVE_HEIGHT, &MAX_PARK_SEL, &MAX_LIVE_SEL, &AIRP_RANGE,
         &AIRP_HEIGHT},
        textList(),
        {&BLOCK_CALLSIGN, &SIM_CHOICE}};
    return lists;
}

void gf_resetParameters() {
    const auto& lists = gf_parameterLists();
    resetList(lists.hidden);
    resetList(lists.checks);
    resetList(lists.numbers);
    resetList(lists.combos);
    resetList(lists.texts);
    resetList(lists.liveTexts);
    resetOne(parking_percentage);
    resetOne(MAX_FIT_FL);
    resetOne(ALL_INSTALL_PATH);
    resetOne(CALLSIGN_2_OBJECTID);
    for (auto* button : {&unblockButton, &rereadButton, &flushStaticButton}) button->enabled = false;
}

}  // namespace skl
