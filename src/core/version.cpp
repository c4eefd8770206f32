#include "core/version.h"

#include <fmt/format.h>

#include "core/text.h"

namespace skl {

std::string VersionData::text() const {
    return fmt::format("{}.{}.{}", major, minor, patch);
}

VersionData VersionData::parse(std::string_view text) {
    VersionData version;
    for (int32_t VersionData::*number : {&VersionData::major, &VersionData::minor, &VersionData::patch}) {
        const size_t dot = text.find('.');
        version.*number = gf_readInt(gf_trim(text.substr(0, dot))).value_or(0);
        if (dot == std::string_view::npos) break;
        text.remove_prefix(dot + 1);
    }
    return version;
}

}  // namespace skl
