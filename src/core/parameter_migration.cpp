// What an update of the program does to the settings of the version before: old numbers become entries of the
// lists that took their place, and everything is scanned afresh.
#include <fmt/format.h>

#include <array>
#include <system_error>
#include <utility>

#include "core/folders.h"
#include "core/log.h"
#include "core/parameter_store.h"
#include "core/parameters.h"
#include "core/setting_steps.h"
#include "core/text.h"
#include "panel/panel_state.h"
#include "panel/traffic_range.h"

namespace skl {

namespace {

/// The version that first wrote the lists; its file needs no conversion.
constexpr VersionData firstWithLists{11, 0, 2};

/// In the settings of old a negative count meant no limit.
int32_t countEntry(int32_t count) {
    return count < 0 ? MAX_LIVE_SEL.max : gf_countStep(count);
}

int32_t airportRangeEntry(int32_t miles) {
    if (miles >= 27) return 30;
    if (miles >= 23) return 25;
    if (miles >= 18) return 20;
    if (miles >= 13) return 15;
    if (miles >= 8) return 10;
    return 5;
}

int32_t heightEntry(int32_t feet) {
    static constexpr std::array<std::pair<int32_t, int32_t>, 9> steps{{{47000, 48000},
                                                                       {27000, 36000},
                                                                       {17000, 18000},
                                                                       {15000, 16000},
                                                                       {13000, 14000},
                                                                       {11000, 12000},
                                                                       {9000, 10000},
                                                                       {7000, 8000},
                                                                       {5000, 6000}}};
    for (auto [from, entry] : steps)
        if (feet >= from) return entry;
    return feet < 3000 ? 2000 : 4000;
}

void moveText(StringParameter& target, const std::string& text, const Parameter& old) {
    target.set(text);
    gf_saveParameter(target);
    gf_removeParameter(old);
}

void moveNumber(IntParameter& target, int32_t (*entryOf)(int32_t), const IntParameter& old) {
    target.value = target.clamp(entryOf(old.value));
    gf_saveParameter(target);
    gf_removeParameter(old);
}

void convertOldSettings() {
    moveText(SIM_CHOICE, MSFS_2020.value ? "MSFS 2020" : "MSFS 2024", MSFS_2020);
    const auto order = static_cast<size_t>(AI_PACKAGE_ORDER.value - 1);
    moveText(AI_PACKAGE_SELECTOR, AI_PACKAGE_SELECTOR.allowed.at(order), AI_PACKAGE_ORDER);
    moveNumber(MAX_PARK_SEL, countEntry, CUSTOM_MAX_PARK);
    moveNumber(MAX_LIVE_SEL, countEntry, MAX_LIVE);
    moveNumber(RANGE, gf_rangeStep, LATERAL_RANGE);
    moveNumber(AIRP_RANGE, airportRangeEntry, AIRPORT_RANGE);
    moveNumber(AR_ABOVE_HEIGHT, heightEntry, AUTO_RANGE_ABOVE_HEIGHT);
    moveNumber(AIRP_HEIGHT, heightEntry, AIRPORT_HEIGHT);
}

void removeInstaller() {
    std::error_code error;
    fs::remove(fs::path(paths::installer), error);
    if (error) gf_log(fmt::format("Failed to remove {}: {}", paths::installer, error.message()));
}

void scanAfresh() {
    for (auto* scan : {&SCAN_LIVERIES, &SCAN_AIRPORTS}) {
        scan->value = true;
        gf_saveParameter(*scan);
    }
    gf_invalidate(Band::options);
}

}  // namespace

void gf_migrateParameters() {
    const std::string storedText = PROGRAM_VERSION.get();
    const VersionData stored = VersionData::parse(storedText);
    if (storedText.empty() || stored != programVersion) {
        PROGRAM_VERSION.set(programVersion.text());
        gf_saveParameter(PROGRAM_VERSION);
    }
    if (storedText.empty() || programVersion <= stored) return;
    gf_log(fmt::format("This is a version update from {} -> {}", stored.text(), programVersion.text()));
    if (stored != firstWithLists) convertOldSettings();
    removeInstaller();
    scanAfresh();
    gf_applyRange(RANGE.value);
}

}  // namespace skl
