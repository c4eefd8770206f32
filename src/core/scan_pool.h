// The threads of a scan: files go in one by one, their yields come out in the order in which the files
// went in, whatever the number of threads. One thread adds and takes; it also works when no thread could be
// started.
#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "core/clock.h"
#include "core/run_state.h"

namespace skl {

namespace scan_pool {
inline constexpr Nanos patience = std::chrono::seconds(10);
inline constexpr Nanos shortPatience = std::chrono::milliseconds(500);  ///< after a stop or a time-out
inline constexpr std::chrono::milliseconds betweenLooks{10};
}  // namespace scan_pool

template <class File, class Yield>
class ScanPool {
  public:
    using Work = std::function<void(const File& file, Yield& yield)>;

    /// A thread takes `filesPerBatch` files at a time: many where a file is little work.
    ScanPool(int workers, Work work, size_t filesPerBatch);
    /// Waits for the threads. One that hangs in a file is left behind; what it finds is thrown away.
    ~ScanPool();
    ScanPool(const ScanPool&) = delete;
    ScanPool& operator=(const ScanPool&) = delete;

    void add(File file);
    /// No file follows: what was added last is handed out, too.
    void flush();
    /// Takes the oldest yield if it is ready. False: nothing is ready.
    bool takeReady(Yield& yield);
    /// Waits for the oldest yield. False: nothing is left, or a stop ended the wait. Throws
    /// std::runtime_error when no file of it was finished for ten seconds, and what the work has thrown.
    bool takeNext(Yield& yield);

  private:
    struct Batch;
    struct Shared;
    bool take(Yield& yield);

    std::shared_ptr<Shared> shared_;
    std::vector<std::thread> threads_;
    std::deque<std::shared_ptr<Batch>> waiting_;  ///< handed out and not taken, oldest first
    std::vector<File> pending_;
    size_t filesPerBatch_;
    bool gaveUp_ = false;
};

template <class File, class Yield>
struct ScanPool<File, Yield>::Batch {
    std::vector<File> files;
    Yield yield;
    std::exception_ptr failure;
    std::atomic<size_t> filesDone{0};
    bool ready = false;  ///< under Shared::lock
};

/// Owned by the pool and by each of its threads, so that a thread left behind still has it.
template <class File, class Yield>
struct ScanPool<File, Yield>::Shared {
    Work work;
    std::mutex lock;
    std::condition_variable somethingToDo, somethingDone;
    std::deque<std::shared_ptr<Batch>> queue;
    int running = 0;                  ///< under lock
    std::atomic<bool> closed{false};  ///< no more work, nobody wants what is still found

    void process(Batch& batch) {
        try {
            for (const auto& file : batch.files) {
                if (gf_stopping() || closed) break;
                work(file, batch.yield);
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
            somethingDone.wait_for(guard, scan_pool::betweenLooks);
        }
        return true;
    }
};

template <class File, class Yield>
ScanPool<File, Yield>::ScanPool(int workers, Work work, size_t filesPerBatch)
    : shared_(std::make_shared<Shared>()), filesPerBatch_(filesPerBatch) {
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

template <class File, class Yield>
ScanPool<File, Yield>::~ScanPool() {
    {
        const std::lock_guard guard(shared_->lock);
        shared_->closed = true;
        shared_->queue.clear();
        shared_->somethingToDo.notify_all();
    }
    const Nanos now = gf_steadyNow();
    const bool ended = shared_->waitFor([this] { return shared_->running == 0; },
                                        [this, now] {
                                            return gf_steadyNow() - now > (gaveUp_ || gf_stopping()
                                                                               ? scan_pool::shortPatience
                                                                               : scan_pool::patience);
                                        });
    for (auto& thread : threads_) {
        if (ended)
            thread.join();
        else
            thread.detach();
    }
}

template <class File, class Yield>
void ScanPool<File, Yield>::add(File file) {
    pending_.push_back(std::move(file));
    if (pending_.size() >= filesPerBatch_) flush();
}

template <class File, class Yield>
void ScanPool<File, Yield>::flush() {
    if (pending_.empty()) return;
    auto batch = std::make_shared<Batch>();
    batch->files = std::exchange(pending_, {});
    pending_.reserve(filesPerBatch_);
    waiting_.push_back(batch);
    const std::lock_guard guard(shared_->lock);
    shared_->queue.push_back(std::move(batch));
    shared_->somethingToDo.notify_one();
}

template <class File, class Yield>
bool ScanPool<File, Yield>::take(Yield& yield) {
    const auto batch = std::move(waiting_.front());
    waiting_.pop_front();
    if (batch->failure) std::rethrow_exception(batch->failure);
    yield = std::move(batch->yield);
    return true;
}

template <class File, class Yield>
bool ScanPool<File, Yield>::takeReady(Yield& yield) {
    if (waiting_.empty()) return false;
    {
        const std::lock_guard guard(shared_->lock);
        if (!waiting_.front()->ready) return false;
    }
    return take(yield);
}

template <class File, class Yield>
bool ScanPool<File, Yield>::takeNext(Yield& yield) {
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
                                            return now - lastProgress > scan_pool::patience;
                                        });
    if (gf_stopping()) return false;
    if (ready) return take(yield);
    gaveUp_ = true;
    throw std::runtime_error("Future wait timed out after 10 seconds");
}

}  // namespace skl
