// Versions of the program and of its data.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace skl {

struct VersionData {
    int32_t major = 0;
    int32_t minor = 0;
    int32_t patch = 0;
    auto operator<=>(const VersionData&) const = default;
    std::string text() const;  ///< "{}.{}.{}"
    /// Missing or broken numbers count as 0.
    static VersionData parse(std::string_view text);
};

inline constexpr VersionData programVersion{11, 0, 3};

}  // namespace skl
