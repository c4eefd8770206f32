// The panel's window by FLTK on X11.
#include <FL/Fl.H>
#include <FL/Fl_Double_Window.H>
#include <FL/Fl_Tooltip.H>
#include <FL/fl_draw.H>
#include <FL/x.H>
#include <X11/Xlib.h>
#include <X11/Xresource.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>
#include <thread>
#include <utility>

#include "platform/fltk/canvas_fltk.h"
#include "platform/fltk/controls_fltk.h"
#include "platform/window.h"

namespace skl::platform {

namespace {

constexpr int clientWidth = 880, clientHeight = 476;
constexpr double normalDpi = 96;
constexpr int rowHeight = 28;  // of the options; controls of one row differ by less than half of it

/// The desktop's setting where there is one, else what the screen says of itself.
double screenDpi(int x, int y) {
    if (const char* setting = XGetDefault(fl_display, "Xft", "dpi"))
        if (const double dpi = std::atof(setting); dpi > 0) return dpi;
    float across = 0, down = 0;
    Fl::screen_dpi(across, down, Fl::screen_num(x, y));
    return across;
}

/// One factor for everything, in quarters, so that lines stay crisp.
Scale chooseScale(int x, int y) {
    const double quarters = std::round(screenDpi(x, y) / normalDpi * 4);
    return Scale{std::clamp(quarters / 4, 1.0, 3.0)};
}

class PanelArea : public Fl_Double_Window {
  public:
    PanelArea(int x, int y, Scale scale, const WindowEvents& events)
        : Fl_Double_Window(x, y, scale.of(clientWidth), scale.of(clientHeight)),
          scale_(scale),
          events_(events) {
        size_range(w(), h(), w(), h());
    }
    uint64_t paints = 0;

  private:
    void draw() override {
        if ((damage() & ~FL_DAMAGE_CHILD) == 0) {
            for (int n = 0; n < children(); ++n) update_child(*child(n));
            return;
        }
        ++paints;
        int x = 0, y = 0, width = 0, height = 0;
        fl_clip_box(0, 0, w(), h(), x, y, width, height);
        CanvasFltk canvas(scale_);
        const auto back = [&](int pixels) { return static_cast<int>(std::floor(pixels / scale_.factor)); };
        events_.paint(canvas, {back(x), back(y), back(x + width) + 1, back(y + height) + 1});
        for (int n = 0; n < children(); ++n) draw_child(*child(n));
    }
    Scale scale_;
    const WindowEvents& events_;
};

Display* connection = nullptr;  ///< made by the first look whether there is a screen
bool displayLost = false;

/// Xlib, and FLTK's handler, would end the process; here the program is told and ends in order.
int passOver(Display*) {
    return 0;
}
void noteLostDisplay(Display*, void*) {
    displayLost = true;
}

class WindowFltk : public Window {
  public:
    WindowFltk(const std::string& title, int x, int y, std::vector<ControlSpec> controls, WindowEvents events)
        : events_(std::move(events)), scale_(chooseScale(x, y)) {
        Fl_Tooltip::size(scale_.of(textSize));
        area_ = new PanelArea(x, y, scale_, events_);
        area_->copy_label(title.c_str());
        area_->callback([](Fl_Widget*, void* self) { static_cast<WindowFltk*>(self)->closeAsked(); }, this);
        const auto row = [](const ControlSpec& spec) { return (spec.y + rowHeight / 2) / rowHeight; };
        std::stable_sort(controls.begin(), controls.end(), [&](const ControlSpec& a, const ControlSpec& b) {
            return std::pair(row(a), a.x) < std::pair(row(b), b.x);
        });
        for (const ControlSpec& spec : controls) controls_[spec.id] = makeControl(spec, scale_, events_);
        area_->end();
        area_->show();
        XSetIOErrorHandler(passOver);
        XSetIOErrorExitHandler(fl_display, noteLostDisplay, nullptr);
    }
    ~WindowFltk() override {
        if (!displayLost) delete area_;
    }
    WindowFltk(const WindowFltk&) = delete;
    WindowFltk& operator=(const WindowFltk&) = delete;

    void pump(std::chrono::milliseconds patience) override {
        if (!displayLost) Fl::wait(std::chrono::duration<double>(patience).count());
        if (!displayLost) return;
        if (!std::exchange(lossTold_, true)) events_.closed();
        std::this_thread::sleep_for(patience);
    }
    void invalidate(const Rect& rect) override {
        const int x = scale_.of(rect.left), y = scale_.of(rect.top);
        area_->damage(FL_DAMAGE_USER1, x, y, scale_.of(rect.right) - x, scale_.of(rect.bottom) - y);
    }
    void setControl(int id, const ControlState& state, bool refresh) override {
        if (const auto found = controls_.find(id); found != controls_.end())
            found->second->show(state, refresh);
    }
    void setTopmost(bool topmost) override {
        if (displayLost) return;
        XEvent event{};
        event.xclient.type = ClientMessage;
        event.xclient.window = fl_xid(area_);
        event.xclient.message_type = XInternAtom(fl_display, "_NET_WM_STATE", False);
        event.xclient.format = 32;
        event.xclient.data.l[0] = topmost ? 1 : 0;
        event.xclient.data.l[1] = static_cast<long>(XInternAtom(fl_display, "_NET_WM_STATE_ABOVE", False));
        XSendEvent(fl_display, RootWindow(fl_display, fl_screen), False,
                   SubstructureNotifyMask | SubstructureRedirectMask, &event);
    }
    void position(int& x, int& y) const override {
        x = area_->x();
        y = area_->y();
    }
    uint64_t paints() const override { return area_->paints; }

  private:
    void closeAsked() {
        // FLTK closes a window by Escape as well; this one only by its button.
        if (Fl::event() == FL_SHORTCUT && Fl::event_key() == FL_Escape) return;
        events_.closed();
    }

    WindowEvents events_;
    Scale scale_;
    PanelArea* area_ = nullptr;
    std::map<int, std::unique_ptr<ControlFltk>> controls_;
    bool lossTold_ = false;
};

}  // namespace

bool displayAvailable() {
    // FLTK ends the process when it cannot connect. The connection is kept for it: a bare server begins anew
    // when its only client goes.
    if (!fl_display && !connection) connection = XOpenDisplay(nullptr);
    return fl_display || connection;
}

std::unique_ptr<Window> openWindow(const std::string& title, int x, int y, std::vector<ControlSpec> controls,
                                   WindowEvents events) {
    if (!displayAvailable()) return nullptr;
    if (!fl_display) fl_open_display(connection);
    Fl::set_font(FL_HELVETICA, " Liberation Sans");
    Fl::visible_focus(1);
    return std::make_unique<WindowFltk>(title, x, y, std::move(controls), std::move(events));
}

}  // namespace skl::platform
