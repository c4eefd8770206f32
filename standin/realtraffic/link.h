// The TCP link to the program: opened again and again until it stands, never blocking. One thread.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace realtraffic {

class Link {
  public:
    Link(std::string host, int port) : host_(std::move(host)), port_(port) {}
    ~Link() { close(); }
    Link(const Link&) = delete;
    Link& operator=(const Link&) = delete;

    bool up() const { return state_ == State::kUp; }
    int socket() const { return socket_; }  // to wait for; below 0 without one
    bool connecting() const { return state_ == State::kConnecting; }

    // Tries to open when a second has gone since the last attempt. True when the link came up by it.
    bool open(double now);
    // What has come, by lines without their ends. `lost` is set when the other side has gone.
    std::vector<std::string> receive(bool& lost);
    // Small texts only: one that the socket does not take at once closes the link.
    bool send(std::string_view text);
    void close();

    std::uint64_t bytesReceived = 0;
    std::uint64_t bytesSent = 0;

  private:
    enum class State { kClosed, kConnecting, kUp };

    std::string host_;
    int port_;
    int socket_ = -1;
    State state_ = State::kClosed;
    double nextAttempt_ = 0;
    std::string in_;
};

// The UDP socket for one port of the program.
class Datagrams {
  public:
    Datagrams(std::string host, int port) : host_(std::move(host)), port_(port) {}
    ~Datagrams();
    Datagrams(const Datagrams&) = delete;
    Datagrams& operator=(const Datagrams&) = delete;

    // Gives the complaint for the user, or nothing.
    std::string open();
    // False when the system did not take it.
    bool send(std::string_view bytes);

    std::uint64_t bytesSent = 0;

  private:
    std::string host_;
    int port_;
    int socket_ = -1;
};

}  // namespace realtraffic
