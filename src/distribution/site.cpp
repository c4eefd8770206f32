// Fetching from the data site, with patience for a slow one and none for a silent one.
#include "distribution/site.h"

#include <fmt/format.h>

#include <fstream>
#include <system_error>

#include "core/clock.h"
#include "core/folders.h"
#include "core/log.h"
#include "core/run_state.h"
#include "core/text.h"
#include "platform/http.h"

namespace skl {

namespace {

constexpr std::string_view userAgent = "SKLT";
constexpr Nanos patience = std::chrono::seconds(10);
constexpr size_t largestBody = size_t{1} << 28;  // no file of the site comes near it

std::string withSlash(std::string base) {
    if (!base.empty() && base.back() != '/') base += '/';
    return base;
}

std::string siteBase = withSlash(SKYLANTERN_SITE_BASE);
bool absenceTold = false;

/// Whether bytes still come, by the clock in force.
class Patience {
  public:
    bool lasts(uint64_t received) {
        const Nanos now = gf_steadyNow();
        if (received != seen_) {
            seen_ = received;
            since_ = now;
        }
        return now - since_ < patience;
    }

  private:
    uint64_t seen_ = 0;
    Nanos since_ = gf_steadyNow();
};

/// Whether a file can be written there, as gf_writeText does it; asked before the site is.
bool canWrite(const fs::path& path) {
    fs::path beside = path;
    beside += ".new";
    const bool opens = std::ofstream(beside, std::ios::binary).is_open();
    std::error_code ignored;
    if (opens) fs::remove(beside, ignored);
    return opens && !fs::is_directory(path, ignored);
}

}  // namespace

platform::HttpResult lf_fetch(const std::string& url, std::string& content) {
    Patience left;
    std::string_view ended;
    platform::HttpResult result =
        platform::httpGet({.url = url,
                           .userAgent = std::string(userAgent),
                           .body =
                               [&](std::string_view piece) {
                                   if (piece.size() > largestBody - content.size()) {
                                       ended = "is larger than any file of a site";
                                       return false;
                                   }
                                   content += piece;
                                   return true;
                               },
                           .goOn =
                               [&](uint64_t received) {
                                   if (gf_stopping()) return false;
                                   if (left.lasts(received)) return true;
                                   ended = "no byte has come for 10 s";
                                   return false;
                               }});
    if (!ended.empty()) result.error = ended;
    return result;
}

bool gf_siteKnown() {
    if (!siteBase.empty()) return true;
    if (!absenceTold)
        gf_log("No data site in this build: airport files of the site and updates are not fetched");
    absenceTold = true;
    return false;
}

std::string gf_siteUrl(bool common) {
    return siteBase + (common || sim2020 ? "MSFS/" : "MSFS2024/");
}

std::string gf_siteFileUrl(std::string_view name) {
    return siteBase + std::string(name);
}

bool gf_download(const std::string& url, const fs::path& path, bool /*binary: bytes stay as they come*/) {
    if (!gf_siteKnown()) return false;
    try {
        std::string content;
        const bool writable = canWrite(path);
        if (writable && !lf_fetch(url, content).whole) return false;
        if (writable && gf_writeText(content, path, false)) return true;
        gf_log(fmt::format("Could not open output file: {}", gf_pathText(path)));
    } catch (const std::exception& error) {
        gf_log(fmt::format("Downloader exception: '{}', {} => {}", error.what(), url, gf_pathText(path)));
    }
    return false;
}

void gf_setSiteBase(std::string base) {
    siteBase = withSlash(std::move(base));
    absenceTold = false;
}

}  // namespace skl
