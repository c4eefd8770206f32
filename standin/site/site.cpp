// Sockets, answers and the report.
#include "standin/site/site.h"

#include <arpa/inet.h>
#include <fmt/format.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <optional>
#include <vector>

#include "standin/common/text.h"
#include "standin/site/request.h"

namespace site {

namespace fs = std::filesystem;

namespace {

constexpr double kSlowRate = 1000;  // bytes a second
constexpr std::string_view kNoPath = "(no request)";

std::string headOf(std::string_view status, std::size_t length, bool keepAlive, std::string_view more = "") {
    return fmt::format(
        "HTTP/1.1 {}\r\nContent-Length: {}\r\nContent-Type: application/octet-stream\r\n{}Connection: "
        "{}\r\n\r\n",
        status, length, more, keepAlive ? "keep-alive" : "close");
}

Answer refusal(std::string_view status, bool bodyWanted, bool keepAlive, std::string_view more = "") {
    const auto body = fmt::format("{}\n", status);
    return {headOf(status, body.size(), keepAlive, more) + (bodyWanted ? body : ""), 0, !keepAlive, false};
}

std::optional<std::string> contentOf(const fs::path& file) {
    std::error_code error;
    if (!fs::is_regular_file(file, error)) {
        return std::nullopt;
    }
    std::ifstream in(file, std::ios::binary);
    std::string content(std::istreambuf_iterator<char>(in), {});
    return in.bad() || !in.is_open() ? std::nullopt : std::optional(std::move(content));
}

std::size_t bytesOr(const Fault& fault, std::size_t otherwise, std::size_t most) {
    return fault.amount ? static_cast<std::size_t>(std::min(*fault.amount, static_cast<double>(most)))
                        : otherwise;
}

}  // namespace

Site::Site(Options options, std::function<double()> clock)
    : options_(std::move(options)), clock_(std::move(clock)), startClock_(clock_()) {}

Site::~Site() {
    if (listener_ >= 0) {
        ::close(listener_);
    }
}

std::string Site::start() {
    std::error_code error;
    if (!fs::is_directory(options_.root, error)) {
        return fmt::format("{} is no folder", options_.root);
    }
    for (const auto& fault : options_.faults) {
        faults_.set(fault);
    }
    if (!options_.script.empty()) {
        if (auto complaint = script_.read(options_.script, faultForms()); !complaint.empty()) {
            return complaint;
        }
    }
    return listen();
}

std::string Site::listen() {
    listener_ = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    const int on = 1;
    ::setsockopt(listener_, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(options_.port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    socklen_t length = sizeof address;
    if (listener_ < 0 || ::bind(listener_, generic, length) != 0 || ::listen(listener_, 16) != 0 ||
        ::getsockname(listener_, generic, &length) != 0) {
        return fmt::format("cannot listen on port {}: {}", options_.port, std::strerror(errno));
    }
    port_ = ntohs(address.sin_port);
    return {};
}

void Site::step(double longestWait) {
    now_ = clock_() - startClock_;
    wait(longestWait);
    now_ = clock_() - startClock_;
    while (const auto* command = script_.due(now_)) {
        faults_.set(faultOf(command->name, command->arguments));
    }
    accept();
    for (auto& connection : connections_) {
        serve(connection);
    }
    connections_.remove_if([](const auto& connection) { return connection.dead(); });
}

void Site::wait(double longestWait) {
    double seconds = std::min(longestWait, std::max(0.0, script_.nextSeconds() - now_));
    std::vector<pollfd> sockets{{listener_, POLLIN, 0}};
    for (const auto& connection : connections_) {
        const int events =
            (connection.wantsToReceive() ? POLLIN : 0) | (connection.wantsToSend(now_) ? POLLOUT : 0);
        sockets.push_back({connection.socket(), static_cast<short>(events), 0});
        seconds = std::min(seconds, connection.untilNext(now_));
    }
    ::poll(sockets.data(), sockets.size(), static_cast<int>(std::ceil(seconds * 1000)));
}

void Site::accept() {
    for (;;) {
        const int socket = ::accept4(listener_, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
        if (socket < 0) {
            return;
        }
        connections_.emplace_back(socket);
        ++accepted_;
    }
}

void Site::serve(Connection& connection) {
    connection.receive();
    bytesSent_ += connection.send(now_);
    while (const auto head = connection.nextHead()) {
        connection.answer(answerTo(*head), now_);
        bytesSent_ += connection.send(now_);
    }
}

Answer Site::answerTo(const std::string& head) {
    ++requests_;
    const auto request = parseRequest(head);
    if (!request) {
        count(std::string(kNoPath), "400");
        return refusal("400 Bad Request", true, false);
    }
    const bool keepAlive = request->keepAlive && !request->hasBody;
    if (request->method != "GET" && request->method != "HEAD") {
        count(request->path, "405");
        return refusal("405 Method Not Allowed", true, false, "Allow: GET, HEAD\r\n");
    }
    return fileAnswer(request->path, request->method == "GET", keepAlive);
}

Answer Site::fileAnswer(const std::string& path, bool bodyWanted, bool keepAlive) {
    const auto fault = faults_.of(path);
    auto content = staysInside(path) ? contentOf(options_.root + path) : std::nullopt;
    if (fault.kind == FaultKind::kHang && !fault.amount) {
        count(path, "hung");
        return {"", 0, false, true};
    }
    if (!content || fault.kind == FaultKind::kMissing) {
        count(path, "404");
        return refusal("404 Not Found", bodyWanted, keepAlive);
    }
    const auto whole = content->size();
    const bool cut = fault.kind == FaultKind::kCut, hang = fault.kind == FaultKind::kHang;
    if (!bodyWanted) {
        content->clear();
    } else if (cut || hang) {
        content->resize(bytesOr(fault, whole / 2, whole));
    }
    const bool slow = fault.kind == FaultKind::kSlow;
    count(path, cut ? "cut" : hang ? "hung" : slow ? "slow" : "200");
    return {headOf("200 OK", whole, keepAlive) + *content,
            slow ? std::max(1.0, fault.amount.value_or(kSlowRate)) : 0, cut || !keepAlive, hang};
}

nlohmann::json Site::report() const {
    auto paths = nlohmann::json::object();
    for (const auto& [path, outcomes] : outcomes_) {
        auto& entry = paths[standin::utf8Of(path)];
        for (const auto& [outcome, number] : outcomes) {
            entry[outcome] = number;
        }
    }
    return {{"connections", accepted_}, {"requests", requests_}, {"bytesSent", bytesSent_}, {"paths", paths}};
}

}  // namespace site
