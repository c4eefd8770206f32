#include "liveries/cfg_file.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <optional>

#include "core/log.h"
#include "core/text.h"
#include "liveries/cfg_section.h"
#include "liveries/reference_db.h"

namespace skl {

namespace {

constexpr size_t typeLength = 4;
constexpr size_t baseContainerDots = 3;  // a base container begins with "..\"

bool contains(std::string_view text, std::string_view piece) {
    return text.find(piece) != std::string_view::npos;
}

bool isSeparator(char c) {
    return c == '/' || c == '\\';
}

std::string candidateByDesignator(CfgLines lines) {
    for (const auto line : lines)
        if (const auto value = lf_keyValue(line, "icao_type_designator"))
            if (const auto plain = lf_plainValue(*value); !plain.empty())
                return gf_upper(plain.substr(0, typeLength));
    return {};
}

std::string candidateByContainer(CfgLines lines) {
    for (const auto line : lines) {
        const auto value = lf_keyValue(line, "base_container");
        if (!value) continue;
        const auto plain = lf_plainValue(*value);
        if (plain.size() <= baseContainerDots) return {};
        const auto folder = plain.substr(baseContainerDots);
        const auto it = modelTable.find(folder);
        return gf_upper(it == modelTable.end() ? folder : std::string_view(it->second));
    }
    return {};
}

/// The type itself, its correction, or nothing.
std::string judgedModel(std::string candidate, std::string_view cfgPath, ScanReports& reports) {
    if (gf_isAircraftType(candidate)) return candidate;
    const auto fix = modelFixes.find(candidate);
    if (fix != modelFixes.end()) {
        reports.modelFixLines.push_back(
            fmt::format("Model fix: {} found in {} changed into {}", candidate, cfgPath, fix->second));
        return fix->second;
    }
    reports.invalidModels.push_back(fmt::format("{:16} in {}", candidate, cfgPath));
    return {};
}

/// False, after a report, when the file's section numbers make it unusable.
bool sectionsUsable(CfgLines lines, std::string_view cfgPath, ScanReports& reports) {
    std::string_view wrong;
    switch (lf_checkSections(lines, wrong)) {
        case SectionCheck::good:
            return true;
        case SectionCheck::noSection:
            reports.noSectionFiles.emplace_back(cfgPath);
            return true;
        case SectionCheck::badNumber:
            reports.invalidCfgFiles.push_back(fmt::format(
                "{} contains a [fltsim.x] section with a number < 0 or > {}", cfgPath, highestSection));
            return false;
        case SectionCheck::unreadableNumber:
            gf_logError(fmt::format("fltsim num {} incorrect", wrong));
            return false;
    }
    return false;
}

void keep(LiveryData livery, const CfgFile& file, CfgLines section, CfgYield& yield) {
    if (livery.title.empty()) return;
    yield.found.push_back({std::move(livery), fmt::format("{} {}", file.text, section.front()), file.ivao});
}

/// Runs the search of one file; whatever fails inside, the file then yields nothing.
template <class Search>
void guarded(const char* name, const CfgFile& file, CfgYield& yield, Search search) {
    const size_t before = yield.found.size();
    try {
        search();
    } catch (const std::exception& error) {
        gf_log(fmt::format("Exception in {} {}: {}", name, file.text, error.what()));
        yield.found.resize(before);
    }
}

}  // namespace

std::string lf_modelOfFile(CfgLines lines, std::string_view cfgPath, ScanReports& reports) {
    std::string candidate = candidateByDesignator(lines);
    if (candidate.empty()) candidate = candidateByContainer(lines);
    if (!candidate.empty()) return judgedModel(std::move(candidate), cfgPath, reports);
    if (!contains(cfgPath, "pmdg-aircraft-7") && !contains(cfgPath, "fnx-aircraft-3"))
        reports.invalidCfgFiles.push_back(
            fmt::format("Line icao_type_designator= is missing in [General] section of {}", cfgPath));
    return {};
}

std::string lf_modelOfIvaoPath(std::string_view cfgPath, ScanReports& reports) {
    // ...\IVAO_MTL or ivao_x-csl\SimObjects\Airplanes\IVAO_<model>\aircraft.cfg, taken from its end.
    std::array<std::string_view, 5> names;
    std::string_view rest = cfgPath;
    bool complete = true;
    for (auto it = names.rbegin(); it != names.rend() && complete; ++it) {
        size_t place = rest.size();
        while (place > 0 && !isSeparator(rest[place - 1])) --place;
        *it = rest.substr(place);
        complete = place > 0;
        if (complete) rest.remove_suffix(rest.size() - place + 1);
    }
    constexpr std::string_view prefix = "IVAO_";
    const auto [package, objects, airplanes, folder, file] = names;
    std::string_view model = folder;
    if (model.starts_with(prefix)) model.remove_prefix(prefix.size());
    const bool matches = complete && !rest.empty() && (package == "IVAO_MTL" || package == "ivao_x-csl") &&
                         objects == "SimObjects" && airplanes == "Airplanes" && folder.starts_with(prefix) &&
                         !model.empty() && file.size() == 12 && file.starts_with("aircraft") &&
                         file.ends_with("cfg") && std::all_of(model.begin(), model.end(), lf_isWordCharacter);
    if (matches) return judgedModel(std::string(model.substr(0, typeLength)), cfgPath, reports);
    reports.invalidModels.push_back(fmt::format("{:16} in {}", "  ", cfgPath));
    return {};
}

void lf_searchLiveriesinFile(uint32_t priority, const CfgFile& file, CfgText& buffer, CfgYield& yield) {
    guarded("lf_searchLiveriesinFile", file, yield, [&] {
        if (lf_readCfg(file.path, buffer) != CfgRead::done) return;
        const CfgLines lines(buffer.lines);
        if (!sectionsUsable(lines, file.text, yield.reports)) return;
        const std::string model = lf_modelOfFile(lines, file.text, yield.reports);
        if (model.empty()) return;
        lf_walkSections(lines, SectionEnd::bracketInFirstSix, [&](CfgLines section) {
            keep(lf_procesFltSimSection(priority, section, model, file.text, yield.reports), file, section,
                 yield);
        });
    });
}

void lf_searchIvaoFile(uint32_t priority, const CfgFile& file, CfgText& buffer, CfgYield& yield) {
    guarded("lf_searchIvaoFile", file, yield, [&] {
        const std::string model = lf_modelOfIvaoPath(file.text, yield.reports);
        if (model.empty()) return;
        const CfgRead result = lf_readCfg(file.path, buffer);
        if (result == CfgRead::noCharset) gf_log(fmt::format("No character set found for {}", file.text));
        if (result != CfgRead::done) return;
        const CfgLines lines(buffer.lines);
        if (!sectionsUsable(lines, file.text, yield.reports)) return;
        const auto folder = file.path.parent_path();
        lf_walkSections(lines, SectionEnd::bracketAnywhere, [&](CfgLines section) {
            keep(lf_procesIvaoSection(priority, section, model, file.text, folder, yield.reports), file,
                 section, yield);
        });
    });
}

}  // namespace skl
