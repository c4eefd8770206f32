// POSIX sockets.
#include "standin/site/connection.h"

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <limits>

namespace site {

namespace {

constexpr std::size_t kLongestHead = 16384;
constexpr std::string_view kHeadEnd = "\r\n\r\n";

bool wouldBlock() {
    return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR;
}

}  // namespace

Connection::~Connection() {
    ::close(socket_);
}

bool Connection::wantsToReceive() const {
    return !dead_ && !ended_ && in_.size() <= kLongestHead;
}

void Connection::receive() {
    std::array<char, 4096> buffer;
    while (wantsToReceive()) {
        const auto count = ::recv(socket_, buffer.data(), buffer.size(), 0);
        if (count > 0) {
            in_.append(buffer.data(), static_cast<std::size_t>(count));
        } else if (count < 0 && wouldBlock()) {
            return;
        } else {
            ended_ = true;
            dead_ = count < 0 || (busy_ && answer_.hangAfter);
        }
    }
}

std::optional<std::string> Connection::nextHead() {
    const auto end = in_.find(kHeadEnd);
    if (busy_ || (end == std::string::npos && in_.size() <= kLongestHead)) {
        return std::nullopt;
    }
    const auto head = in_.substr(0, end);
    in_.erase(0, end == std::string::npos ? end : end + kHeadEnd.size());
    return head;
}

void Connection::answer(Answer answer, double now) {
    answer_ = std::move(answer);
    sent_ = 0;
    begun_ = now;
    busy_ = true;
}

std::size_t Connection::allowed(double now) const {
    const auto left = busy_ ? answer_.bytes.size() - sent_ : 0;
    if (answer_.rate <= 0 || left == 0) {
        return left;
    }
    const auto due = static_cast<std::size_t>((now - begun_) * answer_.rate);
    return std::min(left, due > sent_ ? due - sent_ : 0);
}

double Connection::untilNext(double now) const {
    const bool waits = busy_ && sent_ < answer_.bytes.size() && !wantsToSend(now);
    return waits ? std::max(0.01, static_cast<double>(sent_ + 1) / answer_.rate - (now - begun_))
                 : std::numeric_limits<double>::infinity();
}

std::uint64_t Connection::send(double now) {
    const auto before = sent_;
    while (const auto size = dead_ ? 0 : allowed(now)) {
        const auto count = ::send(socket_, answer_.bytes.data() + sent_, size, MSG_NOSIGNAL);
        if (count > 0) {
            sent_ += static_cast<std::size_t>(count);
        } else if (count < 0 && wouldBlock()) {
            break;
        } else {
            dead_ = true;
        }
    }
    if (busy_ && sent_ == answer_.bytes.size() && !answer_.hangAfter) {
        busy_ = false;
        dead_ = dead_ || answer_.closeAfter;
    }
    return sent_ - before;
}

}  // namespace site
