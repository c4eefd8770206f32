// The stream of the SimConnect client over Winsock. The host's addresses are tried one after the other.
#include <algorithm>

#include "platform/host_lookup.h"
#include "platform/win32/net_win32.h"

namespace skl::net {

namespace {

using SteadyClock = std::chrono::steady_clock;

class WinsockByteStream : public ByteStream {
  public:
    WinsockByteStream(const std::string& host, uint16_t port, bool noDelay)
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
    void tryNextAddress() {
        state_ = State::failed;
        while (const SocketAddress* address = state_ == State::failed ? lookup_.next() : nullptr) {
            socket_ = Socket(::socket(address->storage.ss_family, SOCK_STREAM, IPPROTO_TCP));
            if (!socket_ || !makeNonBlocking(socket_)) continue;
            if (::connect(socket_.get(), address->get(), address->size) == 0)
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
    HostLookup lookup_;
    bool started_ = false;  ///< the first address has been tried
    Socket socket_;
    State state_ = State::connecting;
};

}  // namespace

std::unique_ptr<ByteStream> connectWinsockStream(const std::string& host, uint16_t port, bool noDelay) {
    return std::make_unique<WinsockByteStream>(host, port, noDelay);
}

}  // namespace skl::net
