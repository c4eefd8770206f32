#include "core/random.h"

namespace skl {

std::mt19937& mt() {
    thread_local std::mt19937 engine{std::random_device{}()};
    return engine;
}

void gf_seedRandom(uint32_t seed) {
    mt().seed(seed);
}

}  // namespace skl
