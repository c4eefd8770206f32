// One client: what it has sent, and what is on its way to it, at the pace that was chosen. Never blocks.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace site {

struct Answer {
    std::string bytes;
    double rate = 0;          // bytes a second; 0: as fast as the socket takes them
    bool closeAfter = false;  // once all is sent
    bool hangAfter = false;   // nothing more comes, and no request is taken
};

class Connection {
  public:
    explicit Connection(int socket) : socket_(socket) {}
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    int socket() const { return socket_; }
    bool dead() const { return dead_ || (ended_ && !busy_); }
    bool wantsToReceive() const;
    void receive();
    // The head of the next request, when it is here and the one before is answered; an endless one comes cut.
    std::optional<std::string> nextHead();
    void answer(Answer answer, double now);
    // Gives the number of bytes that the socket took.
    std::uint64_t send(double now);
    // Whether it waits for the socket, and for how many seconds at most it may be left alone.
    bool wantsToSend(double now) const { return allowed(now) > 0; }
    double untilNext(double now) const;

  private:
    std::size_t allowed(double now) const;

    int socket_;
    std::string in_;
    Answer answer_;
    std::size_t sent_ = 0;
    double begun_ = 0;
    bool busy_ = false;
    bool ended_ = false;  // the client sends no more; an answer on its way still goes out
    bool dead_ = false;
};

}  // namespace site
