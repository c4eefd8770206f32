// What goes wrong at which paths.
#pragma once

#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "standin/common/script.h"

namespace site {

enum class FaultKind { kServe, kMissing, kCut, kSlow, kHang };

struct Fault {
    std::string path;  // the beginning of the paths that it holds for
    FaultKind kind = FaultKind::kServe;
    std::optional<double> amount;  // bytes, or bytes a second
};

// The words of scripts and, with dashes, of the command line: "missing", "cut" and so on.
std::span<const standin::CommandForm> faultForms();
// One of the forms with its arguments: a path and perhaps a number.
Fault faultOf(std::string_view name, const std::vector<std::string>& arguments);

class Faults {
  public:
    void set(const Fault& fault) { byPath_[fault.path] = fault; }
    // The one with the longest beginning, or one that serves.
    Fault of(std::string_view path) const;

  private:
    std::map<std::string, Fault, std::less<>> byPath_;
};

}  // namespace site
