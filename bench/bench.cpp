// Folder, checks, and the count of allocations: this program has its own operator new, which counts by
// thread. What allocates by malloc itself, as the XML reader does, is not seen by it.
#include "bench/bench.h"

#include <fmt/format.h>

#include <cstdlib>
#include <new>
#include <random>
#include <stdexcept>

#include "core/text.h"
#include "liveries/livery_scan.h"

namespace {

thread_local uint64_t allocationCount = 0;

}  // namespace

// The forms for arrays, and those that do not throw, end up in these.
void* operator new(std::size_t size) {
    ++allocationCount;
    if (void* memory = std::malloc(size)) return memory;
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace skl::bench {

namespace fs = std::filesystem;

uint64_t allocations() {
    return allocationCount;
}

void require(bool holds, std::string_view what) {
    if (!holds) throw std::runtime_error(std::string(what));
}

WorkFolder::WorkFolder(bool inMemory) : before_(fs::current_path()) {
    const fs::path memory = "/dev/shm";
    const fs::path base = inMemory && fs::is_directory(memory) ? memory : fs::temp_directory_path();
    std::random_device random;
    do path_ = base / fmt::format("skl-bench-{:08x}", random());
    while (!fs::create_directory(path_));
    fs::current_path(path_);
    require(!lf_skipPath(gf_pathText(path_)), "the temporary folder has a name that the livery scan skips");
}

WorkFolder::~WorkFolder() {
    std::error_code ignored;
    fs::current_path(before_, ignored);
    fs::remove_all(path_, ignored);
}

}  // namespace skl::bench
