// The run sequence: what a run does from its start to its end, and the 10 ms cycle in between. This file and
// its parts (run_sequence_*.cpp) are the only place in core/ that knows the other subsystems. Worker thread.
#pragma once

namespace skl {

/// One whole run, with the top-level error boundary. At its end it posts a request to the supervisor.
void lf_run();

// The steps of a run, in order.
void lf_prepareRun();
void lf_loadData();
void lf_prepareAirports();
void lf_connectAndCycle();
void lf_closingDown();

/// False if a stop came before the flight ran and the user's place was known.
bool lf_waitForFlight();

// The cycle.
void lf_mainCycle();
/// One pass; false when the cycle is to end.
bool lf_cycleTick();
void lf_everySecond();
void lf_every15Seconds();
void lf_notRunningTick();

void lf_restartCountdown();
/// Brings all state of a run back to its start. False, with nothing changed, when the user closes the
/// program.
bool lf_resetForRestart();

// The threads of a run.
void lf_startSimThread();
void lf_startReaders();
/// Asks all threads of the run to end and joins them.
void lf_endThreads();

}  // namespace skl
