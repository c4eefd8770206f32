// What happens when the user touches a control. All on the panel's thread; work on the worker's tables is
// handed over by the flags of requests.h. An exception ends the handler and is logged.
#pragma once

#include <string>
#include <string_view>

namespace skl {

/// The window's close button, or its like: says so and asks for the end of the process. Any thread.
void gf_closeButton();
/// A check box or a button.
void gf_controlClicked(int id);
/// Entry `index` of a combo box was chosen.
void gf_controlSelected(int id, int index);
/// Enter was pressed in an edit box that shows `text`.
void gf_controlEntered(int id, std::string_view text);

}  // namespace skl
