// The message line of the panel: one text for the present moment, or one error that outranks all messages.
// Any thread; guarded by g_panelLock.
#pragma once

#include <string>
#include <string_view>

namespace skl {

void gf_showMessage(std::string_view text, bool alsoLog);
void gf_clearMessage();
void gf_showError(std::string_view text);
/// Counts g_messageAge up, and takes the message away when it has stood for 25 heartbeats. Worker, at each
/// heartbeat.
void gf_ageMessage();
/// Empties both texts, an error too.
void gf_resetMessages();

/// The text of what a thread's outermost frame has caught; call it inside a catch block.
std::string gf_currentExceptionText();

}  // namespace skl
