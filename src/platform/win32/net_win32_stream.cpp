// The stream of the SimConnect client over Winsock. The host's addresses are tried one after the other; a
// host name is looked up on a helper thread that owns its result, since a look-up may take longer than anyone
// here may wait.
#include <algorithm>
#include <condition_variable>
#include <cstring>
#include <mutex>
#include <thread>
#include <vector>

#include "platform/win32/net_win32.h"

namespace skl::net {

namespace {

using SteadyClock = std::chrono::steady_clock;

struct Address {
    sockaddr_storage storage{};
    int size = 0;
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
        const size_t size = std::min<size_t>(entry->ai_addrlen, sizeof address.storage);
        std::memcpy(&address.storage, entry->ai_addr, size);
        address.size = static_cast<int>(size);
    }
    // Windows needs two seconds to see that nobody listens; the simulator listens on IPv4.
    std::stable_partition(addresses.begin(), addresses.end(),
                          [](const Address& address) { return address.storage.ss_family == AF_INET; });
    return addresses;
}

/// A look-up that may outlive the stream that asked for it: the thread holds a share of it.
struct PendingLookup {
    std::mutex lock;
    std::condition_variable changed;
    bool done = false;
    std::vector<Address> addresses;
};

class WinsockByteStream : public ByteStream {
  public:
    WinsockByteStream(const std::string& host, uint16_t port, bool noDelay) : noDelay_(noDelay) {
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
            int error = ready < 0 ? ::WSAGetLastError() : 0;
            int size = sizeof error;
            if (ready > 0 && ::getsockopt(socket_.get(), SOL_SOCKET, SO_ERROR,
                                          reinterpret_cast<char*>(&error), &size) != 0)
                error = ::WSAGetLastError();
            if (error == 0)
                becomeOpen();
            else
                tryNextAddress();
        }
        return state_;
    }

    int64_t write(std::span<const std::byte> bytes) override {
        if (state_ != State::open) return state_ == State::failed ? -1 : 0;
        // Pieces, since Winsock may take one send of any size into its own memory.
        constexpr size_t piece = 65536;
        const int sent = ::send(socket_.get(), reinterpret_cast<const char*>(bytes.data()),
                                static_cast<int>(std::min(bytes.size(), piece)), 0);
        if (sent >= 0) return sent;
        // What the other side said last can still be read.
        return ::WSAGetLastError() == WSAEWOULDBLOCK ? 0 : -1;
    }

    int64_t read(std::span<std::byte> buffer) override {
        if (state_ != State::open) return state_ == State::failed ? -1 : 0;
        if (buffer.empty()) return 0;
        const int count =
            ::recv(socket_.get(), reinterpret_cast<char*>(buffer.data()), static_cast<int>(buffer.size()), 0);
        if (count > 0) return count;
        if (count < 0 && ::WSAGetLastError() == WSAEWOULDBLOCK) return 0;
        state_ = State::failed;
        return -1;
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
            socket_ = Socket(::socket(address.storage.ss_family, SOCK_STREAM, IPPROTO_TCP));
            if (!socket_ || !makeNonBlocking(socket_)) continue;
            const auto* target = reinterpret_cast<const sockaddr*>(&address.storage);
            if (::connect(socket_.get(), target, address.size) == 0)
                becomeOpen();
            else if (::WSAGetLastError() == WSAEWOULDBLOCK)
                state_ = State::connecting;
        }
    }

    void becomeOpen() {
        const BOOL on = TRUE;
        if (noDelay_)
            ::setsockopt(socket_.get(), IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&on),
                         sizeof on);
        state_ = State::open;
    }

    bool noDelay_;
    std::shared_ptr<PendingLookup> lookup_;
    std::vector<Address> addresses_;
    size_t next_ = 0;
    Socket socket_;
    State state_ = State::connecting;
};

}  // namespace

std::unique_ptr<ByteStream> connectWinsockStream(const std::string& host, uint16_t port, bool noDelay) {
    return std::make_unique<WinsockByteStream>(host, port, noDelay);
}

}  // namespace skl::net
