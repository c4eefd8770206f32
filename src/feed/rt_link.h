// What the tests need of the link beyond feed.h.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace skl {

/// The port that is listened on; 0 while there is no listener.
uint16_t lf_listenPort();
/// The length of the JSON object at the start of `text` (blanks in front included); nothing while its end has
/// not come. Text that begins otherwise can never become an object: its whole length.
std::optional<size_t> lf_replyLength(std::string_view text);
/// What the reply to the version question tells, for the panel and `rtLevel2`; a text that is no object tells
/// nothing.
void lf_readVersion(const std::string& reply);

}  // namespace skl
