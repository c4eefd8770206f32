#include "core/supervisor.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>

namespace skl {

namespace {

std::mutex requestLock;
std::condition_variable requestCame;
bool runWanted = false;
bool endWanted = false;

}  // namespace

void gf_postStartRun() {
    {
        std::lock_guard guard(requestLock);
        runWanted = true;
    }
    requestCame.notify_one();
}

void gf_postEndProcess() {
    {
        std::lock_guard guard(requestLock);
        endWanted = true;
    }
    requestCame.notify_one();
}

void gf_superviseRuns(const std::function<void()>& run, const std::function<void()>& idle) {
    std::thread worker;
    for (;;) {
        bool start = false;
        bool end = false;
        {
            std::unique_lock guard(requestLock);
            requestCame.wait_for(guard, std::chrono::milliseconds(250),
                                 [] { return runWanted || endWanted; });
            start = std::exchange(runWanted, false);
            end = std::exchange(endWanted, false);
        }
        if (start || end) {
            if (worker.joinable()) worker.join();
            if (end) break;
            worker = std::thread(run);
        }
        if (idle) idle();
    }
    if (idle) idle();
}

}  // namespace skl
