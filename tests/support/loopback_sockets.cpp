#include "tests/support/loopback_sockets.h"

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace skl::test {

namespace {

sockaddr_in loopback(uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

int connectedSocket(int type, uint16_t port) {
    const int fd = ::socket(AF_INET, type, 0);
    const sockaddr_in address = loopback(port);
    if (::connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) return fd;
    ::close(fd);
    return -1;
}

bool readableSoon(int fd) {
    pollfd entry{fd, POLLIN, 0};
    return ::poll(&entry, 1, 5000) > 0;
}

}  // namespace

LoopbackSocket LoopbackSocket::udpTo(uint16_t port) {
    return LoopbackSocket(connectedSocket(SOCK_DGRAM, port));
}
LoopbackSocket LoopbackSocket::tcpTo(uint16_t port) {
    return LoopbackSocket(connectedSocket(SOCK_STREAM, port));
}

LoopbackSocket LoopbackSocket::tcpServer() {
    const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    const sockaddr_in address = loopback(0);
    if (::bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 && ::listen(fd, 8) == 0)
        return LoopbackSocket(fd);
    ::close(fd);
    return {};
}

bool LoopbackSocket::send(std::string_view bytes) {
    while (!bytes.empty()) {
        const auto sent = ::send(fd_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent < 0) return false;
        bytes.remove_prefix(static_cast<size_t>(sent));
    }
    return true;
}

std::string LoopbackSocket::receive(size_t size) {
    if (!readableSoon(fd_)) return {};
    std::string bytes(size, '\0');
    const auto count = ::recv(fd_, bytes.data(), bytes.size(), 0);
    bytes.resize(count > 0 ? static_cast<size_t>(count) : 0);
    return bytes;
}

uint16_t LoopbackSocket::port() const {
    sockaddr_in address{};
    socklen_t size = sizeof address;
    ::getsockname(fd_, reinterpret_cast<sockaddr*>(&address), &size);
    return ntohs(address.sin_port);
}

LoopbackSocket LoopbackSocket::accept() {
    return LoopbackSocket(readableSoon(fd_) ? ::accept(fd_, nullptr, nullptr) : -1);
}

void LoopbackSocket::close() {
    if (fd_ >= 0) ::close(fd_);
    fd_ = -1;
}

void LoopbackSocket::reset() {
    const linger hard{1, 0};
    ::setsockopt(fd_, SOL_SOCKET, SO_LINGER, &hard, sizeof hard);
    close();
}

}  // namespace skl::test
