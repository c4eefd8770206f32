#include "tools/datakit/site_files.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <system_error>
#include <thread>
#include <vector>

#include "airports/airport_file.h"
#include "airports/site_documents.h"
#include "core/folders.h"
#include "core/text.h"
#include "distribution/site.h"
#include "tools/datakit/output_file.h"
#include "tools/datakit/site_tree.h"

namespace skl::datakit {

namespace {

constexpr int notFound = 404, gone = 410, firstRedirect = 300, firstError = 400;
constexpr int mostSilent = 8;        // a site that gives no answer so often is gone
constexpr size_t fetchesAtOnce = 4;  // as many as a browser has, so that no server minds
constexpr size_t longestName = 200;  // of a folder or file
constexpr std::string_view slash = "/";

bool isAddress(std::string_view site) {
    return site.starts_with("http://") || site.starts_with("https://");
}

/// The address of downloads/, with a slash at its end.
std::string baseOf(std::string site) {
    while (site.ends_with(slash)) site.pop_back();
    if (!site.ends_with(fmt::format("/{}", site_tree::downloads)))
        site += fmt::format("/{}", site_tree::downloads);
    return site + '/';
}

/// Whether it names a file below its folder: names come out of files that anybody may have written.
bool isPlain(const std::string& name) {
    const fs::path path = gf_pathFromText(name);
    return !path.is_absolute() && std::none_of(path.begin(), path.end(), [](const fs::path& part) {
        return part == ".." || gf_pathText(part).size() > longestName;
    });
}

}  // namespace

SiteFiles::SiteFiles(const std::string& site) : baseBefore_(gf_siteFileUrl("")), before2020_(sim2020) {
    if (isAddress(site)) {
        mirror_.emplace();
        folder_ = mirror_->path();
    } else {
        folder_ = downloadsOf(gf_pathFromText(site));
        std::error_code error;
        if (!fs::is_directory(folder_, error)) throw Failure(gf_pathText(folder_) + ": is no folder");
    }
    gf_setSiteBase(served() ? baseOf(site) : "");
    gf_forgetProbes();
}

SiteFiles::~SiteFiles() {
    gf_setSiteBase(baseBefore_);
    gf_forgetProbes();
    sim2020 = before2020_;
}

fs::path SiteFiles::local(const std::string& name) const {
    return folder_ / gf_pathFromText(name);
}

/// The program fetches airport files by its own rule of the simulator and of blanks.
std::string SiteFiles::address(const std::string& name) const {
    for (const std::string_view simulator : {site_tree::common, site_tree::of2024}) {
        const std::string front = fmt::format("{}/", simulator);
        if (!name.starts_with(front)) continue;
        sim2020 = simulator == site_tree::common;
        return lf_siteDocumentUrl(std::string_view(name).substr(front.size()));
    }
    return gf_siteFileUrl(name);
}

std::string SiteFiles::shown(const std::string& name) const {
    return served() ? address(name) : gf_pathText(local(name));
}

SiteFiles::Answer SiteFiles::look(const std::string& name) {
    if (!served()) {
        std::error_code ignored;
        return fs::is_regular_file(local(name), ignored) ? Answer::here : Answer::missing;
    }
    auto known = looked_.find(name);
    if (known == looked_.end()) {
        Looked looked{Answer::failed, "is no name of a file"};
        if (isPlain(name)) looked = fetch(address(name), local(name));
        // Nobody waits for the rest of a site whose first file does not come.
        if (looked_.empty() && silent_ > 0)
            throw Failure(fmt::format("{}: {}", address(name), looked.trouble));
        known = looked_.emplace(name, std::move(looked)).first;
        stopIfSilent();
    }
    return known->second.answer;
}

void SiteFiles::lookAhead(const std::set<std::string>& names, Progress& progress) {
    if (!served()) return;
    struct Wanted {
        const std::string* name;
        std::string url;
        Looked looked;
    };
    std::vector<Wanted> wanted;
    for (const std::string& name : names)
        if (isPlain(name) && !looked_.contains(name)) wanted.push_back({&name, address(name), {}});
    std::atomic<size_t> next{0};
    const auto work = [&](Progress* shown) {
        for (size_t i; silent_ < mostSilent && (i = next++) < wanted.size();) {
            wanted[i].looked = fetch(wanted[i].url, local(*wanted[i].name));
            if (shown) shown->reach(i + 1);
        }
    };
    {
        std::array<std::jthread, fetchesAtOnce - 1> helpers;
        for (std::jthread& helper : helpers) helper = std::jthread(work, nullptr);
        work(&progress);
    }
    stopIfSilent();
    for (Wanted& file : wanted) looked_[*file.name] = std::move(file.looked);
}

/// On any thread.
SiteFiles::Looked SiteFiles::fetch(const std::string& url, const fs::path& path) {
    try {
        std::string content;
        const platform::HttpResult result = lf_fetch(url, content);
        if (result.status == 0)
            ++silent_;
        else
            silent_ = 0;
        if (result.whole) {
            replaceIfChanged(path, content);
            return {Answer::here, {}};
        }
        if (result.status == notFound || result.status == gone) return {Answer::missing, {}};
        if (!result.error.empty()) return {Answer::failed, result.error};
        if (result.status >= firstRedirect && result.status < firstError)
            return {Answer::failed,
                    fmt::format("status {}: the program follows no redirection", result.status)};
        return {Answer::failed, fmt::format("status {}", result.status)};
    } catch (const std::exception& error) {
        return {Answer::failed, error.what()};
    }
}

void SiteFiles::stopIfSilent() const {
    if (silent_ >= mostSilent)
        throw Failure(gf_siteFileUrl("") + ": gives no answer any more, the check is not done");
}

std::set<std::string> SiteFiles::below(const std::string& folder) const {
    std::set<std::string> names;
    std::error_code ignored;
    if (!fs::is_directory(local(folder), ignored)) return names;
    for (const auto& entry : fs::recursive_directory_iterator(local(folder)))
        if (entry.is_regular_file()) names.insert(gf_pathText(entry.path().lexically_relative(folder_)));
    return names;
}

}  // namespace skl::datakit
