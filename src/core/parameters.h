// Every setting of the program, by its name in parameters.xml.
#pragma once

#include <array>

#include "core/parameter.h"

namespace skl {

// Hidden switches.
extern BoolParameter RANDOM, MSFS_2020;

// Switches with a check box.
extern CheckParameter AEROWINX, CALLSIGN_OBJECTIDS, COLLISION_USER_AIR, COLLISION_USER_GND,
    COLLISION_LIVE_PARKED_GND, SUPPRESS_STUB, LOG, ALWAYS_ON_TOP, SCAN_LIVERIES, LIG_AUTOMATIC,
    LIG_PRIORITIZE, SCAN_AIRPORTS, LIGHT_AIRCRAFT, HELICOPTERS, HIGH_PERF_AIRCRAFT, NAV_LIGHTS_WHILE_PARKED,
    AUTO_RANGE, LEARN_SOFT, STRAIGHT_PBS_ONLY, PARK_SOFT, PARK_FAKE, WEEK, INITIAL_LOAD_ONLY, GUID_CHANGES;

// Plain numbers; those said to be of older versions only feed the migration.
extern IntParameter CUSTOM_PARKING_PERCENTAGE, MAIN_WINDOW_X, MAIN_WINDOW_Y, LATERAL_RANGE, AIRPORT_RANGE,
    AUTO_RANGE_ABOVE_HEIGHT, AIRPORT_HEIGHT, LAST_EPOCH_TIME, HOLDING_THRESHOLD_METERS, MAX_HOLDING_MINUTES,
    CUSTOM_MAX_PARK, MAX_LIVE, AI_PACKAGE_ORDER;

// Numbers with a combo box.
extern ComboIntParameter MATCHING_DEPTH, RANGE;
extern ComboIntParameter AR_ABOVE_HEIGHT, MAX_PARK_SEL, MAX_LIVE_SEL, AIRP_RANGE, AIRP_HEIGHT;
extern IntParameter MAX_FIT;  ///< index of the largest stand fit, 0 to 47; shown through MAX_FIT_FL

// Texts.
extern StringParameter PROGRAM_VERSION, MSFS_INSTALL_PATH, MSFS_2024_INSTALL_PATH, PORT_NUMBER,
    PROGRAM_INSTALL_PATH, AIG_VERSION, DBASE_VERSION, MYSIMADDON24_VERSION;
extern std::array<StringParameter, 10> lfolders;  ///< lfolder0 to lfolder9, the user's livery folders
extern ComboStringParameter AI_PACKAGE_SELECTOR;
extern EditStringParameter DESTINATION;

// Texts whose control follows the value at once.
extern EditStringParameter BLOCK_CALLSIGN;
extern ComboStringParameter SIM_CHOICE;

// Controls without a row in the file.
extern EditIntParameter parking_percentage;
extern EditFloatParameter MAX_FIT_FL;  ///< always MAX_FIT * 0.5 + 0.5
extern EditStringParameter ALL_INSTALL_PATH, CALLSIGN_2_OBJECTID;
extern ButtonParameter unblockButton, rereadButton, flushStaticButton;

/// Every value back to its default and every control to its start: for tests.
void gf_resetParameters();

}  // namespace skl
