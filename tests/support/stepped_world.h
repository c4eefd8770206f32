// A clock and a task runner for tests: one thread, time that moves only when somebody waits, every started
// task stepped as its pauses end. A scenario of an hour takes seconds, and the same twice.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "core/clock.h"
#include "core/task.h"

namespace skl::test {

class SteppedWorld : public Clock, public TaskRunner {
  public:
    /// Takes the place of the system's clock and threads until it is destroyed.
    explicit SteppedWorld(int64_t utcSeconds = 1764000000);
    ~SteppedWorld() override;

    Nanos utcNow() override { return utcStart_ + now_; }
    Nanos steadyNow() override { return now_; }
    bool waitUntil(Nanos deadline, const std::function<bool()>& done) override;
    std::unique_ptr<RunningTask> start(std::string name, std::shared_ptr<Task> task) override;

    /// Does something once the time has come, seconds from the world's start.
    void at(double seconds, std::function<void()> action);
    /// Does something again and again.
    void every(double seconds, std::function<void()> action);
    /// Somebody sets the system's clock: UTC jumps, the steady clock goes on.
    void jumpUtc(double seconds) { utcStart_ += toNanos(seconds); }
    double seconds() const { return std::chrono::duration<double>(now_).count(); }
    int liveTasks() const;
    /// A wait that passes this much of its time is a hang: the test ends with an exception.
    void setLimit(double seconds) { limit_ = toNanos(seconds); }

  private:
    struct Entry {
        std::string name;
        std::shared_ptr<Task> task;
        Nanos next{0};
        bool running = false;
        bool ended = false;
    };
    struct Action {
        Nanos repeat;
        std::function<void()> run;
    };
    class Handle;
    static Nanos toNanos(double seconds) { return Nanos(static_cast<int64_t>(seconds * 1e9)); }
    void runDue();
    Nanos nextEvent(Nanos limit) const;

    Nanos utcStart_;
    Nanos now_{0};
    Nanos limit_ = std::chrono::hours(1000);
    std::vector<std::shared_ptr<Entry>> entries_;
    std::multimap<Nanos, Action> actions_;  ///< by the time they are due
};

}  // namespace skl::test
