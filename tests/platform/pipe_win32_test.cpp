// The stream over a named pipe against a server of the test's own, and the SimConnect client on top of it.
#include <windows.h>
// Behind windows.h.
#include <gtest/gtest.h>

#include <cstring>
#include <thread>

#include "platform/net.h"
#include "platform/simconnect/wire_client.h"
#include "platform/win32/handle_win32.h"
#include "simlink/sim_ids.h"
#include "tests/support/fake_simconnect.h"

namespace skl::test {
namespace {

using net::ByteStream;
using net::Millis;
using platform::Handle;

class PipeServer {
  public:
    explicit PipeServer(DWORD type = PIPE_TYPE_BYTE)
        : name_(fmt::format(R"(\\.\pipe\skl-test-{}\SimConnect)", ::GetCurrentProcessId())),
          pipe_(::CreateNamedPipeA(name_.c_str(), PIPE_ACCESS_DUPLEX, type | PIPE_WAIT, 1, 4096, 4096, 0,
                                   nullptr)) {}

    const std::string& name() const { return name_; }
    bool accept() {
        return ::ConnectNamedPipe(pipe_.get(), nullptr) || ::GetLastError() == ERROR_PIPE_CONNECTED;
    }
    /// Exactly `size` bytes, waiting for them.
    std::string receive(size_t size) {
        std::string bytes(size, '\0');
        size_t have = 0;
        for (DWORD count = 0; have < size; have += count)
            if (!::ReadFile(pipe_.get(), bytes.data() + have, static_cast<DWORD>(size - have), &count,
                            nullptr))
                break;
        bytes.resize(have);
        return bytes;
    }
    bool send(const void* bytes, size_t size) {
        DWORD count = 0;
        return ::WriteFile(pipe_.get(), bytes, static_cast<DWORD>(size), &count, nullptr) && count == size;
    }
    void close() { pipe_ = Handle(); }
    /// Lets the client go, ready for the next one.
    void disconnect() { ::DisconnectNamedPipe(pipe_.get()); }

