// Sockets of a POSIX system: UDP receiver, TCP listener and its connections. No socket blocks; each wait is a
// poll with its own time-out, and a write to a gone peer is an error without a signal.
#include "platform/net_posix.h"

#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>

namespace skl::net {

Fd::~Fd() {
    if (fd_ >= 0) ::close(fd_);
}

int winsockCode(int error) {
    struct Row {
        int posix, winsock;
    };
    static constexpr std::array<Row, 43> rows{{
        {EINTR, 10004},           {EBADF, 10009},           {EACCES, 10013},        {EPERM, 10013},
        {EFAULT, 10014},          {EINVAL, 10022},          {EMFILE, 10024},        {ENFILE, 10024},
        {EAGAIN, 10035},          {EINPROGRESS, 10036},     {EALREADY, 10037},      {ENOTSOCK, 10038},
        {EDESTADDRREQ, 10039},    {EMSGSIZE, 10040},        {EPROTOTYPE, 10041},    {ENOPROTOOPT, 10042},
        {EPROTONOSUPPORT, 10043}, {ESOCKTNOSUPPORT, 10044}, {EOPNOTSUPP, 10045},    {EPFNOSUPPORT, 10046},
        {EAFNOSUPPORT, 10047},    {EADDRINUSE, 10048},      {EADDRNOTAVAIL, 10049}, {ENETDOWN, 10050},
        {ENETUNREACH, 10051},     {ENETRESET, 10052},       {ECONNABORTED, 10053},  {EPIPE, 10053},
        {ECONNRESET, 10054},      {ENOBUFS, 10055},         {ENOMEM, 10055},        {EISCONN, 10056},
        {ENOTCONN, 10057},        {ESHUTDOWN, 10058},       {ETOOMANYREFS, 10059},  {ETIMEDOUT, 10060},
        {ECONNREFUSED, 10061},    {ELOOP, 10062},           {ENAMETOOLONG, 10063},  {EHOSTDOWN, 10064},
        {EHOSTUNREACH, 10065},    {EDQUOT, 10069},          {ESTALE, 10070},
    }};
    for (const Row& row : rows)
        if (row.posix == error) return row.winsock;
    return error;
}

int waitSocket(const Fd& socket, bool forWriting, Millis timeout) {
    pollfd entry{socket.get(), static_cast<short>(forWriting ? POLLOUT : POLLIN), 0};
    const int ready = ::poll(&entry, 1, static_cast<int>(std::max<Millis::rep>(timeout.count(), 0)));
    if (ready < 0) return errno == EINTR ? 0 : -1;
    return ready;
}

namespace {

using SteadyClock = std::chrono::steady_clock;

/// The numbers that Winsock's getaddrinfo gives for the same failures.
int resolverCode(int error) {
    switch (error) {
        case EAI_AGAIN:
            return 11002;
        case EAI_FAIL:
            return 11003;
        case EAI_BADFLAGS:
            return 10022;
        case EAI_FAMILY:
            return 10047;
        case EAI_MEMORY:
            return 8;
        case EAI_SERVICE:
            return 10109;
        case EAI_SOCKTYPE:
            return 10044;
        case EAI_SYSTEM:
            return winsockCode(errno);
        default:
            return 11001;
    }
}

uint16_t boundPort(const Fd& socket) {
    sockaddr_in address{};
    socklen_t size = sizeof address;
    if (::getsockname(socket.get(), reinterpret_cast<sockaddr*>(&address), &size) != 0) return 0;
    return ntohs(address.sin_port);
}

class PosixUdpSocket : public UdpSocket {
  public:
    explicit PosixUdpSocket(Fd socket) : socket_(std::move(socket)) {}

    int waitReadable(Millis timeout) override { return noteError(waitSocket(socket_, false, timeout)); }

    int receive(std::span<char> buffer) override {
        const auto count = ::recv(socket_.get(), buffer.data(), buffer.size(), 0);
        // Readable but empty: the datagram was thrown away for a bad checksum.
        if (count < 0 && (errno == EAGAIN || errno == EINTR)) return 0;
        return noteError(static_cast<int>(count));
    }

    int lastError() const override { return lastError_; }
    uint16_t port() const override { return boundPort(socket_); }

  private:
    int noteError(int result) {
        lastError_ = result < 0 ? winsockCode(errno) : 0;
        return result;
    }

    Fd socket_;
    int lastError_ = 0;
};

class PosixTcpConnection : public TcpConnection {
  public:
    explicit PosixTcpConnection(Fd socket) : socket_(std::move(socket)) {}

