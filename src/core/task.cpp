#include "core/task.h"

#include <thread>

namespace skl {

namespace {

class TaskThread : public RunningTask {
  public:
    explicit TaskThread(std::shared_ptr<Task> task)
        : thread_([task = std::move(task)] {
              while (auto pause = task->step(std::chrono::milliseconds(1000)))
                  if (pause->count() > 0) gf_waitUntil(gf_steadyNow() + *pause, {});
          }) {}
    ~TaskThread() override { join(); }
    void join() override {
        if (thread_.joinable()) thread_.join();
    }

  private:
    std::thread thread_;
};

class ThreadRunner : public TaskRunner {
  public:
    std::unique_ptr<RunningTask> start(std::string, std::shared_ptr<Task> task) override {
        return std::make_unique<TaskThread>(std::move(task));
    }
};

TaskRunner* g_runner = nullptr;

}  // namespace

TaskRunner& gf_taskRunner() {
    static ThreadRunner threads;
    return g_runner ? *g_runner : threads;
}

void gf_setTaskRunner(TaskRunner* runner) {
    g_runner = runner;
}

}  // namespace skl
