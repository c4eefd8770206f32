#include "platform/host_lookup.h"

#ifndef _WIN32
#include <netdb.h>
#include <netinet/in.h>
#endif

#include <algorithm>
#include <condition_variable>
#include <cstring>
#include <mutex>
#include <thread>

namespace skl::net {

/// A look-up that may outlive the stream that asked for it: the thread holds a share of it.
struct HostLookup::Pending {
    std::mutex lock;
    std::condition_variable changed;
    bool done = false;
    std::vector<SocketAddress> addresses;
};

namespace {

std::vector<SocketAddress> lookUp(const std::string& host, uint16_t port, int flags) {
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_protocol = IPPROTO_TCP;
    hints.ai_flags = flags;
    addrinfo* found = nullptr;
    if (::getaddrinfo(host.c_str(), std::to_string(port).c_str(), &hints, &found) != 0) return {};
    const std::unique_ptr<addrinfo, void (*)(addrinfo*)> owner(found, ::freeaddrinfo);
    std::vector<SocketAddress> addresses;
    for (const addrinfo* entry = found; entry; entry = entry->ai_next) {
        SocketAddress& address = addresses.emplace_back();
        const size_t size = std::min<size_t>(entry->ai_addrlen, sizeof address.storage);
        std::memcpy(&address.storage, entry->ai_addr, size);
        address.size = static_cast<int>(size);
    }
    // The simulator listens on IPv4, and Windows needs two seconds to see that nobody listens on another one.
    std::stable_partition(addresses.begin(), addresses.end(),
                          [](const SocketAddress& address) { return address.storage.ss_family == AF_INET; });
    return addresses;
}

}  // namespace

HostLookup::HostLookup(const std::string& host, uint16_t port)
    : addresses_(lookUp(host, port, AI_NUMERICHOST)) {
    if (!addresses_.empty()) return;
    pending_ = std::make_shared<Pending>();
    std::thread([pending = pending_, host, port] {
        auto found = lookUp(host, port, 0);
        const std::lock_guard guard(pending->lock);
        pending->addresses = std::move(found);
        pending->done = true;
        pending->changed.notify_all();
    }).detach();
}

bool HostLookup::ready(std::chrono::milliseconds timeout) {
    if (!pending_) return true;
    std::unique_lock guard(pending_->lock);
    if (!pending_->changed.wait_for(guard, timeout, [this] { return pending_->done; })) return false;
    addresses_ = std::move(pending_->addresses);
    guard.unlock();
    pending_.reset();
    return true;
}

const SocketAddress* HostLookup::next() {
    return next_ < addresses_.size() ? &addresses_[next_++] : nullptr;
}

}  // namespace skl::net
