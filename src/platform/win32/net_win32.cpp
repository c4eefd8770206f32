// Winsock: UDP receiver, TCP listener and its connections. No socket blocks; each wait is a select with its
// own time-out.
#include "platform/win32/net_win32.h"

#include <algorithm>

namespace skl::net {

int startWinsock() {
    static const int result = [] {
        WSADATA data{};
        return ::WSAStartup(MAKEWORD(2, 2), &data);
    }();
    return result;
}

bool makeNonBlocking(const Socket& socket) {
    u_long on = 1;
    return ::ioctlsocket(socket.get(), static_cast<long>(FIONBIO), &on) == 0;
}

int waitSocket(const Socket& socket, bool forWriting, Millis timeout) {
    fd_set ready{}, broken{};
    ready.fd_count = broken.fd_count = 1;
    ready.fd_array[0] = broken.fd_array[0] = socket.get();
    const auto milliseconds = std::max<Millis::rep>(timeout.count(), 0);
    timeval time{static_cast<long>(milliseconds / 1000), static_cast<long>(milliseconds % 1000 * 1000)};
    const int count =
        ::select(0, forWriting ? nullptr : &ready, forWriting ? &ready : nullptr, &broken, &time);
    return std::min(count, 1);
}

namespace {

using SteadyClock = std::chrono::steady_clock;

uint16_t boundPort(const Socket& socket) {
    sockaddr_in address{};
    int size = sizeof address;
    if (::getsockname(socket.get(), reinterpret_cast<sockaddr*>(&address), &size) != 0) return 0;
    return ntohs(address.sin_port);
}

class WinsockUdpSocket : public UdpSocket {
  public:
    explicit WinsockUdpSocket(Socket socket) : socket_(std::move(socket)) {}

    int waitReadable(Millis timeout) override { return noteError(waitSocket(socket_, false, timeout)); }

    int receive(std::span<char> buffer) override {
        const int count = ::recv(socket_.get(), buffer.data(), static_cast<int>(buffer.size()), 0);
        if (count >= 0) return noteError(count);
        const int error = ::WSAGetLastError();
        // A datagram that is longer than the buffer has filled it.
        if (error == WSAEMSGSIZE) return noteError(static_cast<int>(buffer.size()));
        // Nothing there, or one thrown away between the wait and this.
        if (error == WSAEWOULDBLOCK) return 0;
        return noteError(count);
    }

    int lastError() const override { return lastError_; }
    uint16_t port() const override { return boundPort(socket_); }

  private:
    int noteError(int result) {
        lastError_ = result < 0 ? ::WSAGetLastError() : 0;
        return result;
    }

    Socket socket_;
    int lastError_ = 0;
};

class WinsockTcpConnection : public TcpConnection {
  public:
    explicit WinsockTcpConnection(Socket socket) : socket_(std::move(socket)) {}

    bool sendAll(std::string_view bytes, Millis timeout) override {
        // Winsock may take one send of any size into its own memory; pieces keep what waits there small.
        constexpr size_t piece = 65536;
        const auto deadline = SteadyClock::now() + timeout;
        while (!bytes.empty()) {
            const int size = static_cast<int>(std::min(bytes.size(), piece));
            const int sent = ::send(socket_.get(), bytes.data(), size, 0);
            if (sent >= 0) {
                bytes.remove_prefix(static_cast<size_t>(sent));
                continue;
            }
            if (::WSAGetLastError() != WSAEWOULDBLOCK) return failed(::WSAGetLastError());
            const auto left = std::chrono::ceil<Millis>(deadline - SteadyClock::now());
            if (left.count() <= 0) return failed(WSAETIMEDOUT);
            if (waitSocket(socket_, true, left) < 0) return failed(::WSAGetLastError());
        }
        return true;
    }

    int waitReadable(Millis timeout) override {
        const int ready = waitSocket(socket_, false, timeout);
        if (ready < 0) failed(::WSAGetLastError());
        return ready;
    }

    int receive(std::span<char> buffer) override {
        const int count = ::recv(socket_.get(), buffer.data(), static_cast<int>(buffer.size()), 0);
        if (count < 0) failed(::WSAGetLastError());
        return count;
    }

    bool setNoDelay() override {
        const BOOL on = TRUE;
        return ::setsockopt(socket_.get(), IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&on),
                            sizeof on) == 0 ||
               failed(::WSAGetLastError());
    }

