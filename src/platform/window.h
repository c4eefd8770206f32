// The program's window behind one interface, so that paint and handlers are the same code everywhere. All of
// it on the thread that made it. Knows nothing of the program.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/canvas.h"

namespace skl::platform {

enum class ControlKind { check, button, edit, combo };

struct ControlSpec {
    ControlKind kind{};
    int id = 0;
    int x = 0, y = 0, width = 0;  ///< the row's y; the backend knows what each kind adds to it
    int dropHeight = 0;           ///< of a combo's list
    std::string caption;          ///< of a button
    std::string tip;
};

/// What a control shows.
struct ControlState {
    bool enabled = false;
    bool checked = false;
    std::string text;                ///< of an edit, and the chosen entry of a combo
    std::vector<std::string> items;  ///< of a combo
    bool operator==(const ControlState&) const = default;
};

/// What the window tells, all on its own thread, out of `pump`.
struct WindowEvents {
    std::function<void(Canvas&, const Rect& area)> paint;  ///< clipped to the area
    std::function<void(int id)> clicked;
    std::function<void(int id, int index)> selected;
    std::function<void(int id, const std::string& text)> entered;  ///< Enter in an edit
    std::function<void()> closed;                                  ///< the close button
    /// The user's session ends, and the process with it as soon as this returns; it has some 5 s.
    std::function<void()> sessionEnds;
    /// Some 20 times a second while the system itself holds `pump` up, as for a window that is being dragged.
    std::function<void()> heldUp;
};

class Window {
  public:
    virtual ~Window() = default;
    /// Handles what has come, and waits up to `patience` for more.
    virtual void pump(std::chrono::milliseconds patience) = 0;
    virtual void invalidate(const Rect& area) = 0;
    /// Shows what differs from the state set before. What the user is typing stays, unless the text itself
    /// differs or `refresh` says that the control is to show its state again.
    virtual void setControl(int id, const ControlState& state, bool refresh = false) = 0;
    virtual void setTopmost(bool topmost) = 0;
    virtual void position(int& x, int& y) const = 0;
    /// Paints made since the start: for tests and figures.
    virtual uint64_t paints() const = 0;
};

/// Whether there is a screen to open a window on; asked before anything of the toolkit is touched.
bool displayAvailable();
/// Opens the window with a client area of 880 by 476, scaled by the screen's density, at a place in pixels of
/// the screen. The controls are made in reading order, which is the order of Tab. nullptr without a screen.
std::unique_ptr<Window> openWindow(const std::string& title, int x, int y, std::vector<ControlSpec> controls,
                                   WindowEvents events);

}  // namespace skl::platform
