// POSIX sockets.
#include "standin/realtraffic/link.h"

#include <arpa/inet.h>
#include <fmt/format.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>

namespace realtraffic {

namespace {

constexpr double kRetrySeconds = 1;
constexpr std::size_t kLongestLine = 16384;

bool addressOf(const std::string& host, int port, sockaddr_in& address) {
    address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    return ::inet_pton(AF_INET, host.c_str(), &address.sin_addr) == 1;
}

}  // namespace

bool Link::open(double now) {
    if (state_ == State::kUp || now < nextAttempt_) {
        return false;
    }
    sockaddr_in address{};
    if (!addressOf(host_, port_, address)) {
        return false;
    }
    if (state_ == State::kClosed) {
        socket_ = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
        state_ = State::kConnecting;
    }
    if (::connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 ||
        errno == EISCONN) {
        const int on = 1;
        ::setsockopt(socket_, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        state_ = State::kUp;
        return true;
    }
    if (errno != EINPROGRESS && errno != EALREADY && errno != EINTR) {
        close();
        nextAttempt_ = now + kRetrySeconds;
    }
    return false;
}

std::vector<std::string> Link::receive(bool& lost) {
    std::vector<std::string> lines;
    lost = false;
    std::array<char, 4096> buffer;
    while (up() && !lost) {
        const auto count = ::recv(socket_, buffer.data(), buffer.size(), 0);
        if (count > 0) {
            bytesReceived += static_cast<std::uint64_t>(count);
            in_.append(buffer.data(), static_cast<std::size_t>(count));
        } else if (count < 0 && errno == EINTR) {
            continue;
        } else if (count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) {
            break;
        } else {
            lost = true;
        }
    }
    for (auto end = in_.find('\n'); end != std::string::npos; end = in_.find('\n')) {
        lines.push_back(in_.substr(0, end > 0 && in_[end - 1] == '\r' ? end - 1 : end));
        in_.erase(0, end + 1);
    }
    if (in_.size() > kLongestLine) {
        lines.push_back(std::move(in_));
        in_.clear();
    }
    if (lost) {
        close();
    }
    return lines;
}

bool Link::send(std::string_view text) {
    if (!up()) {
        return false;
    }
    const auto count = ::send(socket_, text.data(), text.size(), MSG_NOSIGNAL);
    if (count > 0) {
        bytesSent += static_cast<std::uint64_t>(count);
    }
    if (count == static_cast<ssize_t>(text.size())) {
        return true;
    }
    close();
    return false;
}

void Link::close() {
    if (socket_ >= 0) {
        ::close(socket_);
    }
    socket_ = -1;
    state_ = State::kClosed;
    in_.clear();
}

Datagrams::~Datagrams() {
    if (socket_ >= 0) {
        ::close(socket_);
    }
}

std::string Datagrams::open() {
    sockaddr_in address{};
    if (!addressOf(host_, port_, address)) {
        return fmt::format("{} is no IPv4 address", host_);
    }
    socket_ = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    const int on = 1;
    if (socket_ < 0 || ::setsockopt(socket_, SOL_SOCKET, SO_BROADCAST, &on, sizeof on) != 0) {
        return fmt::format("cannot open a socket for datagrams: {}", std::strerror(errno));
    }
    return {};
}

bool Datagrams::send(std::string_view bytes) {
    // Not connected, so that a port that nobody has opened yet is no error.
    sockaddr_in address{};
    addressOf(host_, port_, address);
    const auto count = ::sendto(socket_, bytes.data(), bytes.size(), 0,
                                reinterpret_cast<const sockaddr*>(&address), sizeof address);
    bytesSent += count > 0 ? static_cast<std::uint64_t>(count) : 0;
    return count == static_cast<ssize_t>(bytes.size());
}

}  // namespace realtraffic
