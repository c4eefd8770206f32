// The loop of the process: starts one run after the other, each on a worker thread, until the process is to
// end. It takes the place of a window's message loop where there is no window.
#pragma once

#include <functional>

namespace skl {

/// Asks the loop for a new run, or for the end of the process. Any thread.
void gf_postStartRun();
void gf_postEndProcess();

/// Runs `run` on a worker thread at each request for a run, after joining the thread of the run before; calls
/// `idle` about four times a second on this thread. Returns once the end was asked for and the last worker
/// has been joined.
void gf_superviseRuns(const std::function<void()>& run, const std::function<void()>& idle);

}  // namespace skl
