#include "liveries/liveries_file.h"

#include <fmt/format.h>

#include <pugixml.hpp>
#include <string>
#include <tuple>

#include "core/errors.h"
#include "core/folders.h"
#include "core/log.h"
#include "core/text.h"
#include "core/xml_file.h"
#include "liveries/livery_scan.h"

namespace skl {

namespace {

std::string requiredAttribute(const pugi::xml_node& node, const char* name) {
    const auto attribute = node.attribute(name);
    if (!attribute)
        throw UserErrorException(999,
                                 fmt::format("Missing required attribute '{}' in <{}>", name, node.name()));
    return attribute.value();
}

void logOrigin(const pugi::xml_document& document, const std::string& path) {
    std::string author, date, version;
    gf_readMeta(document, "author", author);
    gf_readMeta(document, "date", date);
    gf_readMeta(document, "version", version);
    gf_log(fmt::format("{} written by {} {}, {}", path, author, version, date));
}

}  // namespace

void lf_sortScannedLiveries() {
    scannedLiveries.sort([](const LiveryData& a, const LiveryData& b) {
        return std::tie(a.airline, a.model, a.title) < std::tie(b.airline, b.model, b.title);
    });
}

void gf_writeLiveriesFile() {
    if (scannedLiveries.empty()) return;
    pugi::xml_document document;
    gf_writeMeta(document);
    auto liveries = document.append_child("liveries");
    for (const auto& livery : scannedLiveries) {
        auto node = liveries.append_child("liv");
        node.append_attribute("airl") = livery.airline.c_str();
        node.append_attribute("type") = livery.model.c_str();
        if (livery.cargo) node.append_attribute("cargo") = "true";
        node.append_attribute("title") = livery.title.c_str();
        if (!livery.regcode.empty()) node.append_attribute("atcid") = livery.regcode.c_str();
    }
    if (gf_saveXml(document, paths::liveriesScanned))
        gf_log(fmt::format("{} liveries in {}", scannedLiveries.size(), gf_pathText(paths::liveriesScanned)));
}

void gf_readLiveriesFile() {
    scannedLiveries.clear();
    const std::string path = gf_pathText(paths::liveriesScanned);
    pugi::xml_document document;
    if (!document.load_file(paths::liveriesScanned.c_str()))
        throw UserErrorException(51, fmt::format("File {} not found", path));
    logOrigin(document, path);
    const auto liveries = document.child("liveries");
    if (!liveries)
        throw UserErrorException(52, fmt::format("{} does not contain a <liveries> section", path));
    for (const auto node : liveries.children("liv")) {
        LiveryData livery;
        livery.airline = requiredAttribute(node, "airl");
        livery.model = requiredAttribute(node, "type");
        livery.title = requiredAttribute(node, "title");
        livery.regcode = node.attribute("atcid").value();
        livery.cargo = gf_parseBool(node.attribute("cargo").value());
        scannedLiveries.push_back(std::move(livery));
    }
    if (scannedLiveries.empty())
        throw UserErrorException(533, fmt::format("{} does not contain liveries", path));
    lf_sortScannedLiveries();
    gf_log(fmt::format("{} liveries read from {}", scannedLiveries.size(), path));
}

}  // namespace skl
