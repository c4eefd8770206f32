// A site that is looked at: a folder, or the address of one that is served. Of the latter each file is
// fetched when it is asked for, from where the program fetches it and as the program does it, into a folder
// of its own.
#pragma once

#include <atomic>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>

#include "tools/datakit/findings.h"
#include "tools/datakit/program_log.h"

namespace skl::datakit {

/// Files are called by their paths below downloads/, such as "MSFS/archive/stock/EGLL.xml".
class SiteFiles {
  public:
    enum class Answer { here, missing, failed };

    /// `site` is a folder, or begins with http:// or https://. While a served one lives the program's own
    /// fetching goes to it, else to no site at all. Throws Failure for a folder that is not there.
    explicit SiteFiles(const std::string& site);
    ~SiteFiles();
    SiteFiles(const SiteFiles&) = delete;
    SiteFiles& operator=(const SiteFiles&) = delete;

    bool served() const { return mirror_.has_value(); }
    /// Throws Failure when a served site gives no answer any more.
    Answer look(const std::string& name);
    /// Looks at all of them, several at a time.
    void lookAhead(const std::set<std::string>& names, Progress& progress);
    /// Why look() gave "failed".
    const std::string& trouble(const std::string& name) const { return looked_.at(name).trouble; }
    /// Where a file lies that is here.
    std::filesystem::path local(const std::string& name) const;
    /// As the user is told of it: its path, or its address.
    std::string shown(const std::string& name) const;
    /// All files below a folder of a site that is not served.
    std::set<std::string> below(const std::string& folder) const;

  private:
    struct Looked {
        Answer answer = Answer::missing;
        std::string trouble;
    };
    std::string address(const std::string& name) const;
    Looked fetch(const std::string& url, const std::filesystem::path& path);
    void stopIfSilent() const;

    std::optional<TemporaryFolder> mirror_;
    std::filesystem::path folder_;  ///< downloads/, or what is made of it
    std::string baseBefore_;
    bool before2020_;
    std::map<std::string, Looked> looked_;  ///< of a served site
    std::atomic<int> silent_{0};            ///< fetches without an answer, in a row
};

}  // namespace skl::datakit
