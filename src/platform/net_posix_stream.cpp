// The stream of the SimConnect client on a POSIX system. The host's addresses are tried one after the other.
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>

#include "platform/host_lookup.h"
#include "platform/net_posix.h"

namespace skl::net {

namespace {

using SteadyClock = std::chrono::steady_clock;

class PosixByteStream : public ByteStream {
  public:
    PosixByteStream(const std::string& host, uint16_t port, bool noDelay)
        : noDelay_(noDelay), lookup_(host, port) {}

    State state(Millis timeout) override {
        const auto deadline = SteadyClock::now() + timeout;
        if (!started_) {
            if (!lookup_.ready(timeout)) return state_;
            started_ = true;
            tryNextAddress();
        }
        while (state_ == State::connecting) {
            const auto left = std::chrono::ceil<Millis>(deadline - SteadyClock::now());
            const int ready = waitSocket(socket_, true, std::max(left, Millis(0)));
            if (ready == 0) break;
            int error = ready < 0 ? errno : 0;
            socklen_t size = sizeof error;
            if (ready > 0 && ::getsockopt(socket_.get(), SOL_SOCKET, SO_ERROR, &error, &size) != 0)
                error = errno;
            if (error == 0)
                becomeOpen();
            else
                tryNextAddress();
        }
        return state_;
    }

    int64_t write(std::span<const std::byte> bytes) override {
        if (state_ != State::open) return state_ == State::failed ? -1 : 0;
        const auto sent = ::send(socket_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (sent >= 0) return sent;
        // What the other side said last can still be read.
        return errno == EAGAIN || errno == EINTR ? 0 : -1;
    }

    int64_t read(std::span<std::byte> buffer) override {
        if (state_ != State::open) return state_ == State::failed ? -1 : 0;
        if (buffer.empty()) return 0;
        const auto count = ::recv(socket_.get(), buffer.data(), buffer.size(), MSG_DONTWAIT);
        if (count > 0) return count;
        return count < 0 && (errno == EAGAIN || errno == EINTR) ? 0 : die();
    }

  private:
    void tryNextAddress() {
        state_ = State::failed;
        while (const SocketAddress* address = state_ == State::failed ? lookup_.next() : nullptr) {
            socket_ = Fd(::socket(address->storage.ss_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC,
                                  IPPROTO_TCP));
            if (!socket_) continue;
            if (::connect(socket_.get(), address->get(), static_cast<socklen_t>(address->size)) == 0)
                becomeOpen();
            else if (errno == EINPROGRESS)
                state_ = State::connecting;
        }
    }

    void becomeOpen() {
        const int on = 1;
        if (noDelay_) ::setsockopt(socket_.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        state_ = State::open;
    }

    int64_t die() {
        state_ = State::failed;
        return -1;
    }

    bool noDelay_;
    HostLookup lookup_;
    bool started_ = false;  ///< the first address has been tried
    Fd socket_;
    State state_ = State::connecting;
};

}  // namespace

std::unique_ptr<ByteStream> connectPosixStream(const std::string& host, uint16_t port, bool noDelay) {
    return std::make_unique<PosixByteStream>(host, port, noDelay);
}

}  // namespace skl::net
