// The system's sockets against plain ones on the loopback: error numbers, time-outs, and a stream that never
// blocks.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/net.h"
#include "tests/support/loopback_sockets.h"

namespace skl {
namespace {

using net::ByteStream;
using net::Millis;
using test::LoopbackSocket;

std::unique_ptr<ByteStream> openStream(const std::string& host, uint16_t port) {
    auto stream = net::network().connectTcp(host, port, true);
    for (int i = 0; i < 100 && stream->state(Millis(100)) == ByteStream::State::connecting; ++i) {
    }
    return stream;
}

TEST(Net, UdpReceivesWholeDatagramsAndCutsThemToTheBuffer) {
    net::NetError error;
    auto socket = net::network().openUdp(0, true, error);
    ASSERT_TRUE(socket);
    auto sender = LoopbackSocket::udpTo(socket->port());
    std::vector<char> buffer(8);
    EXPECT_EQ(socket->waitReadable(Millis(0)), 0);
    EXPECT_EQ(socket->receive(buffer), 0) << "nothing there is no failure";
    sender.send("abc");
    sender.send("0123456789");
    ASSERT_EQ(socket->waitReadable(Millis(5000)), 1);
    EXPECT_EQ(socket->receive(buffer), 3);
    EXPECT_EQ(socket->receive(buffer), 8);
    EXPECT_EQ(socket->lastError(), 0);

    EXPECT_FALSE(net::network().openUdp(socket->port(), true, error));
    EXPECT_EQ(error.step, "bind");
    EXPECT_EQ(error.code, 10048);
}

TEST(Net, ListenerTakesClientsAndReportsWinsockErrors) {
    net::NetError error;
    auto listener = net::network().listenTcp("0", error);
    ASSERT_TRUE(listener);
    EXPECT_FALSE(listener->accept(Millis(0)));
    EXPECT_EQ(listener->lastError(), 0);
    auto peer = LoopbackSocket::tcpTo(listener->port());
    auto connection = listener->accept(Millis(5000));
    ASSERT_TRUE(connection);
    EXPECT_TRUE(connection->setNoDelay());
    EXPECT_TRUE(connection->sendAll("hello", Millis(100)));
    EXPECT_EQ(peer.receive(), "hello");
    EXPECT_EQ(connection->waitReadable(Millis(0)), 0);
    peer.reset();
    std::vector<char> buffer(8);
    ASSERT_EQ(connection->waitReadable(Millis(5000)), 1);
#ifdef _WIN32
    // Emulators tell a reset as an end, and by the next send.
    EXPECT_LE(connection->receive(buffer), 0);
    EXPECT_FALSE(connection->sendAll("x", Millis(100)));
    EXPECT_TRUE(connection->lastError() == 10053 || connection->lastError() == 10054)
        << connection->lastError();
#else
    EXPECT_EQ(connection->receive(buffer), -1);
    EXPECT_EQ(connection->lastError(), 10054);
    EXPECT_FALSE(connection->sendAll("x", Millis(100)));
    EXPECT_EQ(connection->lastError(), 10053);
#endif

    EXPECT_FALSE(net::network().listenTcp(std::to_string(listener->port()), error));
    EXPECT_EQ(error.step, "bind");
    EXPECT_EQ(error.code, 10048);
    EXPECT_FALSE(net::network().listenTcp("no port", error));
    EXPECT_EQ(error.step, "getaddrinfo");
    EXPECT_EQ(error.code, 10109);
}

TEST(Net, ASendToAPeerThatDoesNotReadEndsWithItsTime) {
    net::NetError error;
    auto listener = net::network().listenTcp("0", error);
    auto peer = LoopbackSocket::tcpTo(listener->port());
    auto connection = listener->accept(Millis(5000));
    ASSERT_TRUE(connection);
    EXPECT_FALSE(connection->sendAll(std::string(64 << 20, 'x'), Millis(50)));
    EXPECT_EQ(connection->lastError(), 10060);
}

TEST(Net, StreamMovesBytesAndNoticesTheEnd) {
    auto server = LoopbackSocket::tcpServer();
    for (const char* host : {"127.0.0.1", "localhost"}) {
        auto stream = openStream(host, server.port());
        ASSERT_EQ(stream->state(Millis(0)), ByteStream::State::open) << host;
        auto peer = server.accept();
        std::vector<std::byte> buffer(16);
        EXPECT_EQ(stream->read(buffer), 0);
        EXPECT_EQ(stream->write(std::as_bytes(std::span("hello", 5))), 5);
        EXPECT_EQ(peer.receive(), "hello");
        // What the system does not take is given back, at once.
        const std::vector<std::byte> much(1 << 20);
        int64_t taken = 1;
        for (int i = 0; i < 4096 && taken > 0; ++i) taken = stream->write(much);
        EXPECT_EQ(taken, 0);
        peer.reset();
        int64_t count = 0;
        for (int i = 0; i < 1000000 && count == 0; ++i) count = stream->read(buffer);
        EXPECT_EQ(count, -1);
        EXPECT_EQ(stream->write(much), -1);
        EXPECT_EQ(stream->state(Millis(0)), ByteStream::State::failed);
    }
}

TEST(Net, StreamGivesAllBytesBeforeItsOrderlyEnd) {
    auto server = LoopbackSocket::tcpServer();
    auto stream = openStream("127.0.0.1", server.port());
    auto peer = server.accept();
    std::vector<std::byte> buffer(4);
    EXPECT_EQ(stream->read(buffer), 0);
    peer.send("last");
    peer.close();
    int64_t count = 0;
    for (int i = 0; i < 1000000 && count == 0; ++i) count = stream->read(buffer);
    EXPECT_EQ(count, 4);
    for (int i = 0; i < 1000000 && count >= 0; ++i) count = stream->read(buffer);
    EXPECT_EQ(count, -1);
}

TEST(Net, StreamToNobodyFails) {
    auto server = LoopbackSocket::tcpServer();
    const uint16_t port = server.port();
    server.close();
    auto stream = openStream("127.0.0.1", port);
    EXPECT_EQ(stream->state(Millis(0)), ByteStream::State::failed);
    EXPECT_EQ(stream->write(std::as_bytes(std::span("x", 1))), -1);
    EXPECT_EQ(openStream(std::string(300, 'x'), port)->state(Millis(0)), ByteStream::State::failed);
}

}  // namespace
}  // namespace skl
