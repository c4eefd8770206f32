// Random choice: one MT19937 a thread, seeded once from the system's random device.
#pragma once

#include <cstdint>
#include <random>

namespace skl {

std::mt19937& mt();
/// For tests: seeds this thread's engine.
void gf_seedRandom(uint32_t seed);

}  // namespace skl
