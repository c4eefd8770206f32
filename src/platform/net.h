// Sockets behind a seam: the system's own, or those of a test. Errors are Winsock's numbers; -1 and 0 mean
// what they mean for recv. A broken pipe is an error, never a signal. An object is used by one thread.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace skl::net {

using Millis = std::chrono::milliseconds;

/// What a call that can fail at several steps reports: the step's name ("startup", "getaddrinfo", "socket",
/// "ioctlsocket", "setsockopt", "bind", "listen") and the error.
struct NetError {
    std::string step;
    int code = 0;
};

class UdpSocket {
  public:
    virtual ~UdpSocket() = default;
    /// 1 readable, 0 timed out, -1 failed.
    virtual int waitReadable(Millis timeout) = 0;
    /// Bytes of one datagram (cut to the buffer), 0 for an empty one, -1 on failure.
    virtual int receive(std::span<char> buffer) = 0;
    virtual int lastError() const = 0;
    virtual uint16_t port() const = 0;  ///< the one it is bound to
};

class TcpConnection {
  public:
    virtual ~TcpConnection() = default;
    /// Sends all of it, waiting up to `timeout` for room. False on failure or when the time is over.
    virtual bool sendAll(std::string_view bytes, Millis timeout) = 0;
    /// 1 readable (data or end), 0 timed out, -1 failed.
    virtual int waitReadable(Millis timeout) = 0;
    virtual int receive(std::span<char> buffer) = 0;
    virtual bool setNoDelay() = 0;
    virtual int lastError() const = 0;
};

class TcpListener {
  public:
    virtual ~TcpListener() = default;
    /// The next connection, waiting up to `timeout` for it; nothing if none has come or on failure (lastError
    /// not 0).
    virtual std::unique_ptr<TcpConnection> accept(Millis timeout) = 0;
    virtual int lastError() const = 0;
    virtual uint16_t port() const = 0;
};

/// A stream to a server for the SimConnect client: connects and moves bytes without ever blocking.
class ByteStream {
  public:
    virtual ~ByteStream() = default;
    enum class State { connecting, open, failed };
    /// Looks at the connection's progress for up to `timeout`.
    virtual State state(Millis timeout) = 0;
    /// Bytes taken by the system (0: none just now), or -1 when the stream is dead.
    virtual int64_t write(std::span<const std::byte> bytes) = 0;
    /// Bytes read (0: none just now), or -1 when the stream has ended or is dead.
    virtual int64_t read(std::span<std::byte> buffer) = 0;
};

class Network {
  public:
    virtual ~Network() = default;
    /// Bound to 127.0.0.1 if `loopbackOnly`, else to any address. On failure nothing, and `error` tells the
    /// step.
    virtual std::unique_ptr<UdpSocket> openUdp(uint16_t port, bool loopbackOnly, NetError& error) = 0;
    /// Listens on the port of that text on any address, with the address reused.
    virtual std::unique_ptr<TcpListener> listenTcp(const std::string& port, NetError& error) = 0;
    virtual std::unique_ptr<ByteStream> connectTcp(const std::string& host, uint16_t port, bool noDelay) = 0;
    /// A stream to a named pipe of this PC; nothing if there is none of that name.
    virtual std::unique_ptr<ByteStream> connectPipe(const std::string& name) = 0;
};

/// The network in force: the system's unless a test has set its own.
Network& network();
/// The system's own, whatever a test has set.
Network& systemNetwork();
void setNetwork(Network* network);

}  // namespace skl::net
