#include "tests/support/stepped_world.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace skl::test {

class SteppedWorld::Handle : public RunningTask {
  public:
    Handle(SteppedWorld& world, std::shared_ptr<Entry> entry) : world_(world), entry_(std::move(entry)) {}
    ~Handle() override { join(); }
    void join() override {
        const Nanos patience = world_.steadyNow() + std::chrono::seconds(60);
        if (!world_.waitUntil(patience, [this] { return entry_->ended; }))
            throw std::runtime_error("task " + entry_->name + " does not end");
    }

  private:
    SteppedWorld& world_;
    std::shared_ptr<Entry> entry_;
};

SteppedWorld::SteppedWorld(int64_t utcSeconds) : utcStart_(std::chrono::seconds(utcSeconds)) {
    gf_setClock(this);
    gf_setTaskRunner(this);
}

SteppedWorld::~SteppedWorld() {
    gf_setTaskRunner(nullptr);
    gf_setClock(nullptr);
}

std::unique_ptr<RunningTask> SteppedWorld::start(std::string name, std::shared_ptr<Task> task) {
    auto entry = std::make_shared<Entry>();
    entry->name = std::move(name);
    entry->task = std::move(task);
    entry->next = now_;
    entries_.push_back(entry);
    return std::make_unique<Handle>(*this, entry);
}

void SteppedWorld::at(double seconds, std::function<void()> action) {
    actions_.insert({toNanos(seconds), {Nanos(0), std::move(action)}});
}

void SteppedWorld::every(double seconds, std::function<void()> action) {
    actions_.insert({now_ + toNanos(seconds), {toNanos(seconds), std::move(action)}});
}

int SteppedWorld::liveTasks() const {
    return static_cast<int>(
        std::count_if(entries_.begin(), entries_.end(), [](auto& e) { return !e->ended; }));
}

Nanos SteppedWorld::nextEvent(Nanos limit) const {
    Nanos next = limit;
    for (const auto& entry : entries_)
        if (!entry->ended && !entry->running) next = std::min(next, std::max(entry->next, now_ + Nanos(1)));
    if (!actions_.empty()) next = std::min(next, std::max(actions_.begin()->first, now_ + Nanos(1)));
    return next;
}

void SteppedWorld::runDue() {
    while (!actions_.empty() && actions_.begin()->first <= now_) {
        auto due = actions_.extract(actions_.begin());
        const auto run = due.mapped().run;
        if (due.mapped().repeat.count() > 0) {
            due.key() += due.mapped().repeat;
            actions_.insert(std::move(due));
        }
        run();
    }
    const auto entries = entries_;  // a step may start a task
    for (const auto& entry : entries) {
        if (entry->ended || entry->running || entry->next > now_) continue;
        entry->running = true;
        const auto pause = entry->task->step(std::chrono::milliseconds(0));
        entry->running = false;
        entry->ended = !pause;
        // A task that would have blocked in its step comes again after a moment.
        if (pause) entry->next = now_ + std::max(*pause, Nanos(std::chrono::milliseconds(1)));
    }
    std::erase_if(entries_, [](const auto& entry) { return entry->ended; });
}

bool SteppedWorld::waitUntil(Nanos deadline, const std::function<bool()>& done) {
    for (;;) {
        if (done && done()) return true;
        if (now_ >= deadline) return false;
        if (now_ >= limit_) throw std::runtime_error("the scenario takes too long");
        const Nanos look = done ? now_ + std::chrono::milliseconds(20) : deadline;
        now_ = nextEvent(std::min({deadline, look, limit_}));
        runDue();
    }
}

}  // namespace skl::test
