// POSIX sockets and poll.
#include "standin/simulator/server.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <fmt/format.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <ctime>
#include <vector>

#include "standin/simulator/wire.h"

namespace simulator {

namespace {

constexpr std::size_t kLargestPacket = 4U << 20U;
constexpr std::size_t kLargestBacklog = 64U << 20U;
constexpr std::size_t kReadAtOnce = 1U << 20U;

bool wouldBlock() {
    return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR;
}

}  // namespace

Server::~Server() {
    for (auto& [id, connection] : connections_) {
        ::close(connection.socket);
    }
    if (listener_ >= 0) {
        ::close(listener_);
    }
}

std::string Server::listen(int port) {
    listener_ = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    const int on = 1;
    ::setsockopt(listener_, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    socklen_t length = sizeof address;
    if (listener_ < 0 || ::bind(listener_, generic, length) != 0 || ::listen(listener_, 16) != 0 ||
        ::getsockname(listener_, generic, &length) != 0) {
        return fmt::format("cannot listen on port {}: {}", port, std::strerror(errno));
    }
    port_ = ntohs(address.sin_port);
    return {};
}

void Server::wait(double seconds, bool reading) {
    std::vector<pollfd> sockets{{listener_, POLLIN, 0}};
    for (const auto& [id, connection] : connections_) {
        const int events =
            (reading || connection.closing ? POLLIN : 0) | (connection.out.empty() ? 0 : POLLOUT);
        if (events != 0) {
            sockets.push_back({connection.socket, static_cast<short>(events), 0});
        }
    }
    const double bounded = std::clamp(seconds, 0.0, 1.0);
    timespec limit{};
    limit.tv_nsec = static_cast<long>(std::min(bounded * 1e9, 999999999.0));
    ::ppoll(sockets.data(), sockets.size(), &limit, nullptr);
}

void Server::receive(const Handlers& handlers, bool reading) {
    accept(handlers);
    for (auto& [id, connection] : connections_) {
        if ((reading || connection.closing) && !connection.dead) {
            readFrom(id, connection, handlers);
        }
    }
}

void Server::accept(const Handlers& handlers) {
    int socket = -1;
    while ((socket = ::accept4(listener_, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC)) >= 0) {
        const int on = 1;
        ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        const int id = nextId_++;
        connections_[id].socket = socket;
        handlers.opened(id);
    }
}

void Server::readFrom(int id, Connection& connection, const Handlers& handlers) {
    std::array<char, 65536> buffer;
    for (std::size_t total = 0; total < kReadAtOnce;) {
        const auto count = ::recv(connection.socket, buffer.data(), buffer.size(), 0);
        if (count > 0) {
            connection.in.append(buffer.data(), static_cast<std::size_t>(count));
            bytesReceived += static_cast<std::uint64_t>(count);
            total += static_cast<std::size_t>(count);
            continue;
        }
        connection.dead = count == 0 || !wouldBlock();
        break;
    }
    handOver(id, connection, handlers);
}

void Server::handOver(int id, Connection& connection, const Handlers& handlers) {
    std::size_t at = 0;
    while (!connection.closing && connection.in.size() - at >= 4) {
        const std::size_t size = Reader(connection.in, at).u32();
        if (size < kClientHeader || size > kLargestPacket) {
            connection.dead = true;
            break;
        }
        if (connection.in.size() - at < size) {
            break;
        }
        handlers.packet(id, std::string_view(connection.in).substr(at, size));
        at += size;
    }
    connection.in.erase(0, connection.closing ? connection.in.size() : at);
}

void Server::flush(const Handlers& handlers) {
    for (auto& [id, connection] : connections_) {
        std::size_t sent = 0;
        while (sent < connection.out.size() && !connection.dead) {
            const auto count = ::send(connection.socket, connection.out.data() + sent,
                                      connection.out.size() - sent, MSG_NOSIGNAL);
            if (count <= 0) {
                connection.dead = !wouldBlock();
                break;
            }
            sent += static_cast<std::size_t>(count);
        }
        bytesSent += sent;
        connection.out.erase(0, sent);
        if (connection.closing && connection.out.empty() && !connection.dead) {
            // A close with bytes unread would take the last message away from the client.
            const auto now = std::chrono::steady_clock::now();
            if (!connection.shut) {
                connection.shut = true;
                connection.patience = now + std::chrono::seconds(1);
                ::shutdown(connection.socket, SHUT_WR);
            }
            connection.dead = now > connection.patience;
        }
    }
    std::vector<int> gone;
    for (auto& [id, connection] : connections_) {
        if (connection.dead) {
            ::close(connection.socket);
            gone.push_back(id);
        }
    }
    for (const int id : gone) {
        connections_.erase(id);
        handlers.closed(id);
    }
}

void Server::send(int connection, std::string_view message) {
    const auto found = connections_.find(connection);
    if (found == connections_.end() || found->second.closing) {
        return;
    }
    found->second.out.append(message);
    if (found->second.out.size() > kLargestBacklog) {
        found->second.dead = true;
    }
}

void Server::close(int connection, bool sendFirst) {
    const auto found = connections_.find(connection);
    if (found != connections_.end()) {
        found->second.closing = true;
        found->second.dead = !sendFirst;
    }
}

}  // namespace simulator
