// The short registrations of the reference database, which liveries carry in their titles. Filled with the
// database, constant afterwards.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace skl {

inline constexpr size_t maxShortReg = 5;  ///< bytes

/// Notes a registration of 1 to maxShortReg bytes, in file order; others are ignored.
void lf_addShortReg(std::string_view registration);
/// The first one in file order that stands in `title`.
std::optional<std::string> lf_findShortReg(std::string_view title);
void lf_clearShortRegs();

}  // namespace skl
