// The process: one instance a user, the log, and the loop that starts one run after the other. SIGINT and
// SIGTERM are the close button. Without a window the message line and the figures go to standard output.
#include <fmt/format.h>

#include <clocale>
#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>

#include "core/clock.h"
#include "core/folders.h"
#include "core/log.h"
#include "core/messages.h"
#include "core/run_sequence.h"
#include "core/run_state.h"
#include "core/supervisor.h"
#include "core/text.h"
#include "core/time_text.h"
#include "panel/status_line.h"
#include "platform/system.h"

namespace {

constexpr skl::Nanos statusInterval = std::chrono::seconds(5);

void print(const std::string& line) {
    std::fputs((line + "\n").c_str(), stdout);
    std::fflush(stdout);
}

/// Prints the message line when it has changed, and the figures every few seconds.
class Console {
  public:
    void show() {
        const std::string message = skl::gf_messageLine();
        if (message != lastMessage_ && !message.empty()) print(message);
        lastMessage_ = message;
        const skl::Nanos now = skl::gf_steadyNow();
        if (now < nextStatus_) return;
        nextStatus_ = now + statusInterval;
        print(fmt::format("{} {}", skl::gf_timeOfDay(), skl::gf_statusLine()));
    }

  private:
    std::string lastMessage_;
    skl::Nanos nextStatus_ = skl::gf_steadyNow() + statusInterval;
};

bool makeProgramFolder() {
    const auto folder = skl::gf_programDataPath();
    std::error_code error;
    if (std::filesystem::is_directory(folder, error)) return true;
    std::filesystem::create_directories(folder, error);
    if (!error) return true;
    skl::gf_log(fmt::format("Failed to create directory: {}", skl::gf_pathText(folder)));
    return false;
}

}  // namespace

int main() {
    // Numbers are read and written with a point, whatever a library sets.
    std::setlocale(LC_NUMERIC, "C");
    const auto instance = skl::platform::lockSingleInstance(skl::programName);
    if (!instance) return -1;
    skl::gf_startLog();
    if (!makeProgramFolder()) return 0;
    skl::platform::watchStopSignals([] {
        skl::gf_showMessage(fmt::format("Close window button clicked, closing {} ...", skl::programName),
                            false);
        skl::gf_requestClose();
    });
    skl::gf_postStartRun();
    Console console;
    skl::gf_superviseRuns(skl::lf_run, [&console] { console.show(); });
    skl::platform::stopWatchingSignals();
    skl::gf_log(skl::gf_timeString(skl::gf_utcSeconds()));
    skl::gf_closeLog();
    return 0;
}
