#include "panel/panel_window.h"

#include <algorithm>
#include <vector>

#include "core/log.h"
#include "core/messages.h"
#include "core/parameter_store.h"
#include "core/parameters.h"
#include "core/run_state.h"
#include "core/supervisor.h"
#include "panel/commands.h"
#include "panel/control_table.h"
#include "panel/paint.h"
#include "panel/panel_state.h"
#include "panel/panel_view.h"
#include "platform/window.h"

#include <fmt/format.h>

namespace skl {

namespace {

constexpr Band bands[] = {Band::title, Band::status, Band::options, Band::parking, Band::message};

/// A control and what the window shows of it.
struct Shown {
    const PanelControl* control;
    platform::ControlState state;
    uint32_t refreshes;
};

/// Below the 5 s after which a program counts as hanging at the session's end.
constexpr std::chrono::milliseconds sessionPatience{4000};

platform::WindowEvents events(PanelWindow& panel) {
    return {
        [](platform::Canvas& canvas, const platform::Rect& area) { lf_paint(gf_panelView(), canvas, area); },
        gf_controlClicked,
        gf_controlSelected,
        [](int id, const std::string& text) { gf_controlEntered(id, text); },
        gf_closeButton,
        [&panel] { panel.endWithSession(); },
        [&panel] { panel.showChanges(); }};
}

}  // namespace

struct PanelWindow::Parts {
    std::unique_ptr<platform::Window> window;
    std::vector<Shown> shown;
    bool topmost = false;
};

PanelWindow::PanelWindow() : parts_(std::make_unique<Parts>()) {}
PanelWindow::~PanelWindow() = default;

std::unique_ptr<PanelWindow> PanelWindow::open() {
    if (!platform::displayAvailable()) return nullptr;
    gf_readWindowPlace();
    std::vector<platform::ControlSpec> specs;
    for (const PanelControl& control : gf_panelControls()) specs.push_back(gf_controlSpec(control));
    std::unique_ptr<PanelWindow> panel(new PanelWindow);
    Parts& parts = *panel->parts_;
    parts.window = platform::openWindow(std::string(programName), MAIN_WINDOW_X.value, MAIN_WINDOW_Y.value,
                                        std::move(specs), events(*panel));
    if (!parts.window) return nullptr;
    for (const PanelControl& control : gf_panelControls()) {
        parts.shown.push_back({&control, gf_controlState(control), control.parameter.refreshes});
        parts.window->setControl(control.parameter.controlId, parts.shown.back().state, true);
    }
    return panel;
}

void PanelWindow::serve(std::chrono::milliseconds patience) {
    parts_->window->pump(patience);
    showChanges();
}

void PanelWindow::showChanges() {
    for (Shown& shown : parts_->shown) {
        auto state = gf_controlState(*shown.control);
        const uint32_t refreshes = shown.control->parameter.refreshes;
        if (state == shown.state && refreshes == shown.refreshes) continue;
        parts_->window->setControl(shown.control->parameter.controlId, state, refreshes != shown.refreshes);
        shown.state = std::move(state);
        shown.refreshes = refreshes;
    }
    if (const bool topmost = ALWAYS_ON_TOP.value; topmost != parts_->topmost) {
        parts_->window->setTopmost(topmost);
        parts_->topmost = topmost;
    }
    const unsigned invalidated = gf_takeInvalidated();
    for (const Band band : bands)
        if (invalidated & 1u << static_cast<unsigned>(band)) parts_->window->invalidate(gf_bandRect(band));
}

uint64_t PanelWindow::repaints() const {
    return parts_->window->paints();
}

void PanelWindow::endWithSession() {
    gf_log("The user's session ends");
    gf_closeButton();
    gf_waitForRunEnd(sessionPatience);
    storePlace();
}

void PanelWindow::storePlace() {
    int x = 0, y = 0;
    parts_->window->position(x, y);
    MAIN_WINDOW_X.value = MAIN_WINDOW_X.clamp(x);
    MAIN_WINDOW_Y.value = MAIN_WINDOW_Y.clamp(y);
    gf_saveParameter(MAIN_WINDOW_X);
    gf_saveParameter(MAIN_WINDOW_Y);
}

}  // namespace skl
