// What the POSIX socket classes share: a descriptor that closes itself, a wait on one socket, and the
// translation of the system's errors into Winsock's numbers.
#pragma once

#include <memory>
#include <string>
#include <utility>

#include "platform/net.h"

namespace skl::net {

class Fd {
  public:
    explicit Fd(int fd = -1) : fd_(fd) {}
    ~Fd();
    Fd(Fd&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    Fd& operator=(Fd&& other) noexcept {
        std::swap(fd_, other.fd_);
        return *this;
    }
    int get() const { return fd_; }
    explicit operator bool() const { return fd_ >= 0; }

  private:
    int fd_;
};

/// Winsock's number of an errno value; one that Winsock does not know stays as it is.
int winsockCode(int error);

/// Waits for input (or for room, when `forWriting`): 1 ready or broken, 0 timed out or interrupted, -1
/// failed.
int waitSocket(const Fd& socket, bool forWriting, Millis timeout);

std::unique_ptr<ByteStream> connectPosixStream(const std::string& host, uint16_t port, bool noDelay);

}  // namespace skl::net
