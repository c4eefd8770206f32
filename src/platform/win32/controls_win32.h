// The panel's controls as child windows of the system's own classes. Each shows a ControlState and tells what
// the user did.
#pragma once

#include <windows.h>

#include <memory>

#include "platform/win32/canvas_win32.h"
#include "platform/window.h"

namespace skl::platform {

/// The colour of the band that the controls stand on.
inline constexpr Colour bandColour{153, 204, 255};

/// What the controls of a window share.
struct ControlParent {
    HWND window = nullptr;
    HWND tips = nullptr;
    Scale scale;
    HGDIOBJ font = nullptr, editFont = nullptr;
};

class ControlWin32 {
  public:
    virtual ~ControlWin32() = default;
    virtual void show(const ControlState& state, bool refresh) = 0;
    /// Handles the code of a WM_COMMAND that comes from this control.
    virtual void command(unsigned code) = 0;
    /// Goes back to the state that was set, where the user's doing did not change it.
    virtual void settle() = 0;
};

/// Makes the child window, which its parent destroys; the object has to outlive it. `events` has to outlive
/// both.
std::unique_ptr<ControlWin32> makeControl(const ControlSpec& spec, const ControlParent& parent,
                                          const WindowEvents& events);

/// The size of the text in edit boxes, which leave less room.
inline constexpr int editTextSize = 12;

/// A number of the system as the pointer that it takes in the place of a name.
const wchar_t* resourceName(unsigned number);
WPARAM commandParameter(unsigned low, unsigned high);
unsigned lowWord(WPARAM parameter);
unsigned highWord(WPARAM parameter);

}  // namespace skl::platform
