#include "liveries/category_report.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include "core/log.h"
#include "core/parameter_store.h"
#include "core/parameters.h"
#include "core/text.h"
#include "liveries/catalogue.h"
#include "panel/controls.h"

namespace skl {

namespace {

constexpr size_t typesPerLine = 20;

/// What is particular to a category; nullptr where there is nothing.
struct CategoryTraits {
    CheckParameter* box = nullptr;
    const char* missing = "";
    std::vector<std::string>* types = nullptr;
};

CategoryTraits traitsOf(AcCategory category) {
    switch (category) {
        case AcCategory::Light:
            return {&LIGHT_AIRCRAFT, "light aircraft", &typesLight};
        case AcCategory::HighPerf:
            return {&HIGH_PERF_AIRCRAFT, "High Perf aircraft", nullptr};
        case AcCategory::Rotorcraft:
            return {&HELICOPTERS, "Helicopters", &typesRotorcraft};
        case AcCategory::Buzjets:
            return {nullptr, "", &typesBuzjet};
        default:
            return {};
    }
}

void logTypes(const std::vector<std::string>& types) {
    for (size_t start = 0; start < types.size(); start += typesPerLine) {
        std::string line = "  ";
        for (size_t i = start; i < std::min(start + typesPerLine, types.size()); ++i) {
            if (i > start) line += ',';
            line += types[i];
        }
        gf_log(line);
    }
}

void switchOff(CheckParameter& box, std::string_view missing) {
    if (!box.value) return;
    box.value = false;
    gf_saveParameter(box);
    gf_log(
        fmt::format("{} temporarily switched off because you do not have {} installed", box.name, missing));
}

bool hasLiveries(AcCategory category) {
    const auto ofCategory = [category](const auto& entry) { return gf_category(entry.first) == category; };
    return std::any_of(std::begin(titlesByType), std::end(titlesByType), [&](const auto& bucket) {
        return std::any_of(bucket.begin(), bucket.end(), ofCategory);
    });
}

}  // namespace

void gf_reportCategory(AcCategory category) {
    std::vector<std::string> types;
    size_t titles[2] = {};
    for (int bucket = 0; bucket < 2; ++bucket) {
        for (const auto& [type, list] : titlesByType[bucket]) {
            if (gf_category(type) != category) continue;
            types.push_back(type);
            titles[bucket] += list.size();
        }
    }
    std::sort(types.begin(), types.end());
    types.erase(std::unique(types.begin(), types.end()), types.end());

    const auto [pax, cargo] = titles;
    const auto traits = traitsOf(category);
    const char* name = gf_categoryName(category);
    if (pax + cargo == 0) {
        gf_log(fmt::format("Category {}: No livery found", name));
        if (traits.box) switchOff(*traits.box, traits.missing);
    } else {
        const std::string suffix =
            cargo ? fmt::format(" and {} cargo liverie{}", cargo, gf_plural(cargo)) : std::string();
        gf_log(fmt::format("Category {}: {} pax liverie{}{}", name, pax, gf_plural(pax), suffix));
    }
    logTypes(types);
    if (traits.types) *traits.types = std::move(types);
}

void lf_enableCategoryControls() {
    for (const auto category : {AcCategory::Light, AcCategory::HighPerf, AcCategory::Rotorcraft})
        gf_enableControl(*traitsOf(category).box, hasLiveries(category));
}

}  // namespace skl
