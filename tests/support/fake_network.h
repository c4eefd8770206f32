// A network in memory for stepped tests: datagrams by port, clients of the program's listener as a test
// scripts them. Nothing waits; single thread.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "platform/net.h"

namespace skl::test {

/// The far end of a connection to the program's listener.
class FakeClient {
  public:
    /// What the program has sent so far.
    std::string sent;
    /// What was sent since the last call.
    std::string takeSent();
    /// One segment for the program to read.
    void say(std::string segment) { segments.push_back(std::move(segment)); }
    /// No more segments: the stream ends, and every later send fails.
    void leave();

    std::deque<std::string> segments;
    bool ended = false;
    int sendError = 0, receiveError = 0, noDelayError = 0;  ///< 0: works
    bool dropped = false;                                   ///< the program has closed its end
};

class FakeNetwork : public net::Network {
  public:
    /// In force from here to the end of its life.
    FakeNetwork();
    ~FakeNetwork() override;

    /// False, and lost, when nobody is bound to the port.
    bool sendUdp(uint16_t port, std::string datagram);
    bool udpOpen(uint16_t port) const { return udp_.contains(port); }
    bool udpLoopbackOnly(uint16_t port) const { return udp_.at(port)->loopbackOnly; }
    /// Every later receive on the port fails.
    void breakUdp(uint16_t port, int error) { udp_.at(port)->error = error; }

    /// A client that waits to be accepted, whether or not the program listens yet.
    std::shared_ptr<FakeClient> connectClient();
    std::string listenPort;  ///< empty while the program does not listen
    int acceptError = 0;
    /// The step at which opening a socket fails, and with what; code 0: nothing fails.
    net::NetError openFailure;
    /// Answers the SimConnect client; without it there is no server.
    std::function<std::unique_ptr<net::ByteStream>(const std::string&, uint16_t)> onConnect;

    std::unique_ptr<net::UdpSocket> openUdp(uint16_t port, bool loopbackOnly, net::NetError& error) override;
    std::unique_ptr<net::TcpListener> listenTcp(const std::string& port, net::NetError& error) override;
    std::unique_ptr<net::ByteStream> connectTcp(const std::string& host, uint16_t port,
                                                bool noDelay) override;
    std::unique_ptr<net::ByteStream> connectPipe(const std::string& name) override;

  private:
    struct UdpPort {
        std::deque<std::string> datagrams;
        bool loopbackOnly = false;
        int error = 0;
    };
    class Udp;
    class Listener;
    std::map<uint16_t, std::shared_ptr<UdpPort>> udp_;
    std::deque<std::shared_ptr<FakeClient>> waiting_;
};

}  // namespace skl::test
