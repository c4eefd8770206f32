#include <fmt/format.h>

#include <cmath>
#include <exception>
#include <string>

#include "core/log.h"
#include "panel/paint_parts.h"
#include "platform/text_conversion.h"

namespace skl {

namespace {

/// A text that stays wrong is met at each paint: told once.
void logOnce(const std::string& line) {
    static std::string last;
    if (line == last) return;
    last = line;
    gf_logError(line);
}

}  // namespace

void lf_text(platform::Canvas& canvas, int x, int y, std::string_view text, platform::Colour colour) {
    if (text.empty()) return;
    try {
        canvas.text(x, y, text, colour);
    } catch (const win32::Utf8ConversionException& error) {
        logOnce(
            fmt::format("{} conversion exception {}, error code: {}", "lf_text", error.what(), error.code()));
    } catch (const std::exception& error) {
        logOnce(fmt::format("{} {}", "lf_text", error.what()));
    }
}

void lf_textEnabled(platform::Canvas& canvas, int x, int y, std::string_view text, bool enabled) {
    lf_text(canvas, x, y, text, enabled ? colours::black : colours::grey);
}

std::string lf_shortNumber(float number) {
    return number == std::floor(number) ? fmt::format("{:.0f}", number) : fmt::format("{:.1f}", number);
}

}  // namespace skl
