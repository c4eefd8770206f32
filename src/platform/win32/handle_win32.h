// What the Windows files share: a handle that closes itself, the text of a system error, and folders that
// take the place of the user's own in tests.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>

namespace skl::platform {

/// Owns a HANDLE; neither nullptr nor INVALID_HANDLE_VALUE counts as one.
class Handle {
  public:
    explicit Handle(void* handle = nullptr);
    ~Handle();
    Handle(Handle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
    Handle& operator=(Handle&& other) noexcept {
        std::swap(handle_, other.handle_);
        return *this;
    }
    void* get() const { return handle_; }
    explicit operator bool() const { return handle_ != nullptr; }

  private:
    void* handle_;
};

/// The system's text for an error number, in English where the system has it, without the line's end.
std::string systemText(uint32_t error);

struct UserFolders {
    std::filesystem::path roaming, local, home;
};
/// For tests: in place of the user's own folders from now on; nothing brings those back.
void setUserFolders(std::optional<UserFolders> folders);

}  // namespace skl::platform