    bool sendAll(std::string_view bytes, Millis timeout) override {
        const auto deadline = SteadyClock::now() + timeout;
        while (!bytes.empty()) {
            const auto sent = ::send(socket_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
            if (sent >= 0) {
                bytes.remove_prefix(static_cast<size_t>(sent));
                continue;
            }
            if (errno == EINTR) continue;
            if (errno != EAGAIN) return failed(errno);
            const auto left = std::chrono::ceil<Millis>(deadline - SteadyClock::now());
            if (left.count() <= 0) return failed(ETIMEDOUT);
            if (waitSocket(socket_, true, left) < 0) return failed(errno);
        }
        return true;
    }

    int waitReadable(Millis timeout) override {
        const int ready = waitSocket(socket_, false, timeout);
        if (ready < 0) failed(errno);
        return ready;
    }

    int receive(std::span<char> buffer) override {
        const auto count = ::recv(socket_.get(), buffer.data(), buffer.size(), 0);
        if (count < 0) failed(errno);
        return static_cast<int>(count);
    }

    bool setNoDelay() override {
        const int on = 1;
        return ::setsockopt(socket_.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on) == 0 || failed(errno);
    }

    int lastError() const override { return lastError_; }

  private:
    bool failed(int error) {
        lastError_ = winsockCode(error);
        return false;
    }

    Fd socket_;
    int lastError_ = 0;
};

class PosixTcpListener : public TcpListener {
  public:
    explicit PosixTcpListener(Fd socket) : socket_(std::move(socket)) {}

    std::unique_ptr<TcpConnection> accept(Millis timeout) override {
        lastError_ = 0;
        const int ready = waitSocket(socket_, false, timeout);
        if (ready < 0) lastError_ = winsockCode(errno);
        if (ready <= 0) return nullptr;
        Fd client(::accept4(socket_.get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
        if (client) return std::make_unique<PosixTcpConnection>(std::move(client));
        // A client that left before it was taken is no failure of the listener.
        if (errno != EAGAIN && errno != EINTR && errno != ECONNABORTED) lastError_ = winsockCode(errno);
        return nullptr;
    }

    int lastError() const override { return lastError_; }
    uint16_t port() const override { return boundPort(socket_); }

  private:
    Fd socket_;
    int lastError_ = 0;
};

class PosixNetwork : public Network {
  public:
    std::unique_ptr<UdpSocket> openUdp(uint16_t port, bool loopbackOnly, NetError& error) override {
        Fd socket(::socket(AF_INET, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, IPPROTO_UDP));
        if (!socket) return fail(error, "socket");
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(loopbackOnly ? INADDR_LOOPBACK : INADDR_ANY);
        if (::bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
            return fail(error, "bind");
        return std::make_unique<PosixUdpSocket>(std::move(socket));
    }

    std::unique_ptr<TcpListener> listenTcp(const std::string& port, NetError& error) override {
        addrinfo hints{};
        hints.ai_family = AF_INET;
        hints.ai_socktype = SOCK_STREAM;
        hints.ai_protocol = IPPROTO_TCP;
        hints.ai_flags = AI_PASSIVE;
        addrinfo* found = nullptr;
        if (const int code = ::getaddrinfo(nullptr, port.c_str(), &hints, &found)) {
            error = {"getaddrinfo", resolverCode(code)};
            return nullptr;
        }
        const std::unique_ptr<addrinfo, void (*)(addrinfo*)> owner(found, ::freeaddrinfo);
        Fd socket(::socket(found->ai_family, found->ai_socktype | SOCK_NONBLOCK | SOCK_CLOEXEC,
                           found->ai_protocol));
        if (!socket) return fail(error, "socket");
        const int on = 1;
        if (::setsockopt(socket.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on) != 0)
            return fail(error, "setsockopt");
        if (::bind(socket.get(), found->ai_addr, found->ai_addrlen) != 0) return fail(error, "bind");
        if (::listen(socket.get(), SOMAXCONN) != 0) return fail(error, "listen");
        return std::make_unique<PosixTcpListener>(std::move(socket));
    }

    std::unique_ptr<ByteStream> connectTcp(const std::string& host, uint16_t port, bool noDelay) override {
        return connectPosixStream(host, port, noDelay);
    }

    std::unique_ptr<ByteStream> connectPipe(const std::string&) override { return nullptr; }

  private:
    static std::nullptr_t fail(NetError& error, const char* step) {
        error = {step, winsockCode(errno)};
        return nullptr;
    }
};

}  // namespace

Network& systemNetwork() {
    static PosixNetwork system;
    return system;
}

}  // namespace skl::net
