// The byte streams: a listening socket on the loopback address and the connections of the clients, none of
// which blocks. One thread; the owner waits, receives, works and flushes in turn.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace simulator {

class Server {
  public:
    struct Handlers {
        std::function<void(int connection)> opened;
        std::function<void(int connection, std::string_view packet)> packet;
        std::function<void(int connection)> closed;
    };

    Server() = default;
    ~Server();
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    // Port 0 takes any free one; gives the complaint for the user, or nothing.
    std::string listen(int port);
    int port() const { return port_; }

    // Until something can be read or written, a signal comes, or the time is over.
    void wait(double seconds, bool reading);
    // Takes new connections, reads what is there and hands over every whole packet.
    void receive(const Handlers& handlers, bool reading);
    // Sends what the sockets take, and closes what was to be closed.
    void flush(const Handlers& handlers);

    void send(int connection, std::string_view message);
    // Closes when everything is sent and read, within a second; or at once without sending.
    void close(int connection, bool sendFirst);
    bool empty() const { return connections_.empty(); }

    std::uint64_t bytesReceived = 0;
    std::uint64_t bytesSent = 0;

  private:
    struct Connection {
        int socket = -1;
        std::string in;
        std::string out;
        bool closing = false;  // takes no more packets, ends when `out` is sent and the client has seen it
        bool shut = false;
        std::chrono::steady_clock::time_point patience;
        bool dead = false;
    };

    void readFrom(int id, Connection& connection, const Handlers& handlers);
    void handOver(int id, Connection& connection, const Handlers& handlers);
    void accept(const Handlers& handlers);

    int listener_ = -1;
    int port_ = 0;
    int nextId_ = 1;
    std::map<int, Connection> connections_;
};

}  // namespace simulator
