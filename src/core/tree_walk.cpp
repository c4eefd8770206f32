#include "core/tree_walk.h"

#include <algorithm>
#include <system_error>
#include <vector>

#include "core/fnv.h"
#include "core/run_state.h"
#include "core/text.h"
#include "platform/system.h"

namespace skl {

namespace fs = std::filesystem;

namespace {

class Walk {
  public:
    Walk(const TreeVisitor& visitor, std::string& place) : visitor_(visitor), place_(place) {}

    void run(const fs::path& root) {
        std::error_code error;
        const fs::path canonical = fs::canonical(root, error);
        if (error) throw TreeWalkProblem(error.message());
        entered_.insert(gf_pathText(canonical));
        walkFolder(root, canonical, false);
    }

  private:
    static std::vector<fs::directory_entry> entriesOf(const fs::path& folder, bool mayFail) {
        std::error_code error;
        std::vector<fs::directory_entry> entries;
        fs::directory_iterator it(folder, error);
        for (; !error && it != fs::directory_iterator(); it.increment(error)) entries.push_back(*it);
        if (error && !mayFail) throw TreeWalkProblem(error.message());
        std::sort(entries.begin(), entries.end(),
                  [](const auto& a, const auto& b) { return a.path().native() < b.path().native(); });
        return entries;
    }

    void walkFolder(const fs::path& folder, const fs::path& canonical, bool mayFail) {
        for (const auto& entry : entriesOf(folder, mayFail)) {
            if (gf_stopping()) return;
            place_ = gf_pathText(entry.path());
            std::error_code ignored;
            if (!entry.is_directory(ignored))
                visitor_.visit(entry, place_);
            else if (!visitor_.skipsFolder(place_))
                descend(entry, canonical);
        }
    }

    void descend(const fs::directory_entry& entry, const fs::path& canonicalParent) {
        std::error_code error;
        fs::path canonical = platform::linkTarget(entry, error);
        if (canonical.empty()) canonical = canonicalParent / entry.path().filename();
        if (!error && entered_.insert(gf_pathText(canonical)).second)
            walkFolder(entry.path(), canonical, visitor_.skipsUnreadable);
    }

    const TreeVisitor& visitor_;
    std::string& place_;
    StringSet entered_;
};

}  // namespace

void gf_walkTree(const fs::path& root, const TreeVisitor& visitor, std::string& place) {
    Walk(visitor, place).run(root);
}

}  // namespace skl
