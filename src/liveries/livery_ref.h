// A title held by the livery catalogue: not owned, compared by content. Valid for one run: every holder is
// emptied before the catalogue is.
#pragma once

#include <string_view>

namespace skl {

using LiveryRef = std::string_view;

}  // namespace skl
