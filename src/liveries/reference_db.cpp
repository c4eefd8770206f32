// The tables of the reference database and the questions put to them. The reader is reference_db_xml.cpp.
#include "liveries/reference_db.h"

#include <algorithm>

#include "liveries/short_regs.h"

namespace skl {

TypeSet aircraftTypes, heavyTypes, largeTypes, buzjetTypes, highPerfTypes, rotorcraftTypes, cargoTypes;
TypeSet icaoAirlines, cargoOperators, simAddons20;
std::vector<std::vector<std::string>> similarRows, publisherRows;
std::map<std::string, double, std::less<>> wingspanHalfNm;
double maxHalfSpanNm = 0;
double categoryAvgHalfNm[categoryCount] = {};
StringMap<std::string> modelFixes;
std::vector<ThirdPartyRow> thirdParties20, thirdParties24;
StringMap<DbaseRecord> dbaseRecords;

namespace {

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool containsAnyCase(std::string_view text, std::string_view name) {
    return name.empty() || std::search(text.begin(), text.end(), name.begin(), name.end(),
                                       [](char a, char b) { return lower(a) == lower(b); }) != text.end();
}

/// The record stored under one of the spellings of a registration, or nullptr.
const DbaseRecord* findRecord(std::string_view registration) {
    const auto find = [](std::string_view key) {
        const auto it = dbaseRecords.find(key);
        return it == dbaseRecords.end() ? nullptr : &it->second;
    };
    if (registration.empty()) return nullptr;
    if (registration.size() >= 5 && registration.front() != 'N' &&
        registration.find('-') == std::string_view::npos) {
        for (size_t place : {2, 1}) {
            std::string key(registration);
            key.insert(place, 1, '-');
            if (const auto* record = find(key)) return record;
        }
    }
    return find(registration);
}

}  // namespace

const char* gf_categoryName(AcCategory category) {
    switch (category) {
        case AcCategory::Light:
            return "Light";
        case AcCategory::Buzjets:
            return "Buzjets";
        case AcCategory::Large:
            return "Large";
        case AcCategory::Heavy:
            return "Heavy";
        case AcCategory::HighPerf:
            return "HighPerf";
        case AcCategory::Rotorcraft:
            return "Rotorcraft";
    }
    return "";
}

void gf_clearDbase() {
    for (TypeSet* set : {&aircraftTypes, &heavyTypes, &largeTypes, &buzjetTypes, &highPerfTypes,
                         &rotorcraftTypes, &cargoTypes, &icaoAirlines, &cargoOperators, &simAddons20})
        set->clear();
    similarRows.clear();
    publisherRows.clear();
    wingspanHalfNm.clear();
    maxHalfSpanNm = 0;
    std::fill(std::begin(categoryAvgHalfNm), std::end(categoryAvgHalfNm), 0.0);
    modelFixes.clear();
    thirdParties20.clear();
    thirdParties24.clear();
    dbaseRecords.clear();
    lf_clearShortRegs();
}

AcCategory gf_category(std::string_view type) {
    // The first set decides: a type that stands in two of them takes the earlier one.
    if (largeTypes.contains(type)) return AcCategory::Large;
    if (heavyTypes.contains(type)) return AcCategory::Heavy;
    if (buzjetTypes.contains(type)) return AcCategory::Buzjets;
    if (rotorcraftTypes.contains(type)) return AcCategory::Rotorcraft;
    if (highPerfTypes.contains(type)) return AcCategory::HighPerf;
    return AcCategory::Light;
}

bool gf_isAircraftType(std::string_view type) {
    return !type.empty() && aircraftTypes.contains(type);
}

bool gf_isIcaoAirline(std::string_view code) {
    return !code.empty() && icaoAirlines.contains(code);
}

double gf_halfSpanNm(std::string_view type) {
    const auto it = wingspanHalfNm.find(type);
    return it != wingspanHalfNm.end() ? it->second : categoryAvgHalfNm[static_cast<int>(gf_category(type))];
}

bool gf_halfSpanKnown(std::string_view type) {
    return wingspanHalfNm.contains(type);
}

std::optional<DbaseRecord> gf_dbaseLookup(std::string_view registration) {
    const auto* record = findRecord(registration);
    return record ? std::optional(*record) : std::nullopt;
}

std::string gf_dbaseAirline(std::string_view registration) {
    const auto* record = findRecord(registration);
    return record ? record->airl : std::string();
}

std::string gf_dbaseOperator(std::string_view registration) {
    const auto* record = findRecord(registration);
    return record ? record->opr : std::string();
}

std::optional<std::string> gf_regInTitle(std::string_view title) {
    return lf_findShortReg(title);
}

std::string gf_publisherOf(std::string_view text) {
    for (const auto& row : publisherRows)
        for (const auto& name : row)
            if (containsAnyCase(text, name)) return row.front();
    return "unknown";
}

}  // namespace skl
