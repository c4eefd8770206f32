#include "airports/airport_settings.h"

#include "airports/airport_rows.h"
#include "core/parameters.h"
#include "core/setting_steps.h"
#include "panel/controls.h"
#include "panel/panel_state.h"
#include "panel/traffic_range.h"

namespace skl {

namespace {

// What the file has always held in the row of WEEK: read as a switch it is off.
constexpr const char* weekRow = "27";

void readSwitch(const pugi::xml_document& document, CheckParameter& setting) {
    const auto value = lf_rowBool(document, setting.name);
    if (!value) return;
    setting.value = *value;
    lf_logRow(setting.name, *value);
}

/// Without a row the airport has no limit of its own.
void readLiveLimit(const pugi::xml_document& document) {
    const auto count = lf_rowInt(document, MAX_LIVE.name);
    if (!count) return;
    MAX_LIVE_SEL.value = MAX_LIVE_SEL.clamp(gf_countStep(*count));
    lf_logRow(MAX_LIVE.name, MAX_LIVE_SEL.value.load());
}

void readRange(const pugi::xml_document& document) {
    const auto miles = lf_rowInt(document, LATERAL_RANGE.name);
    if (!miles) return;
    const int32_t entry = gf_rangeStep(*miles);
    if (entry != RANGE.value) gf_applyRange(entry);
    lf_logRow(LATERAL_RANGE.name, entry);
}

void readAutoRange(const pugi::xml_document& document) {
    readSwitch(document, AUTO_RANGE);
    gf_enableControl(RANGE, !AUTO_RANGE.value);
    gf_enableControl(AR_ABOVE_HEIGHT, AUTO_RANGE.value);
}

void readParkingPercentage(const pugi::xml_document& document) {
    const auto percent = lf_rowInt(document, parking_percentage.name);
    lf_setParkingPercentage(percent.value_or(parking_percentage.defaultValue));
    if (percent) lf_logRow(parking_percentage.name, parking_percentage.value.load());
}

void readMaxFit(const pugi::xml_document& document) {
    const auto fit = lf_rowInt(document, MAX_FIT.name);
    if (!fit) return;
    MAX_FIT.value = MAX_FIT.clamp(*fit);
    MAX_FIT_FL.value = static_cast<float>(MAX_FIT.value) * 0.5f + 0.5f;
    gf_log(fmt::format("{:24}: {} (max number of half hours, is {} hrs decimal)", MAX_FIT.name,
                       MAX_FIT.value.load(), MAX_FIT_FL.value.load()));
}

void appendSwitch(pugi::xml_node parameters, const BoolParameter& setting) {
    lf_appendRow(parameters, setting.name.c_str(), setting.value ? "true" : "false");
}

void appendNumber(pugi::xml_node parameters, const Parameter& row, int32_t value) {
    lf_appendRow(parameters, row.name.c_str(), std::to_string(value));
}

}  // namespace

void lf_readAirportSettings(const pugi::xml_document& document) {
    readSwitch(document, LEARN_SOFT);
    readLiveLimit(document);
    readRange(document);
    readAutoRange(document);
    readSwitch(document, PARK_FAKE);
    readSwitch(document, WEEK);
    readSwitch(document, PARK_SOFT);
    readParkingPercentage(document);
    readSwitch(document, INITIAL_LOAD_ONLY);
    readMaxFit(document);
    gf_invalidate(Band::options);
}

void lf_appendAirportSettings(pugi::xml_node parameters) {
    appendNumber(parameters, LATERAL_RANGE, RANGE.value);
    appendSwitch(parameters, AUTO_RANGE);
    lf_appendRow(parameters, WEEK.name.c_str(), weekRow);
    appendSwitch(parameters, PARK_FAKE);
    appendSwitch(parameters, PARK_SOFT);
    appendNumber(parameters, parking_percentage, parking_percentage.value);
    appendSwitch(parameters, INITIAL_LOAD_ONLY);
    appendNumber(parameters, MAX_FIT, MAX_FIT.value);
    appendNumber(parameters, MAX_LIVE, MAX_LIVE_SEL.value);
    appendSwitch(parameters, LEARN_SOFT);
}

void lf_setParkingPercentage(int32_t percent) {
    parking_percentage.value = parking_percentage.clamp(percent);
    gf_invalidate(Band::parking);
}

}  // namespace skl
