// The addresses of a host, for the stream of the SimConnect client. A numeric address is known at once; a
// name is looked up on a helper thread that owns its result, since a look-up may take longer than anyone here
// may wait.
#pragma once

#ifdef _WIN32
// Ahead of windows.h, which would bring the old one.
#include <winsock2.h>
#include <ws2tcpip.h>
#else
#include <sys/socket.h>
#endif

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace skl::net {

struct SocketAddress {
    sockaddr_storage storage{};
    int size = 0;
    const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&storage); }
};

class HostLookup {
  public:
    HostLookup(const std::string& host, uint16_t port);
    /// Whether the addresses are known, waiting up to `timeout` for them.
    bool ready(std::chrono::milliseconds timeout);
    /// The next one to try, those of IPv4 first; nullptr behind the last one, and while none is known. Stays
    /// valid.
    const SocketAddress* next();

  private:
    struct Pending;
    std::shared_ptr<Pending> pending_;  ///< empty once the addresses are here
    std::vector<SocketAddress> addresses_;
    size_t next_ = 0;
};

}  // namespace skl::net