  private:
    std::string name_;
    Handle pipe_;
};

std::unique_ptr<ByteStream> openStream(const std::string& name) {
    auto stream = net::systemNetwork().connectPipe(name);
    for (int i = 0; i < 100 && stream->state(Millis(50)) == ByteStream::State::connecting; ++i) {
    }
    return stream;
}

/// What a reading gives within five seconds.
int64_t readSoon(ByteStream& stream, std::span<std::byte> buffer) {
    int64_t count = 0;
    const ULONGLONG end = ::GetTickCount64() + 5000;
    while (count == 0 && ::GetTickCount64() < end) count = stream.read(buffer);
    return count;
}

TEST(PipeWin32, BytesGoBothWaysAndNothingWaits) {
    PipeServer server;
    auto stream = openStream(server.name());
    ASSERT_EQ(stream->state(Millis(0)), ByteStream::State::open);
    ASSERT_TRUE(server.accept());
    std::vector<std::byte> buffer(100);
    EXPECT_EQ(stream->read(buffer), 0);
    EXPECT_EQ(stream->write(std::as_bytes(std::span("hello", 5))), 5);
    EXPECT_EQ(server.receive(5), "hello");

    // What the server does not read is given back, at once; what was taken arrives whole and in order.
    std::string much(1 << 20, '\0');
    for (size_t i = 0; i < much.size(); ++i) much[i] = static_cast<char>(i * 7 % 251);
    const auto all = std::as_bytes(std::span(much));
    size_t sent = 0;
    for (int64_t taken = 1; taken > 0 && sent < all.size(); sent += static_cast<size_t>(taken))
        taken = stream->write(all.subspan(sent));
    ASSERT_LT(sent, all.size());
    std::string arrived;
    std::thread reader([&] { arrived = server.receive(much.size()); });
    const ULONGLONG end = ::GetTickCount64() + 10000;
    while (sent < all.size() && ::GetTickCount64() < end) {
        const int64_t taken = stream->write(all.subspan(sent));
        ASSERT_GE(taken, 0);
        sent += static_cast<size_t>(taken);
    }
    reader.join();
    EXPECT_TRUE(arrived == much) << arrived.size();

    // The last words, then the end.
    ASSERT_TRUE(server.send("last", 4));
    EXPECT_EQ(readSoon(*stream, std::span(buffer).first(3)), 3);
    EXPECT_EQ(std::memcmp(buffer.data(), "las", 3), 0);
    server.close();
    EXPECT_EQ(readSoon(*stream, buffer), 1);
    EXPECT_EQ(readSoon(*stream, buffer), -1);
    EXPECT_EQ(stream->state(Millis(0)), ByteStream::State::failed);
    EXPECT_EQ(stream->write(all.first(1)), -1);
}

TEST(PipeWin32, APipeOfMessagesIsAStreamAsWell) {
    PipeServer server(PIPE_TYPE_MESSAGE);
    auto stream = openStream(server.name());
    ASSERT_EQ(stream->state(Millis(0)), ByteStream::State::open);
    ASSERT_TRUE(server.accept());
    std::string sent;
    std::thread simulator([&] {
        // Several before anybody reads, then one longer than what is read at once.
        for (const std::string& message :
             {std::string("one"), std::string("two"), std::string(200'000, 'm')}) {
            EXPECT_TRUE(server.send(message.data(), message.size()));
            sent += message;
        }
    });
    std::string received;
    std::vector<std::byte> buffer(65536);
    while (received.size() < 200'006) {
        const int64_t count = readSoon(*stream, buffer);
        if (count <= 0) break;
        received.append(reinterpret_cast<const char*>(buffer.data()), static_cast<size_t>(count));
    }
    simulator.join();
    EXPECT_TRUE(received == sent) << received.size();
    // What hangs in both directions does not hold up the end.
    const std::vector<std::byte> much(65536);
    for (int i = 0; i < 4; ++i) stream->write(much);
    EXPECT_EQ(stream->read(buffer), 0);
    const ULONGLONG start = ::GetTickCount64();
    stream.reset();
    EXPECT_LT(::GetTickCount64() - start, 1000u);
}

TEST(PipeWin32, NoServerFailsAndABusyOneIsWaitedFor) {
    EXPECT_EQ(net::systemNetwork().connectPipe(R"(\\.\pipe\skl-test-nobody)"), nullptr);
    PipeServer server;
    auto first = openStream(server.name());
    ASSERT_EQ(first->state(Millis(0)), ByteStream::State::open);
    ASSERT_TRUE(server.accept());
    auto second = net::systemNetwork().connectPipe(server.name());
    EXPECT_EQ(second->state(Millis(0)), ByteStream::State::connecting);
    EXPECT_EQ(second->write(std::as_bytes(std::span("x", 1))), 0);
    first.reset();
    server.disconnect();
    std::thread next([&] { server.accept(); });
    const ULONGLONG end = ::GetTickCount64() + 5000;
    while (second->state(Millis(50)) == ByteStream::State::connecting && ::GetTickCount64() < end) {
    }
    EXPECT_EQ(second->state(Millis(0)), ByteStream::State::open);
    next.join();
}

TEST(PipeWin32, TheSimConnectClientOpensOverIt) {
    PipeServer server;
    std::string open;
    std::thread simulator([&] {
        server.accept();
        open = server.receive(296);
        const auto answer = openMessage("KittyHawk").bytes();
        server.send(answer.data(), answer.size());
    });
    wire::WireClient client([&](std::string&) { return net::systemNetwork().connectPipe(server.name()); });
    EXPECT_TRUE(client.open("Skylantern", [] { return false; }));
    simulator.join();
    ASSERT_EQ(open.size(), 296u);
    EXPECT_STREQ(open.c_str() + 16, "Skylantern");
    uint32_t received = 0;
    EXPECT_EQ(client.callDispatch([&](const SimRecv& message) { received = message.id; }),
              SimConnect::Dispatch::alive);
    EXPECT_EQ(received, sc::recvOpen);
    server.close();
    auto dispatch = SimConnect::Dispatch::alive;
    const ULONGLONG end = ::GetTickCount64() + 5000;
    while (dispatch == SimConnect::Dispatch::alive && ::GetTickCount64() < end)
        dispatch = client.callDispatch([](const SimRecv&) {});
    EXPECT_EQ(dispatch, SimConnect::Dispatch::lost);
}

}  // namespace
}  // namespace skl::test
