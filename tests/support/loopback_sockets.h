// Plain sockets on 127.0.0.1 for tests over the true boundary: the other side of what the program opens.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace skl::test {

class LoopbackSocket {
  public:
    LoopbackSocket() = default;
    ~LoopbackSocket() { close(); }
    LoopbackSocket(LoopbackSocket&& other) noexcept : fd_(other.fd_) { other.fd_ = -1; }
    LoopbackSocket& operator=(LoopbackSocket&&) = delete;

    static LoopbackSocket udpTo(uint16_t port);
    static LoopbackSocket tcpTo(uint16_t port);
    /// A server on any free port.
    static LoopbackSocket tcpServer();

    bool valid() const { return fd_ >= 0; }
    bool send(std::string_view bytes);
    /// Up to `size` bytes, waiting 5 s at most; empty at the end of the stream or when nothing has come.
    std::string receive(size_t size = 65536);
    uint16_t port() const;
    LoopbackSocket accept();
    void close();
    /// Closes so that the peer sees a reset.
    void reset();

  private:
    explicit LoopbackSocket(intptr_t fd) : fd_(fd) {}
    intptr_t fd_ = -1;  ///< a descriptor, or a SOCKET
};

}  // namespace skl::test
