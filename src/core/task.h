// A thread's work in steps. The process runs each task on a thread of its own; a test steps them all from its
// clock on one thread.
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "core/clock.h"

namespace skl {

class Task {
  public:
    virtual ~Task() = default;
    /// One pass. May block for `mayBlock` at most (0 in a stepped run). Gives the pause before the next pass,
    /// or nothing when the task has ended. Must not throw: a task handles its own failures.
    virtual std::optional<Nanos> step(std::chrono::milliseconds mayBlock) = 0;
};

/// A started task. Destroying it joins.
class RunningTask {
  public:
    virtual ~RunningTask() = default;
    virtual void join() = 0;  ///< waits for the task to end; it has to be asked to end first
};

class TaskRunner {
  public:
    virtual ~TaskRunner() = default;
    virtual std::unique_ptr<RunningTask> start(std::string name, std::shared_ptr<Task> task) = 0;
};

/// Threads unless a test has set its own runner.
TaskRunner& gf_taskRunner();
void gf_setTaskRunner(TaskRunner* runner);

}  // namespace skl
