// UTC times as texts.
#pragma once

#include <cstdint>
#include <string>

namespace skl {

std::string gf_timeString(int64_t seconds);  ///< "Mon Jan 02 15:04:05 2026" of seconds since 1970
std::string gf_timeOfDay();                  ///< "15:04:05" of now
std::string gf_dateString();                 ///< "Jan 02, 2026" of now
/// A section line of asterisks, `width` plus `extra` wide (rounded up to even), the title in its middle.
std::string gf_starLine(int width, int extra, bool newLineBefore, bool newLineAfter,
                        const std::string& title);

}  // namespace skl
