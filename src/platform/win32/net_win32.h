// What the Winsock classes share: a socket that closes itself and a wait on one socket. Errors are Winsock's
// own numbers.
#pragma once

// Ahead of windows.h, which would bring the old one.
#include <winsock2.h>
#include <ws2tcpip.h>

#include <memory>
#include <string>
#include <utility>

#include "platform/net.h"

namespace skl::net {

class Socket {
  public:
    explicit Socket(SOCKET socket = INVALID_SOCKET) : socket_(socket) {}
    ~Socket() {
        if (*this) ::closesocket(socket_);
    }
    Socket(Socket&& other) noexcept : socket_(std::exchange(other.socket_, INVALID_SOCKET)) {}
    Socket& operator=(Socket&& other) noexcept {
        std::swap(socket_, other.socket_);
        return *this;
    }
    SOCKET get() const { return socket_; }
    explicit operator bool() const { return socket_ != INVALID_SOCKET; }

  private:
    SOCKET socket_;
};

/// 0, or why Winsock could not be started; started once for the process.
int startWinsock();
bool makeNonBlocking(const Socket& socket);
/// Waits for input, or for room or a failed connection when `forWriting`: 1 ready or broken, 0 timed out, -1
/// failed.
int waitSocket(const Socket& socket, bool forWriting, Millis timeout);

std::unique_ptr<ByteStream> connectWinsockStream(const std::string& host, uint16_t port, bool noDelay);
std::unique_ptr<ByteStream> openPipe(const std::string& name);

}  // namespace skl::net
