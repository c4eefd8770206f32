#include "liveries/scan_pool.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "core/clock.h"
#include "core/run_state.h"

namespace skl {

namespace {

using std::chrono::milliseconds;

constexpr size_t filesPerBatch = 32;
constexpr Nanos patience = std::chrono::seconds(10);
constexpr Nanos shortPatience = milliseconds(500);  ///< after a stop or a time-out
constexpr milliseconds betweenLooks{10};

}  // namespace

struct ScanPool::Batch {
    std::vector<CfgFile> files;
    CfgYield yield;
    std::exception_ptr failure;
    std::atomic<size_t> filesDone{0};
    bool ready = false;  ///< under Shared::lock
};

/// Owned by the pool and by each of its threads, so that a thread left behind still has it.
struct ScanPool::Shared {
    Work work;
    std::mutex lock;
    std::condition_variable somethingToDo, somethingDone;
    std::deque<std::shared_ptr<Batch>> queue;
    int running = 0;                  ///< under lock
    std::atomic<bool> closed{false};  ///< no more work, nobody wants what is still found

    void process(Batch& batch) {
        try {
            CfgText buffer;
            for (const auto& file : batch.files) {
                if (gf_stopping() || closed) break;
                work(file, buffer, batch.yield);
                batch.filesDone.fetch_add(1);
            }
        } catch (...) {
            batch.failure = std::current_exception();
        }
        const std::lock_guard guard(lock);
        batch.ready = true;
        somethingDone.notify_all();
    }

    std::shared_ptr<Batch> next(bool wait) {
        std::unique_lock guard(lock);
        if (wait) somethingToDo.wait(guard, [this] { return closed || !queue.empty(); });
        if (queue.empty()) return nullptr;
        auto batch = std::move(queue.front());
        queue.pop_front();
        return batch;
    }

    void run() {
        while (const auto batch = next(true)) process(*batch);
        changeRunning(-1);
    }

    void changeRunning(int by) {
        const std::lock_guard guard(lock);
        running += by;
        somethingDone.notify_all();
    }

    /// Waits until `done`, looked at under the lock, gives true, or until `expired` does.
    template <class Done, class Expired>
    bool waitFor(Done done, Expired expired) {
        std::unique_lock guard(lock);
        while (!done()) {
            if (expired()) return false;
            somethingDone.wait_for(guard, betweenLooks);
        }
        return true;
    }
};

ScanPool::ScanPool(int workers, Work work) : shared_(std::make_shared<Shared>()) {
    shared_->work = std::move(work);
    for (int i = 0; i < std::max(workers, 1); ++i) {
        // Counted before it starts, so that no thread can end uncounted.
        shared_->changeRunning(1);
        try {
            threads_.emplace_back([shared = shared_] { shared->run(); });
        } catch (const std::system_error&) {
            // With fewer threads, or none, the scan takes longer.
            shared_->changeRunning(-1);
            break;
        }
    }
}

ScanPool::~ScanPool() {
    {
        const std::lock_guard guard(shared_->lock);
        shared_->closed = true;
        shared_->queue.clear();
        shared_->somethingToDo.notify_all();
    }
    const Nanos now = gf_steadyNow();
    const bool ended = shared_->waitFor(
        [this] { return shared_->running == 0; },
        [this, now] { return gf_steadyNow() - now > (gaveUp_ || gf_stopping() ? shortPatience : patience); });
    for (auto& thread : threads_) {
        if (ended)
            thread.join();
        else
            thread.detach();
    }
}

void ScanPool::add(CfgFile file) {
    pending_.push_back(std::move(file));
    if (pending_.size() >= filesPerBatch) flush();
}

void ScanPool::flush() {
    if (pending_.empty()) return;
    auto batch = std::make_shared<Batch>();
    batch->files = std::exchange(pending_, {});
    pending_.reserve(filesPerBatch);
    waiting_.push_back(batch);
    const std::lock_guard guard(shared_->lock);
    shared_->queue.push_back(std::move(batch));
    shared_->somethingToDo.notify_one();
}

bool ScanPool::take(CfgYield& yield) {
    const auto batch = std::move(waiting_.front());
    waiting_.pop_front();
    if (batch->failure) std::rethrow_exception(batch->failure);
    yield = std::move(batch->yield);
    return true;
}

bool ScanPool::takeReady(CfgYield& yield) {
    if (waiting_.empty()) return false;
    {
        const std::lock_guard guard(shared_->lock);
        if (!waiting_.front()->ready) return false;
    }
    return take(yield);
}

bool ScanPool::takeNext(CfgYield& yield) {
    if (waiting_.empty()) return false;
    if (threads_.empty())
        while (const auto batch = shared_->next(false)) shared_->process(*batch);
    const Batch& oldest = *waiting_.front();
    size_t seen = oldest.filesDone;
    Nanos lastProgress = gf_steadyNow();
    const bool ready = shared_->waitFor([&] { return oldest.ready; },
                                        [&] {
                                            if (gf_stopping()) return true;
                                            const Nanos now = gf_steadyNow();
                                            if (const size_t done = oldest.filesDone; done != seen) {
                                                seen = done;
                                                lastProgress = now;
                                            }
                                            return now - lastProgress > patience;
                                        });
    if (gf_stopping()) return false;
    if (ready) return take(yield);
    gaveUp_ = true;
    throw std::runtime_error("Future wait timed out after 10 seconds");
}

}  // namespace skl
