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

constexpr std::chrono::milliseconds idleTime{250}, pumpTime{50};

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

bool gf_waitForRunEnd(std::chrono::milliseconds patience) {
    std::unique_lock guard(requestLock);
    return requestCame.wait_for(guard, patience, [] { return runWanted || endWanted; });
}

void gf_superviseRuns(const std::function<void()>& run, const std::function<void()>& idle,
                      const std::function<void(std::chrono::milliseconds)>& pump) {
    std::thread worker;
    for (;;) {
        if (pump) pump(pumpTime);
        bool start = false;
        bool end = false;
        {
            std::unique_lock guard(requestLock);
            const auto patience = pump ? std::chrono::milliseconds(0) : idleTime;
            requestCame.wait_for(guard, patience, [] { return runWanted || endWanted; });
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
