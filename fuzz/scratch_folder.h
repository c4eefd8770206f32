// A working folder that is removed at the end: targets that write do it there.
#pragma once

#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

namespace skl::fuzz {

class ScratchFolder {
  public:
    ScratchFolder()
        : path_(std::filesystem::temp_directory_path() / ("skl-fuzz-" + std::to_string(::getpid()))) {
        std::filesystem::create_directories(path_);
        before_ = std::filesystem::current_path();
        std::filesystem::current_path(path_);
    }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::current_path(before_, ignored);
        std::filesystem::remove_all(path_, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

  private:
    std::filesystem::path path_, before_;
};

inline void write(const std::filesystem::path& path, const uint8_t* data, size_t size) {
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
}

}  // namespace skl::fuzz
