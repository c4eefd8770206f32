// The loop of the process: starts one run after the other, each on a worker thread, until the process is to
// end. It serves the window, where there is one, in between.
#pragma once

#include <chrono>
#include <functional>

namespace skl {

/// Asks the loop for a new run, or for the end of the process. Any thread.
void gf_postStartRun();
void gf_postEndProcess();

/// Waits until the run that is under way has ended and asked for what comes next; false when that takes
/// longer than `patience`. For the loop's own thread, out of `pump`, when it will not come back to the loop.
bool gf_waitForRunEnd(std::chrono::milliseconds patience);

/// Runs `run` on a worker thread at each request for a run, after joining the thread of the run before; calls
/// `idle` on this thread, about four times a second. Returns once the end was asked for and the last worker
/// has been joined. `pump`, where there is a window, waits in place of the loop, for the time it is told at
/// most.
void gf_superviseRuns(const std::function<void()>& run, const std::function<void()>& idle,
                      const std::function<void(std::chrono::milliseconds)>& pump = {});

}  // namespace skl
