// What stands in for the panel where there is no screen: the message line as it changes, and a status that is
// redrawn in place on a terminal and written as plain lines elsewhere.
#pragma once

#include <string>

#include "core/clock.h"

namespace skl {

class Console {
  public:
    Console();
    /// Writes what has changed since the last call.
    void show();

  private:
    void showMessage();
    void showStatus();

    bool terminal_;
    bool statusDrawn_ = false;  ///< the cursor stands behind the status
    std::string lastMessage_;
    Nanos nextStatus_;
};

}  // namespace skl