    int lastError() const override { return lastError_; }

  private:
    bool failed(int error) {
        lastError_ = error;
        return false;
    }

    Socket socket_;
    int lastError_ = 0;
};

class WinsockTcpListener : public TcpListener {
  public:
    explicit WinsockTcpListener(Socket socket) : socket_(std::move(socket)) {}

    std::unique_ptr<TcpConnection> accept(Millis timeout) override {
        lastError_ = 0;
        const int ready = waitSocket(socket_, false, timeout);
        if (ready < 0) lastError_ = ::WSAGetLastError();
        if (ready <= 0) return nullptr;
        Socket client(::accept(socket_.get(), nullptr, nullptr));
        if (client && makeNonBlocking(client))
            return std::make_unique<WinsockTcpConnection>(std::move(client));
        const int error = ::WSAGetLastError();
        // A client that left before it was taken is no failure of the listener.
        if (error != WSAEWOULDBLOCK && error != WSAECONNRESET && error != WSAECONNABORTED) lastError_ = error;
        return nullptr;
    }

    int lastError() const override { return lastError_; }
    uint16_t port() const override { return boundPort(socket_); }

  private:
    Socket socket_;
    int lastError_ = 0;
};

/// The system's own 64 KB hold a second of dense traffic, and the simulator may keep all cores busy for
/// longer. Without the room it works as well.
void makeRoomForDatagrams(const Socket& socket) {
    constexpr int size = 1 << 20;
    ::setsockopt(socket.get(), SOL_SOCKET, SO_RCVBUF, reinterpret_cast<const char*>(&size), sizeof size);
}

class WinsockNetwork : public Network {
  public:
    std::unique_ptr<UdpSocket> openUdp(uint16_t port, bool loopbackOnly, NetError& error) override {
        if (!started(error)) return nullptr;
        Socket socket(::socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP));
        if (!socket) return fail(error, "socket");
        if (!makeNonBlocking(socket)) return fail(error, "ioctlsocket");
        makeRoomForDatagrams(socket);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(loopbackOnly ? INADDR_LOOPBACK : INADDR_ANY);
        if (::bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
            return fail(error, "bind");
        return std::make_unique<WinsockUdpSocket>(std::move(socket));
    }

    std::unique_ptr<TcpListener> listenTcp(const std::string& port, NetError& error) override {
        if (!started(error)) return nullptr;
        addrinfo hints{};
        hints.ai_family = AF_INET;
        hints.ai_socktype = SOCK_STREAM;
        hints.ai_protocol = IPPROTO_TCP;
        hints.ai_flags = AI_PASSIVE;
        addrinfo* found = nullptr;
        if (const int code = ::getaddrinfo(nullptr, port.c_str(), &hints, &found)) {
            error = {"getaddrinfo", code};
            return nullptr;
        }
        const std::unique_ptr<addrinfo, void (*)(addrinfo*)> owner(found, ::freeaddrinfo);
        Socket socket(::socket(found->ai_family, found->ai_socktype, found->ai_protocol));
        if (!socket) return fail(error, "socket");
        if (!makeNonBlocking(socket)) return fail(error, "ioctlsocket");
        // An address is free here as soon as its listener is gone. SO_REUSEADDR would do something else: let
        // two programs listen on one port, so that the second never learns why no client comes.
        if (::bind(socket.get(), found->ai_addr, static_cast<int>(found->ai_addrlen)) != 0)
            return fail(error, "bind");
        if (::listen(socket.get(), SOMAXCONN) != 0) return fail(error, "listen");
        return std::make_unique<WinsockTcpListener>(std::move(socket));
    }

    std::unique_ptr<ByteStream> connectTcp(const std::string& host, uint16_t port, bool noDelay) override {
        return startWinsock() == 0 ? connectWinsockStream(host, port, noDelay) : nullptr;
    }

    std::unique_ptr<ByteStream> connectPipe(const std::string& name) override { return openPipe(name); }

  private:
    static bool started(NetError& error) {
        const int code = startWinsock();
        if (code != 0) error = {"startup", code};
        return code == 0;
    }

    static std::nullptr_t fail(NetError& error, const char* step) {
        error = {step, ::WSAGetLastError()};
        return nullptr;
    }
};

}  // namespace

Network& systemNetwork() {
    static WinsockNetwork system;
    return system;
}

}  // namespace skl::net
