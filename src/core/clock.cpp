#include "core/clock.h"

#include "core/run_state.h"
#include "platform/system_clock.h"

namespace skl {

namespace {

Clock* g_clock = nullptr;

}  // namespace

Clock& gf_clock() {
    return g_clock ? *g_clock : platform::systemClock();
}
void gf_setClock(Clock* clock) {
    g_clock = clock;
}

Nanos gf_steadyNow() {
    return gf_clock().steadyNow();
}

int64_t gf_utcSeconds() {
    return std::chrono::duration_cast<std::chrono::seconds>(gf_clock().utcNow()).count();
}

bool gf_waitUntil(Nanos deadline, const std::function<bool()>& done) {
    return gf_clock().waitUntil(deadline, done);
}

bool gf_sleepUnlessStopping(std::chrono::milliseconds time) {
    return gf_waitUntil(gf_steadyNow() + time, [] { return gf_stopping(); });
}

void gf_sleep(std::chrono::milliseconds time) {
    gf_waitUntil(gf_steadyNow() + time, {});
}

}  // namespace skl
