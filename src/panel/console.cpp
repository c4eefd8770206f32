#include "panel/console.h"

#include <fmt/format.h>

#include <cstdio>
#include <string_view>

#include "core/time_text.h"
#include "panel/status_line.h"
#include "platform/system.h"

namespace skl {

namespace {

constexpr Nanos terminalInterval = std::chrono::seconds(1);
constexpr Nanos plainInterval = std::chrono::seconds(5);
constexpr const char* clearLine = "\r\033[K";

void write(std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fflush(stdout);
}

/// As much of a line as fits, without half a character at its end.
std::string_view cut(std::string_view line, int columns) {
    if (columns < 1) return line;
    size_t end = 0;
    for (int seen = 0; end < line.size(); ++end) {
        const bool begins = (static_cast<unsigned char>(line[end]) & 0xC0) != 0x80;
        if (begins && seen++ == columns - 1) break;
    }
    return line.substr(0, end);
}

}  // namespace

Console::Console()
    : terminal_(platform::terminalColumns() > 0),
      nextStatus_(gf_steadyNow() + (terminal_ ? Nanos::zero() : plainInterval)) {}

void Console::show() {
    showMessage();
    showStatus();
}

void Console::showMessage() {
    const std::string message = gf_messageLine();
    if (message == lastMessage_) return;
    lastMessage_ = message;
    if (message.empty()) return;
    write(fmt::format("{}{}\n", statusDrawn_ ? clearLine : "", message));
    statusDrawn_ = false;
    if (terminal_) nextStatus_ = gf_steadyNow();
}

void Console::showStatus() {
    const Nanos now = gf_steadyNow();
    if (now < nextStatus_) return;
    nextStatus_ = now + (terminal_ ? terminalInterval : plainInterval);
    const std::string airport = gf_airportLine();
    if (terminal_) {
        const std::string line = airport.empty() ? gf_statusLine() : airport + " | " + gf_statusLine();
        write(fmt::format("{}{}", statusDrawn_ ? clearLine : "", cut(line, platform::terminalColumns())));
        statusDrawn_ = true;
        return;
    }
    write(fmt::format("{} {}\n", gf_timeOfDay(), gf_statusLine()));
    if (!airport.empty()) write(fmt::format("{} {}\n", gf_timeOfDay(), airport));
}

}  // namespace skl
