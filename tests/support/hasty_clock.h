// The real time, and more of it on request: for tests over real sockets that must not wait for a patience of
// seconds to be over.
#pragma once

#include <chrono>
#include <functional>

#include "core/clock.h"

namespace skl::test {

class HastyClock : public Clock {
  public:
    HastyClock() { gf_setClock(this); }
    ~HastyClock() override { gf_setClock(nullptr); }
    Nanos utcNow() override { return std::chrono::system_clock::now().time_since_epoch() + extra; }
    Nanos steadyNow() override { return std::chrono::steady_clock::now().time_since_epoch() + extra; }
    bool waitUntil(Nanos deadline, const std::function<bool()>& done) override {
        for (;; extra += perLook) {
            if (done && done()) return true;
            if (steadyNow() >= deadline) return false;
        }
    }
    /// What has been added so far, and what each look of a wait adds.
    Nanos extra{0}, perLook{0};
};

}  // namespace skl::test
