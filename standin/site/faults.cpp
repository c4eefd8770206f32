// Words and beginnings.
#include "standin/site/faults.h"

#include <array>

#include "standin/common/text.h"

namespace site {

namespace {

constexpr std::array<standin::CommandForm, 5> kForms{{
    {"serve", 1, 1},
    {"missing", 1, 1},
    {"cut", 1, 2},
    {"slow", 1, 2},
    {"hang", 1, 2},
}};

}  // namespace

std::span<const standin::CommandForm> faultForms() {
    return kForms;
}

Fault faultOf(std::string_view name, const std::vector<std::string>& arguments) {
    Fault fault{arguments.at(0), FaultKind::kServe, {}};
    if (arguments.size() > 1) {
        fault.amount = standin::numberOf(arguments[1]);
    }
    for (std::size_t i = 0; i < kForms.size(); ++i) {
        if (kForms[i].name == name) {
            fault.kind = static_cast<FaultKind>(i);
        }
    }
    return fault;
}

Fault Faults::of(std::string_view path) const {
    const Fault* best = nullptr;
    for (const auto& [beginning, fault] : byPath_) {
        if (path.starts_with(beginning) && (best == nullptr || beginning.size() > best->path.size())) {
            best = &fault;
        }
    }
    return best != nullptr ? *best : Fault{};
}

}  // namespace site
