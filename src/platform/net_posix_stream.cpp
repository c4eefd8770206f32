// The stream of the SimConnect client on a POSIX system. The host's addresses are tried one after the other;
// a host name is looked up on a helper thread that owns its result, since a look-up may take longer than
// anyone here may wait.
#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <cstring>
#include <mutex>
#include <thread>
#include <vector>

#include "platform/net_posix.h"

namespace skl::net {

namespace {

using SteadyClock = std::chrono::steady_clock;

struct Address {
    sockaddr_storage storage{};
    socklen_t size = 0;
};

std::vector<Address> lookUp(const std::string& host, uint16_t port, int flags) {
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_protocol = IPPROTO_TCP;
    hints.ai_flags = flags;
    addrinfo* found = nullptr;
    if (::getaddrinfo(host.c_str(), std::to_string(port).c_str(), &hints, &found) != 0) return {};
    const std::unique_ptr<addrinfo, void (*)(addrinfo*)> owner(found, ::freeaddrinfo);
    std::vector<Address> addresses;
    for (const addrinfo* entry = found; entry; entry = entry->ai_next) {
        Address& address = addresses.emplace_back();
        std::memcpy(&address.storage, entry->ai_addr,
                    std::min<size_t>(entry->ai_addrlen, sizeof address.storage));
        address.size = entry->ai_addrlen;
    }
    return addresses;
}

/// A look-up that may outlive the stream that asked for it: the thread holds a share of it.
struct PendingLookup {
    std::mutex lock;
    std::condition_variable changed;
    bool done = false;
    std::vector<Address> addresses;
};

class PosixByteStream : public ByteStream {
  public:
    PosixByteStream(const std::string& host, uint16_t port, bool noDelay) : noDelay_(noDelay) {
        addresses_ = lookUp(host, port, AI_NUMERICHOST);
        if (!addresses_.empty()) {
            tryNextAddress();
            return;
        }
        lookup_ = std::make_shared<PendingLookup>();
        std::thread([pending = lookup_, host, port] {
            auto found = lookUp(host, port, 0);
            const std::lock_guard guard(pending->lock);
            pending->addresses = std::move(found);
            pending->done = true;
            pending->changed.notify_all();
        }).detach();
    }

    State state(Millis timeout) override {
        const auto deadline = SteadyClock::now() + timeout;
        if (lookup_ && !takeAddresses(timeout)) return state_;
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
    bool takeAddresses(Millis timeout) {
        std::unique_lock guard(lookup_->lock);
        if (!lookup_->changed.wait_for(guard, timeout, [this] { return lookup_->done; })) return false;
        addresses_ = std::move(lookup_->addresses);
        guard.unlock();
        lookup_.reset();
        tryNextAddress();
        return true;
    }

    void tryNextAddress() {
        state_ = State::failed;
        while (next_ < addresses_.size() && state_ == State::failed) {
            const Address& address = addresses_[next_++];
            socket_ = Fd(
                ::socket(address.storage.ss_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, IPPROTO_TCP));
            if (!socket_) continue;
            const auto* target = reinterpret_cast<const sockaddr*>(&address.storage);
            if (::connect(socket_.get(), target, address.size) == 0)
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
    std::shared_ptr<PendingLookup> lookup_;
    std::vector<Address> addresses_;
    size_t next_ = 0;
    Fd socket_;
    State state_ = State::connecting;
};

}  // namespace

std::unique_ptr<ByteStream> connectPosixStream(const std::string& host, uint16_t port, bool noDelay) {
    return std::make_unique<PosixByteStream>(host, port, noDelay);
}

}  // namespace skl::net
