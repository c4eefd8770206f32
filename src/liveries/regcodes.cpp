#include "liveries/regcodes.h"

#include <fmt/format.h>

#include <algorithm>
#include <system_error>
#include <unordered_map>

#include "core/folders.h"
#include "core/log.h"
#include "core/text.h"
#include "distribution/stream_cipher.h"
#include "liveries/catalogue.h"
#include "liveries/livery_scan.h"
#include "liveries/scan_reports.h"

namespace skl {

namespace {

const fs::path inlineReport = paths::errors / "InlineRegcodes.txt";
const fs::path offlineReportPath = paths::info / "OfflineRegcodes.txt";

using Lines = std::vector<std::string>;

/// The stored titles by their text: one search through the master table for all rows.
class TitleIndex {
  public:
    TitleIndex() {
        for (const auto& [airline, types] : liveriesByAirline)
            for (const auto& [type, liveries] : types)
                for (const CatalogueTitle& livery : liveries) titles_.emplace(livery.title, livery.title);
    }
    /// The stored text; empty for a title that is not installed.
    LiveryRef find(std::string_view title) const {
        const auto found = titles_.find(title);
        return found == titles_.end() ? LiveryRef() : found->second;
    }

  private:
    std::unordered_map<std::string_view, LiveryRef> titles_;
};

bool userFilesThere() {
    std::error_code error;
    return fs::is_directory(paths::myRegcodes, error) && !fs::is_empty(paths::myRegcodes, error);
}

size_t banTitles(const std::vector<RegcodeRow>& rows) {
    size_t count = 0;
    for (const RegcodeRow& row : rows) {
        if (!row.regs.empty()) continue;
        dontUseTitles.insert(row.title);
        ++count;
    }
    return count;
}

struct Counts {
    size_t replaced = 0, added = 0, special = 0;
};

void applyReg(const std::string& reg, LiveryRef title, Counts& counts, Lines& report) {
    const auto [entry, inserted] = regcodeToTitle.try_emplace(reg, title);
    if (inserted) {
        ++counts.added;
    } else if (entry->second != title) {
        report.push_back(
            fmt::format("   regcode {} for '{}', instead of the same for '{}'", reg, title, entry->second));
        entry->second = title;
        ++counts.replaced;
    }
}

void applyRows(const std::vector<RegcodeRow>& rows, const TitleIndex& titles, Lines& report) {
    Counts counts;
    for (const RegcodeRow& row : rows) {
        const LiveryRef title = titles.find(row.title);
        if (title.empty()) continue;
        for (const std::string& reg : row.regs) applyReg(reg, title, counts, report);
        if (!row.special) continue;
        gf_addSpecialTitle(title);
        ++counts.special;
    }
    const auto part = [](const char* form, size_t count) {
        return count ? fmt::format(fmt::runtime(form), count, gf_plural(count)) : std::string();
    };
    report.push_back(fmt::format("{} new regcode{} added", counts.added, gf_plural(counts.added)) +
                     part(", {} regcode{} replaced", counts.replaced) +
                     part(", {} regcode{} defined as special", counts.special));
}

/// The distributed rows; the plain file is gone again afterwards. False when there are none.
bool readDistributed(std::vector<RegcodeRow>& rows, bool& fine) {
    std::error_code error;
    if (!fs::exists(paths::regcodesEnc, error)) return false;
    if (!gf_streamDecrypt(paths::regcodesEnc, paths::regcodesXml)) return false;
    fine = gf_readAigRegcodes(rows);
    gf_removeTemporary(paths::regcodesXml);
    return true;
}

void applyDistributed(const TitleIndex& titles, Lines& report) {
    std::vector<RegcodeRow> rows;
    bool fine = true;
    if (!readDistributed(rows, fine)) return;
    const std::string path = gf_pathText(paths::regcodesEnc);
    report.push_back(fmt::format("Processing file {}", path));
    if (!fine)
        report.push_back(
            fmt::format("There were errors processing the AIG-regcode file '{}', see Log.txt", path));
    applyRows(rows, titles, report);
}

void applyUserFiles(const TitleIndex& titles, Lines& report) {
    const std::string folder = gf_pathText(paths::myRegcodes);
    report.push_back(fmt::format("Processing files in {}", folder));
    std::vector<RegcodeRow> rows;
    if (!gf_readMyRegcodes(paths::myRegcodes, rows))
        report.push_back(fmt::format(
            "There were errors processing the regcode files in folder '{}', see Log.txt", folder));
    applyRows(rows, titles, report);
}

void readBans() {
    std::vector<RegcodeRow> rows;
    bool fine = true;
    if (readDistributed(rows, fine)) {
        const size_t count = banTitles(rows);
        gf_log(fmt::format("{} don't use title{} read", count, gf_plural(count)));
    }
    if (!userFilesThere()) return;
    rows.clear();
    gf_readMyRegcodes(paths::myRegcodes, rows);
    const size_t count = banTitles(rows);
    gf_log(fmt::format("{} don't use title{} read from files in {}", count, gf_plural(count),
                       gf_pathText(paths::myRegcodes)));
}

}  // namespace

void gf_readDontUseTitles() {
    dontUseTitles.clear();
    try {
        readBans();
    } catch (const std::exception& error) {
        gf_logError(fmt::format("exception: {}", error.what()));
    }
}

void gf_collectInlineRegcodes() {
    const TitleIndex titles;
    Lines clashes;
    for (const LiveryData& livery : scannedLiveries) {
        if (livery.regcode.empty()) continue;
        const LiveryRef title = titles.find(livery.title);
        if (title.empty()) {
            clashes.push_back(fmt::format("==> [{}] {} '{}' not available, system error, should not happen?",
                                          livery.airline + ' ' + livery.model, livery.regcode, livery.title));
            continue;
        }
        const auto [entry, inserted] = regcodeToTitle.try_emplace(livery.regcode, title);
        if (!inserted && entry->second != title)
            clashes.push_back(fmt::format("{} '{}' => already in use by '{}'", livery.regcode, livery.title,
                                          entry->second));
    }
    if (clashes.empty()) return;
    lf_writeReport(clashes, inlineReport);
    gf_log(fmt::format("{} in-line regcode clashes, see '{}'", clashes.size(), gf_pathText(inlineReport)));
}

void gf_applyOfflineRegcodes() {
    Lines report;
    const TitleIndex titles;
    applyDistributed(titles, report);
    if (userFilesThere()) applyUserFiles(titles, report);
    std::error_code error;
    fs::remove(offlineReportPath, error);
    if (!report.empty()) {
        lf_writeReport(report, offlineReportPath);
        gf_log(fmt::format("Offline regcode files processed, results can be found in '{}'",
                           gf_pathText(offlineReportPath)));
    }
    if (!specialTitles.empty()) gf_log(fmt::format("{} special liveries", specialTitles.size()));
}

}  // namespace skl
