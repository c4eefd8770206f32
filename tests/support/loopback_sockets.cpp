#include "tests/support/loopback_sockets.h"

#ifdef _WIN32
#include <winsock2.h>
#else
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>
#endif

namespace skl::test {

namespace {

#ifdef _WIN32
using Native = SOCKET;
using socklen_t = int;
using Size = int;  // of a buffer
constexpr int MSG_NOSIGNAL = 0;

int closeNative(Native socket) {
    return ::closesocket(socket);
}
int pollNative(WSAPOLLFD* entry, int milliseconds) {
    return ::WSAPoll(entry, 1, milliseconds);
}
Native newSocket(int type) {
    static const bool started = [] {
        WSADATA data{};
        return ::WSAStartup(MAKEWORD(2, 2), &data) == 0;
    }();
    return started ? ::socket(AF_INET, type, 0) : INVALID_SOCKET;
}
#else
using Native = int;
using Size = size_t;  // of a buffer

int closeNative(Native socket) {
    return ::close(socket);
}
int pollNative(pollfd* entry, int milliseconds) {
    return ::poll(entry, 1, milliseconds);
}
Native newSocket(int type) {
    return ::socket(AF_INET, type, 0);
}
#endif

Native native(intptr_t fd) {
    return static_cast<Native>(fd);
}

sockaddr_in loopback(uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

intptr_t connectedSocket(int type, uint16_t port) {
    const Native fd = newSocket(type);
    const sockaddr_in address = loopback(port);
    if (::connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0)
        return static_cast<intptr_t>(fd);
    closeNative(fd);
    return -1;
}

bool readableSoon(intptr_t fd) {
    pollfd entry{native(fd), POLLIN, 0};
    return pollNative(&entry, 5000) > 0;
}

}  // namespace

LoopbackSocket LoopbackSocket::udpTo(uint16_t port) {
    return LoopbackSocket(connectedSocket(SOCK_DGRAM, port));
}
LoopbackSocket LoopbackSocket::tcpTo(uint16_t port) {
    return LoopbackSocket(connectedSocket(SOCK_STREAM, port));
}

LoopbackSocket LoopbackSocket::tcpServer() {
    const Native fd = newSocket(SOCK_STREAM);
    const sockaddr_in address = loopback(0);
    if (::bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 && ::listen(fd, 8) == 0)
        return LoopbackSocket(static_cast<intptr_t>(fd));
    closeNative(fd);
    return {};
}

bool LoopbackSocket::send(std::string_view bytes) {
    while (!bytes.empty()) {
        const auto sent = ::send(native(fd_), bytes.data(), static_cast<Size>(bytes.size()), MSG_NOSIGNAL);
        if (sent < 0) return false;
        bytes.remove_prefix(static_cast<size_t>(sent));
    }
    return true;
}

std::string LoopbackSocket::receive(size_t size) {
    if (!readableSoon(fd_)) return {};
    std::string bytes(size, '\0');
    const auto count = ::recv(native(fd_), bytes.data(), static_cast<Size>(bytes.size()), 0);
    bytes.resize(count > 0 ? static_cast<size_t>(count) : 0);
    return bytes;
}

uint16_t LoopbackSocket::port() const {
    sockaddr_in address{};
    socklen_t size = sizeof address;
    ::getsockname(native(fd_), reinterpret_cast<sockaddr*>(&address), &size);
    return ntohs(address.sin_port);
}

LoopbackSocket LoopbackSocket::accept() {
    return LoopbackSocket(readableSoon(fd_) ? static_cast<intptr_t>(::accept(native(fd_), nullptr, nullptr))
                                            : -1);
}

void LoopbackSocket::close() {
    if (fd_ >= 0) closeNative(native(fd_));
    fd_ = -1;
}

void LoopbackSocket::reset() {
    const linger hard{1, 0};
    ::setsockopt(native(fd_), SOL_SOCKET, SO_LINGER, reinterpret_cast<const char*>(&hard), sizeof hard);
    close();
}

}  // namespace skl::test
