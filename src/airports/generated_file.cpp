// What the scan of add-on airports asks about files that it has generated, and about the site's stock files.
#include <fmt/format.h>

#include <pugixml.hpp>

#include "airports/airport_file.h"
#include "airports/airport_rows.h"
#include "airports/site_documents.h"
#include "core/log.h"
#include "core/text.h"

namespace skl {

namespace {

constexpr size_t tellingLength = 4;         // of a maker's name
constexpr int32_t learnedTrafficWeek = 27;  // from which on the stock file is worth learning from

std::string rowOf(const pugi::xml_document& document, const char* name) {
    return std::string(lf_rowText(document, name).value_or(""));
}

}  // namespace

std::string gf_publisherOfFile(const std::filesystem::path& path) {
    pugi::xml_document document;
    return document.load_file(path.c_str()) ? rowOf(document, "publisher") : std::string();
}

std::string gf_manifestInfoOfFile(const std::filesystem::path& path) {
    pugi::xml_document document;
    if (!document.load_file(path.c_str())) return fmt::format("'{}' not found)", gf_pathText(path));
    if (rowOf(document, "publisher") != "unknown") return {};
    const std::string manufacturer = rowOf(document, "manufacturer"), creator = rowOf(document, "creator");
    if (manufacturer.size() >= tellingLength || creator.size() >= tellingLength) return {};
    return fmt::format("{}={}, {}={}", "manufacturer", manufacturer, "creator", creator);
}

bool gf_offlineLearnable(const std::string& code) {
    const std::string name = fmt::format("archive/stock/{}.xml", code);
    const std::string* text = lf_siteDocument(name);
    if (!text) {
        gf_log(fmt::format("Failed to download {}", name));
        return false;
    }
    pugi::xml_document document;
    if (!document.load_buffer(text->data(), text->size())) {
        gf_log(fmt::format("Failed to load {}", name));
        return false;
    }
    const bool known =
        lf_rowInt(document, "Qf_real").value_or(-1) >= 0 || lf_rowInt(document, "Qf_soft").value_or(-1) >= 0;
    if (known && lf_rowInt(document, "RT_traffic_week").value_or(0) >= learnedTrafficWeek) return true;
    gf_log(fmt::format("{} not suitable for offline learning", code));
    return false;
}

}  // namespace skl
