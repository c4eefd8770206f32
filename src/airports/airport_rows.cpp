#include "airports/airport_rows.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

#include "core/text.h"

namespace skl {

namespace {

/// Takes a sign off the front; whether it was a minus.
bool takeSign(std::string_view& text) {
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) text.remove_prefix(1);
    return negative;
}

}  // namespace

std::optional<std::string_view> lf_rowText(const pugi::xml_document& document, std::string_view name) {
    for (const pugi::xml_node& parameters : document.children("parameters"))
        for (const pugi::xml_node& row : parameters.children("parameter"))
            if (name == row.attribute("name").value()) return row.attribute("value").value();
    return {};
}

std::optional<int32_t> lf_rowInt(const pugi::xml_document& document, std::string_view name) {
    const auto text = lf_rowText(document, name);
    if (!text) return {};
    const auto value = lf_readSaturated(*text);
    if (!value) gf_logError(fmt::format("Parameter {} '{}' is no number, left out", name, *text));
    return value;
}

std::optional<bool> lf_rowBool(const pugi::xml_document& document, std::string_view name) {
    const auto text = lf_rowText(document, name);
    if (!text) return {};
    return gf_parseBool(*text);
}

void lf_appendRow(pugi::xml_node parameters, const char* name, const std::string& value) {
    pugi::xml_node row = parameters.append_child("parameter");
    row.append_attribute("name") = name;
    row.append_attribute("value") = value.c_str();
}

std::optional<int32_t> lf_readSaturated(std::string_view text) {
    const std::string trimmed = gf_trim(text);
    text = trimmed;
    const bool negative = takeSign(text);
    const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
    if (hexadecimal) text.remove_prefix(2);
    uint64_t digits = 0;
    const auto result =
        std::from_chars(text.data(), text.data() + text.size(), digits, hexadecimal ? 16 : 10);
    if (result.ec == std::errc::invalid_argument) return {};
    constexpr auto highest = static_cast<uint64_t>(std::numeric_limits<int32_t>::max());
    if (result.ec == std::errc::result_out_of_range) digits = highest + 1;
    const auto bounded = static_cast<int64_t>(std::min(digits, negative ? highest + 1 : highest));
    return static_cast<int32_t>(negative ? -bounded : bounded);
}

std::optional<double> lf_readDecimal(std::string_view text) {
    const std::string trimmed = gf_trim(text);
    text = trimmed;
    if (text.starts_with('+')) text.remove_prefix(1);
    double value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec != std::errc{} || result.ptr != text.data() + text.size() || !std::isfinite(value))
        return {};
    return value;
}

}  // namespace skl
