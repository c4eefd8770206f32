// What the tests need of the link beyond feed.h.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace skl {

/// The port that is listened on; 0 while there is no listener.
uint16_t lf_listenPort();
/// The length of the JSON object at the start of `text` (blanks in front included); nothing while its end has
/// not come. Text that begins otherwise can never become an object: its whole length.
std::optional<size_t> lf_replyLength(std::string_view text);

}  // namespace skl
