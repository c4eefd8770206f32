// Socket errors as the log shows them.
#pragma once

#include <string>

namespace skl {

/// The code in decimal, a blank, and the name of that Winsock error.
std::string gf_wsaText(int code);

}  // namespace skl
