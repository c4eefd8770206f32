// The rows <parameter name="" value=""/> below <parameters>, and numbers as the airport files hold them.
#pragma once

#include <fmt/format.h>

#include <cstdint>
#include <optional>
#include <pugixml.hpp>
#include <string>
#include <string_view>

#include "core/log.h"

namespace skl {

/// The value of the first row of this name; nothing without one. Valid as long as the document.
std::optional<std::string_view> lf_rowText(const pugi::xml_document& document, std::string_view name);
/// The row as a number; one that holds none is logged and counts as absent.
std::optional<int32_t> lf_rowInt(const pugi::xml_document& document, std::string_view name);
std::optional<bool> lf_rowBool(const pugi::xml_document& document, std::string_view name);
void lf_appendRow(pugi::xml_node parameters, const char* name, const std::string& value);

/// A decimal or 0x hexadecimal number with an optional sign, stopped at the bounds of 32 bits; what follows
/// the digits does not count. Nothing if there are none.
std::optional<int32_t> lf_readSaturated(std::string_view text);
/// The text as a whole, blanks round it aside, as a finite decimal number.
std::optional<double> lf_readDecimal(std::string_view text);

template <class Value>
void lf_logRow(std::string_view name, const Value& value) {
    gf_log(fmt::format("{:24}: {}", name, value));
}

}  // namespace skl
