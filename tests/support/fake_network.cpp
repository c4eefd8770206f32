#include "tests/support/fake_network.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace skl::test {

namespace {

int copyOut(const std::string& bytes, std::span<char> buffer) {
    const size_t count = std::min(bytes.size(), buffer.size());
    std::memcpy(buffer.data(), bytes.data(), count);
    return static_cast<int>(count);
}

class Connection : public net::TcpConnection {
  public:
    explicit Connection(std::shared_ptr<FakeClient> peer) : peer_(std::move(peer)) {}
    ~Connection() override { peer_->dropped = true; }

    bool sendAll(std::string_view bytes, net::Millis) override {
        if (peer_->sendError != 0) return fail(peer_->sendError);
        peer_->sent += bytes;
        return true;
    }
    int waitReadable(net::Millis) override {
        return !peer_->segments.empty() || peer_->ended || peer_->receiveError != 0 ? 1 : 0;
    }
    int receive(std::span<char> buffer) override {
        if (peer_->receiveError != 0) return fail(peer_->receiveError) ? 0 : -1;
        if (peer_->segments.empty()) return 0;
        const int count = copyOut(peer_->segments.front(), buffer);
        peer_->segments.pop_front();
        return count;
    }
    bool setNoDelay() override { return peer_->noDelayError == 0 || fail(peer_->noDelayError); }
    int lastError() const override { return lastError_; }

  private:
    bool fail(int error) {
        lastError_ = error;
        return false;
    }
    std::shared_ptr<FakeClient> peer_;
    int lastError_ = 0;
};

}  // namespace

class FakeNetwork::Udp : public net::UdpSocket {
  public:
    Udp(FakeNetwork& network, uint16_t port)
        : network_(network), port_(port), state_(network.udp_.at(port)) {}
    ~Udp() override { network_.udp_.erase(port_); }
    int waitReadable(net::Millis) override {
        return !state_->datagrams.empty() || state_->error != 0 ? 1 : 0;
    }
    int receive(std::span<char> buffer) override {
        if (state_->error != 0) return -1;
        const int count = copyOut(state_->datagrams.front(), buffer);
        state_->datagrams.pop_front();
        return count;
    }
    int lastError() const override { return state_->error; }
    uint16_t port() const override { return port_; }

  private:
    FakeNetwork& network_;
    const uint16_t port_;
    std::shared_ptr<UdpPort> state_;
};

class FakeNetwork::Listener : public net::TcpListener {
  public:
    explicit Listener(FakeNetwork& network) : network_(network) {}
    ~Listener() override { network_.listenPort.clear(); }
    std::unique_ptr<net::TcpConnection> accept(net::Millis) override {
        if (network_.acceptError != 0 || network_.waiting_.empty()) return nullptr;
        auto peer = network_.waiting_.front();
        network_.waiting_.pop_front();
        return std::make_unique<Connection>(std::move(peer));
    }
    int lastError() const override { return network_.acceptError; }
    uint16_t port() const override { return static_cast<uint16_t>(std::atoi(network_.listenPort.c_str())); }

  private:
    FakeNetwork& network_;
};

std::string FakeClient::takeSent() {
    return std::exchange(sent, {});
}

void FakeClient::leave() {
    ended = true;
    sendError = 10054;
}

FakeNetwork::FakeNetwork() {
    net::setNetwork(this);
}
FakeNetwork::~FakeNetwork() {
    net::setNetwork(nullptr);
}

bool FakeNetwork::sendUdp(uint16_t port, std::string datagram) {
    const auto found = udp_.find(port);
    if (found == udp_.end()) return false;
    found->second->datagrams.push_back(std::move(datagram));
    return true;
}

std::shared_ptr<FakeClient> FakeNetwork::connectClient() {
    waiting_.push_back(std::make_shared<FakeClient>());
    return waiting_.back();
}

std::unique_ptr<net::UdpSocket> FakeNetwork::openUdp(uint16_t port, bool loopbackOnly, net::NetError& error) {
    if (openFailure.code != 0) {
        error = openFailure;
        return nullptr;
    }
    if (udpOpen(port)) {
        error = {"bind", 10048};
        return nullptr;
    }
    udp_[port] = std::make_shared<UdpPort>();
    udp_[port]->loopbackOnly = loopbackOnly;
    return std::make_unique<Udp>(*this, port);
}

std::unique_ptr<net::TcpListener> FakeNetwork::listenTcp(const std::string& port, net::NetError& error) {
    if (openFailure.code != 0) {
        error = openFailure;
        return nullptr;
    }
    listenPort = port;
    return std::make_unique<Listener>(*this);
}

std::unique_ptr<net::ByteStream> FakeNetwork::connectTcp(const std::string& host, uint16_t port, bool) {
    return onConnect ? onConnect(host, port) : nullptr;
}

std::unique_ptr<net::ByteStream> FakeNetwork::connectPipe(const std::string& name) {
    return onConnect ? onConnect(name, 0) : nullptr;
}

}  // namespace skl::test
