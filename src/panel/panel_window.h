// The panel on the screen: joins the window with the control table, the paint and the commands.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>

namespace skl {

class PanelWindow {
  public:
    /// nullptr where there is no screen.
    static std::unique_ptr<PanelWindow> open();
    ~PanelWindow();
    /// Handles the user's input, then shows what has changed.
    void serve(std::chrono::milliseconds patience);
    /// Copies the controls' states that have changed, has repainted what was invalidated.
    void showChanges();
    /// Paints made so far.
    uint64_t repaints() const;
    /// Ends the run in order, as far as the time allows, and stores where the window stands: behind this the
    /// system ends the process.
    void endWithSession();
    /// Stores where the window stands.
    void storePlace();

  private:
    PanelWindow();
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

}  // namespace skl
