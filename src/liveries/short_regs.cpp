// A title has some two hundred pieces of one to five bytes, a database hundreds of thousands of
// registrations: so the pieces are looked up, and the registrations are never walked.
#include "liveries/short_regs.h"

#include <array>

#include "core/fnv.h"

namespace skl {

namespace {

StringMap<size_t> rankOfReg;                      // rank: place in the file
std::array<bool, maxShortReg + 1> lengthPresent;  // lengths without any registration need no look

}  // namespace

void lf_addShortReg(std::string_view registration) {
    if (registration.empty() || registration.size() > maxShortReg) return;
    rankOfReg.emplace(registration, rankOfReg.size());
    lengthPresent[registration.size()] = true;
}

std::optional<std::string> lf_findShortReg(std::string_view title) {
    auto best = rankOfReg.end();
    for (size_t length = 1; length <= maxShortReg; ++length) {
        if (!lengthPresent[length]) continue;
        for (size_t start = 0; start + length <= title.size(); ++start) {
            const auto it = rankOfReg.find(title.substr(start, length));
            if (it != rankOfReg.end() && (best == rankOfReg.end() || it->second < best->second)) best = it;
        }
    }
    if (best == rankOfReg.end()) return std::nullopt;
    return best->first;
}

void lf_clearShortRegs() {
    rankOfReg.clear();
    lengthPresent.fill(false);
}

}  // namespace skl
