// The process: one instance a user, the log, and the loop that starts one run after the other. SIGINT and
// SIGTERM are the close button. Where there is no screen, the terminal takes the place of the window.
#include <fmt/format.h>

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <system_error>

#include "core/clock.h"
#include "core/folders.h"
#include "core/log.h"
#include "core/run_sequence.h"
#include "core/run_state.h"
#include "core/supervisor.h"
#include "core/text.h"
#include "core/time_text.h"
#include "panel/commands.h"
#include "panel/console.h"
#include "panel/panel_window.h"
#include "platform/system.h"
#include "platform/window.h"

namespace {

bool makeProgramFolder() {
    const auto folder = skl::gf_programDataPath();
    std::error_code error;
    if (std::filesystem::is_directory(folder, error)) return true;
    std::filesystem::create_directories(folder, error);
    if (!error) return true;
    skl::gf_log(fmt::format("Failed to create directory: {}", skl::gf_pathText(folder)));
    return false;
}

/// False without a log: then there is nothing that could tell the user what goes on.
bool startLog() {
    try {
        skl::gf_startLog();
        return true;
    } catch (const std::runtime_error& failure) {
        skl::platform::tellLastWords(failure.what());
        return false;
    }
}

void superviseWithWindow(skl::PanelWindow& window) {
    skl::gf_superviseRuns(skl::lf_run, {},
                          [&window](std::chrono::milliseconds patience) { window.serve(patience); });
    window.storePlace();
}

void superviseInTerminal() {
    skl::Console console;
    skl::gf_superviseRuns(skl::lf_run, [&console] { console.show(); });
}

}  // namespace

int main() {
    // Numbers are read and written with a point, whatever a library sets.
    std::setlocale(LC_NUMERIC, "C");
    const auto instance = skl::platform::lockSingleInstance(skl::programName);
    if (!instance) return -1;
    if (!startLog()) return EXIT_FAILURE;
    if (!makeProgramFolder()) return 0;
    skl::platform::watchStopSignals(skl::gf_closeButton);
    const auto window = skl::PanelWindow::open();
    if (!window && skl::platform::displayAvailable()) {
        // To run where nobody sees it would be worse.
        skl::gf_log("initInstance failed");
        skl::platform::stopWatchingSignals();
        return 0;
    }
    skl::gf_postStartRun();
    if (window)
        superviseWithWindow(*window);
    else
        superviseInTerminal();
    skl::platform::stopWatchingSignals();
    skl::gf_log(skl::gf_timeString(skl::gf_utcSeconds()));
    skl::gf_closeLog();
    return 0;
}
