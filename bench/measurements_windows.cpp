// The measurements of the Windows build: its ratio to the other build is told by bench/windows.py.
#include "bench/bench.h"

namespace skl::bench {

std::span<const Measurement> measurements() {
    static constexpr Measurement all[] = {{"tick", engineTickRows}, {"flush", frameFlushRows}};
    return all;
}

int (*childOf(std::string_view))() {
    return nullptr;
}

}  // namespace skl::bench
