// Reads the reference database: a document whose top level holds sections, each found by its name, whose
// children carry comma lists or single values. Bad rows are a log line each; an empty list section ends the
// start.
#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <pugixml.hpp>
#include <stdexcept>

#include "core/errors.h"
#include "core/folders.h"
#include "core/log.h"
#include "core/text.h"
#include "distribution/stream_cipher.h"
#include "liveries/reference_db.h"
#include "liveries/short_regs.h"

namespace skl {

namespace {

constexpr double metresToNm = 0.0005399568034557236;

std::vector<std::string> splitTrimmed(std::string_view list) {
    auto pieces = gf_splitComma(list);
    for (auto& piece : pieces) piece = gf_trim(piece);
    return pieces;
}

std::vector<std::string> splitNames(std::string_view list) {
    auto names = splitTrimmed(list);
    std::erase(names, std::string());
    return names;
}

void readList(const pugi::xml_document& document, const char* section, const char* element,
              const char* attribute, TypeSet& result) {
    for (const auto child : document.child(section).children(element))
        for (auto& name : splitNames(child.attribute(attribute).value())) result.insert(std::move(name));
    if (result.empty())
        throw UserErrorException(
            61, fmt::format("In XML file section [{}], element [{}], attribute [{}] is empty.", section,
                            element, attribute));
}

void readSimilarTypes(const pugi::xml_document& document) {
    similarRows.reserve(64);
    for (const auto child : document.child("similar_types").children("similar")) {
        auto row = splitNames(child.attribute("types").value());
        std::sort(row.begin(), row.end());
        if (!row.empty()) similarRows.push_back(std::move(row));
    }
}

void readPublishers(const pugi::xml_document& document) {
    std::vector<std::string> lists;
    for (const auto child : document.child("publishers").children("pub"))
        lists.emplace_back(child.attribute("names").value());
    // The rows stand in the order of their whole text; which row is asked first decides between two that
    // match.
    std::sort(lists.begin(), lists.end());
    publisherRows.reserve(640);
    for (const auto& list : lists) {
        auto row = splitTrimmed(list);
        if (row.empty()) row.emplace_back();
        publisherRows.push_back(std::move(row));
    }
    gf_log(fmt::format("   {} publishers", publisherRows.size()));
}

/// Metres of a span; a missing one counts as 0, a text that is no finite length is nothing.
std::optional<double> readMetres(const pugi::xml_attribute& attribute) {
    const std::string text = gf_trim(attribute.value());
    if (text.empty()) return 0.0;
    const auto metres = gf_readNumber(text);
    return metres && *metres >= 0 ? metres : std::nullopt;
}

void averageSpans() {
    double sums[categoryCount] = {};
    int counts[categoryCount] = {};
    double total = 0;
    for (const auto& [type, halfSpan] : wingspanHalfNm) {
        const auto category = static_cast<int>(gf_category(type));
        sums[category] += halfSpan;
        ++counts[category];
        total += halfSpan;
    }
    for (int c = 0; c < categoryCount; ++c)
        categoryAvgHalfNm[c] =
            counts[c] ? sums[c] / counts[c] : total / static_cast<double>(wingspanHalfNm.size());
}

void readWingspans(const pugi::xml_document& document) {
    for (const auto child : document.child("wingspans").children("wingspan")) {
        const std::string type = child.attribute("type").value();
        const auto metres = readMetres(child.attribute("meters"));
        if (!gf_isAircraftType(type) || !metres) {
            gf_logError(fmt::format("wingspan model {} is not valid, skipped", type));
            continue;
        }
        const double halfSpan = *metres * 0.5 * metresToNm;
        wingspanHalfNm.emplace(type, halfSpan);
        maxHalfSpanNm = std::max(maxHalfSpanNm, halfSpan);
    }
    if (!wingspanHalfNm.empty()) averageSpans();
}

void readFixes(const pugi::xml_document& document) {
    for (const auto child : document.child("fixes").children("fx")) {
        const std::string wrong = child.attribute("wro").value();
        const std::string correct = child.attribute("cor").value();
        if (!gf_isAircraftType(correct))
            gf_logError(fmt::format("wrong fix {} -> {}, the latter is not valid", wrong, correct));
        else if (!modelFixes.emplace(wrong, correct).second)
            gf_logError(fmt::format("wrong part of fix: '{}', already exists, skipped", wrong));
    }
}

void readThirdParties(const pugi::xml_document& document, const char* section, const char* element,
                      std::vector<ThirdPartyRow>& rows, size_t room) {
    rows.reserve(room);
    for (const auto child : document.child(section).children(element))
        rows.push_back({child.attribute("pub").value(), splitNames(child.attribute("arpts").value())});
}

void readRecords(const pugi::xml_document& document) {
    const auto rows = document.child("dbase").children("db");
    dbaseRecords.reserve(static_cast<size_t>(std::distance(rows.begin(), rows.end())));
    for (const auto row : rows) {
        const auto [it, added] = dbaseRecords.try_emplace(row.attribute("reg").value());
        if (!added) {
            gf_logError(fmt::format("regcode {} already exists", it->first));
            continue;
        }
        DbaseRecord& record = it->second;
        record.airl = row.attribute("airl").value();
        record.type = row.attribute("type").value();
        record.opr = row.attribute("opr").value();
        record.cargo = gf_parseBool(row.attribute("cargo").value());
        lf_addShortReg(it->first);
    }
}

}  // namespace

void gf_readDbaseXml(const std::string& path) {
    gf_clearDbase();
    pugi::xml_document document;
    const auto status = document.load_file(path.c_str());
    if (!status)
        throw UserErrorException(60, fmt::format("'{}' not read because of {}", path, status.description()));

    // Spans and fixes test their types against the aircraft types, the mean spans need every category.
    readList(document, "aircrafts", "aircraft", "types", aircraftTypes);
    readList(document, "high_performance", "hpf", "types", highPerfTypes);
    readList(document, "heavy", "hvy", "types", heavyTypes);
    readList(document, "large", "lar", "types", largeTypes);
    readList(document, "buzjet", "bzj", "types", buzjetTypes);
    readList(document, "rotorcraft", "rot", "types", rotorcraftTypes);
    readList(document, "cargo_types", "cargo_type", "types", cargoTypes);
    readSimilarTypes(document);
    readList(document, "ICAO_airlines", "ICAO", "codes", icaoAirlines);
    readList(document, "cargo_operators", "ICAO", "codes", cargoOperators);
    readPublishers(document);
    readWingspans(document);
    readFixes(document);
    readList(document, "simaddons20", "simaddon20", "arpts", simAddons20);
    readThirdParties(document, "thirdparties20", "thirdpartie20", thirdParties20, 600);
    readThirdParties(document, "thirdparties24", "thirdpartie24", thirdParties24, 300);
    readRecords(document);
    gf_log(fmt::format("{} dbase records read", dbaseRecords.size()));
}

bool gf_readDbase() {
    if (!fs::exists(paths::dbaseEnc))
        throw std::runtime_error(fmt::format("{} not available", gf_pathText(paths::dbaseEnc)));
    if (!gf_streamDecrypt(paths::dbaseEnc, paths::dbaseXml))
        throw std::runtime_error(fmt::format("{} stream decrypt failed", gf_pathText(paths::dbaseEnc)));

    // The plain text goes however the reading ends.
    struct PlainFile {
        ~PlainFile() { gf_removeTemporary(paths::dbaseXml); }
    } plainFile;
    gf_readDbaseXml(gf_pathText(paths::dbaseXml));
    return true;
}

}  // namespace skl
