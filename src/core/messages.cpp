// Priority and age of the message line.
#include "core/messages.h"

#include <fmt/format.h>

#include <algorithm>
#include <exception>

#include "core/locks.h"
#include "core/log.h"
#include "core/run_state.h"
#include "panel/panel_state.h"

namespace skl {

namespace {

constexpr int32_t longestStay = 25;  // heartbeats

}  // namespace

void gf_showMessage(std::string_view text, bool alsoLog) {
    LockGuard guard(g_panelLock);
    if (!g_panel.errorText.empty()) return;
    g_panel.statusText = text;
    g_panel.messageStamp = text.empty() ? 0 : std::max(1, g_messageAge.load());
    if (alsoLog && !text.empty()) gf_logRunning(text);
    gf_invalidate(Band::message);
}

void gf_clearMessage() {
    gf_showMessage("", false);
}

void gf_showError(std::string_view text) {
    LockGuard guard(g_panelLock);
    g_panel.statusText.clear();
    g_panel.messageStamp = 0;
    g_panel.errorText = text;
    gf_logRunning(fmt::format("Error {}", text));
    gf_invalidate(Band::message);
}

void gf_ageMessage() {
    const int32_t age = ++g_messageAge;
    LockGuard guard(g_panelLock);
    const int32_t stamp = g_panel.messageStamp;
    if (stamp >= 1 && age - stamp >= longestStay) gf_clearMessage();
}

void gf_resetMessages() {
    LockGuard guard(g_panelLock);
    g_panel.statusText.clear();
    g_panel.errorText.clear();
    g_panel.messageStamp = 0;
    gf_invalidate(Band::message);
}

std::string gf_currentExceptionText() {
    try {
        throw;
    } catch (const fmt::format_error& error) {
        return fmt::format("std::format error: {}", error.what());
    } catch (const std::exception& error) {
        return error.what();
    } catch (...) {
        return "Unknown exception";
    }
}

}  // namespace skl
