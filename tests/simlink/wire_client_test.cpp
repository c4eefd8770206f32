// The SimConnect client: the bytes of each request, and its life against a server on a loopback socket.
#include "platform/simconnect/wire_client.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "simlink/sim_ids.h"
#include "tests/support/fake_simconnect.h"
#include "tests/support/hasty_clock.h"
#include "tests/support/temp_folder.h"

namespace skl::test {

namespace {

using Bytes = std::vector<std::byte>;
using wire::WireClient;

/// "05 00*3 'Sim'*256": hexadecimal bytes, repeated with *, and texts filled up to a width.
Bytes bytesOf(std::string_view notation) {
    Bytes bytes;
    while (!notation.empty()) {
        if (notation.front() == ' ') {
            notation.remove_prefix(1);
            continue;
        }
        const bool text = notation.front() == '\'';
        const size_t end = notation.find(text ? '\'' : ' ', 1);
        std::string_view token = notation.substr(0, text ? notation.find(' ', end) : end);
        notation.remove_prefix(token.size());
        const size_t star = token.rfind('*');
        const size_t count =
            star == std::string_view::npos ? 1 : std::stoul(std::string(token.substr(star + 1)));
        if (text) {
            const std::string_view value = token.substr(1, token.rfind('\'') - 1);
            for (char c : value) bytes.push_back(static_cast<std::byte>(c));
            bytes.resize(bytes.size() + (count - value.size()));
        } else {
            bytes.insert(bytes.end(), count,
                         static_cast<std::byte>(std::stoi(std::string(token.substr(0, 2)), nullptr, 16)));
        }
    }
    return bytes;
}

Bytes firstBytes(const SimMessage& message, size_t count) {
    Bytes bytes = message.bytes();
    bytes.resize(count);
    return bytes;
}

uint32_t u32At(const Bytes& bytes, size_t at) {
    uint32_t value = 0;
    std::memcpy(&value, bytes.data() + at, sizeof value);
    return value;
}

/// A stream in memory: what the client writes, as far as there is room, and what it is to read.
struct Pipe {
    Bytes written, toRead;
    Bytes lastWords;  // to be read once a write has failed
    size_t room = 1u << 30;
    int writes = 0;
    bool broken = false;  // nothing can be written
};

class PipeStream : public net::ByteStream {
  public:
    explicit PipeStream(Pipe& pipe) : pipe_(pipe) {}
    State state(net::Millis) override { return State::open; }
    int64_t write(std::span<const std::byte> bytes) override {
        if (pipe_.broken) {
            pipe_.toRead = std::exchange(pipe_.lastWords, {});
            return -1;
        }
        ++pipe_.writes;
        bytes = bytes.first(std::min(bytes.size(), pipe_.room));
        pipe_.room -= bytes.size();
        pipe_.written.insert(pipe_.written.end(), bytes.begin(), bytes.end());
        return static_cast<int64_t>(bytes.size());
    }
    int64_t read(std::span<std::byte> buffer) override {
        if (pipe_.toRead.empty()) return 0;
        const size_t count = std::min(buffer.size(), pipe_.toRead.size());
        std::memcpy(buffer.data(), pipe_.toRead.data(), count);
        pipe_.toRead.erase(pipe_.toRead.begin(), pipe_.toRead.begin() + static_cast<std::ptrdiff_t>(count));
        return static_cast<int64_t>(count);
    }

  private:
    Pipe& pipe_;
};

class WireClientTest : public TempFolderTest {
  protected:
    void openOnPipe() {
        add(openMessage("KittyHawk"));
        ASSERT_TRUE(client.open("Skylantern", [] { return false; }));
        dispatch();
        received.clear();
        pipe.written.clear();
        pipe.writes = 0;
    }
    void add(const SimMessage& message) {
        const Bytes bytes = message.bytes();
        pipe.toRead.insert(pipe.toRead.end(), bytes.begin(), bytes.end());
    }
    SimConnect::Dispatch dispatch() {
        return client.callDispatch([&](const SimRecv& message) { received.push_back(message.id); });
    }

    HastyClock clock;
    Pipe pipe;
    WireClient client{[this](std::string&) { return std::make_unique<PipeStream>(pipe); }};
    std::vector<uint32_t> received;
};

TEST_F(WireClientTest, OpenIsTheCapturedOne) {
    add(openMessage("KittyHawk"));
    ASSERT_TRUE(client.open("Skylantern", [] { return false; }));
    EXPECT_EQ(pipe.written,
              bytesOf("28 01 00 00 05 00 00 00 01 00 00 F0 00*4 'Skylantern'*256 "
                      "00 00 00 00 00 48 4B 00 0B 00 00 00 00 00 00 00 BB F4 00 00 03 00 00 00"));
    EXPECT_EQ(dispatch(), SimConnect::Dispatch::alive);
    EXPECT_EQ(received, std::vector<uint32_t>{sc::recvOpen});
}

TEST_F(WireClientTest, EachRequestHasItsBytes) {
    openOnPipe();
    const double pose[] = {1.0, 2.0};
    const std::string longTitle(300, 't');
    struct Case {
        uint32_t packet;
        std::function<bool()> call;
        std::string body;  // behind the header
    };
    const Case cases[] = {
        {0x17, [&] { return client.subscribeToSystemEvent(201, "Sim"); }, "C9 00*3 'Sim'*256"},
        {0x0C, [&] { return client.addToDataDefinition(402, "Plane Altitude", "feet", 4); },
         "92 01 00 00 'Plane Altitude'*256 'feet'*256 04 00 00 00 00 00 00 00 FF FF FF FF"},
        // No unit is an empty text.
        {0x0C, [&] { return client.addToDataDefinition(407, "TITLE", "", 11); },
         "97 01 00 00 'TITLE'*256 00*256 0B 00 00 00 00 00 00 00 FF FF FF FF"},
        {0x04, [&] { return client.mapClientEventToSimEvent(219, "GEAR_SET"); }, "DB 00*3 'GEAR_SET'*256"},
        {0x07, [&] { return client.addClientEventToNotificationGroup(301, 207); },
         "2D 01 00 00 CF 00 00 00 00 00 00 00"},
        {0x09, [&] { return client.setNotificationGroupPriority(301, 1); }, "2D 01 00 00 01 00 00 00"},
        {0x0E, [&] { return client.requestDataOnSimObject(108, 409, 0, 4); },
         "6C 00 00 00 99 01 00 00 00 00 00 00 04 00 00 00 00*16"},
        {0x0F, [&] { return client.requestDataOnSimObjectType(101, 404, 200000, 2); },
         "65 00 00 00 94 01 00 00 40 0D 03 00 02 00 00 00"},
        {0x10, [&] { return client.setDataOnSimObject(402, 5, std::as_bytes(std::span(pose))); },
         "92 01 00 00 05 00 00 00 00 00 00 00 01 00 00 00 10 00 00 00 "
         "00 00 00 00 00 00 F0 3F 00 00 00 00 00 00 00 40"},
        {0x05, [&] { return client.transmitClientEvent(5, 217, 8191, 301); },
         "05 00 00 00 D9 00 00 00 FF 1F 00 00 2D 01 00 00 00 00 00 00"},
        {0x29,
         [&] {
             return client.aiCreateNonAtcAircraft("A320 A\xE9ro", "BAW123", {1, 0, 0, 0, 0, 0, 1, 0xFFFFFFFE},
                                                  104);
         },
         "'A320 A\xE9ro'*256 42 41 57 31 32 33 00 00 00 00 00 00 00 00 00 00 00 00 F0 3F 00*40 01 00 00 00 "
         "FE FF FF FF 68 00 00 00"},
        // Texts too long for their field are cut, and nothing behind them moves.
        {0x29, [&] { return client.aiCreateNonAtcAircraft(longTitle, "ABCDEFGHIJKLMN", {}, 104); },
         "74*255 00 'ABCDEFGHIJK'*12 00*56 68 00 00 00"},
        {0x2B, [&] { return client.aiReleaseControl(1001, 103); }, "E9 03 00 00 67 00 00 00"},
        {0x2C, [&] { return client.aiRemoveObject(1001, 105); }, "E9 03 00 00 69 00 00 00"},
        {0x2D, [&] { return client.aiSetAircraftFlightPlan(1001, "plans/a", 110); },
         "E9 03 00 00 'plans/a'*260 6E 00 00 00"},
    };
    uint32_t sendId = 0;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.body);
        pipe.written.clear();
        ASSERT_TRUE(c.call());
        uint32_t last = 0;
        EXPECT_TRUE(client.getLastSentPacketId(last));
        EXPECT_EQ(last, ++sendId);
        dispatch();
        const Bytes body = bytesOf(c.body);
        ASSERT_EQ(pipe.written.size(), 16 + body.size());
        EXPECT_EQ(u32At(pipe.written, 0), pipe.written.size());
        EXPECT_EQ(u32At(pipe.written, 4), 5u);
        EXPECT_EQ(u32At(pipe.written, 8), 0xF0000000u | c.packet);
        EXPECT_EQ(u32At(pipe.written, 12), sendId);
        EXPECT_EQ(Bytes(pipe.written.begin() + 16, pipe.written.end()), body);
    }
}

TEST_F(WireClientTest, AFramesOutputIsOneWrite) {
    openOnPipe();
    add(frameMessage());
    const double pose[8] = {};
    client.callDispatch([&](const SimRecv&) {
        for (uint32_t object = 0; object < 1000; ++object)
            client.setDataOnSimObject(402, object, std::as_bytes(std::span(pose)));
    });
    EXPECT_EQ(pipe.writes, 1);
    EXPECT_EQ(pipe.written.size(), 1000u * 100);
}

TEST_F(WireClientTest, WhatIsNotTakenWaitsAndGoesOutInOrder) {
    openOnPipe();
    for (uint32_t object = 0; object < 100; ++object) client.aiRemoveObject(object, 105);
    pipe.room = 1000;
    dispatch();
    EXPECT_TRUE(client.backlogged());
    EXPECT_EQ(pipe.written.size(), 1000u);
    client.aiRemoveObject(100, 105);
    pipe.room = 1u << 20;
    dispatch();
    EXPECT_FALSE(client.backlogged());
    ASSERT_EQ(pipe.written.size(), 101u * 24);
    for (uint32_t object = 0; object <= 100; ++object)
        EXPECT_EQ(u32At(pipe.written, object * 24 + 16), object);
}

TEST_F(WireClientTest, ASimulatorThatStopsReadingIsGivenUp) {
    openOnPipe();
    pipe.room = 0;
    client.aiRemoveObject(1001, 105);
    EXPECT_EQ(dispatch(), SimConnect::Dispatch::alive);
    clock.extra += std::chrono::milliseconds(9900);
    pipe.room = 1;  // a byte is progress
    EXPECT_EQ(dispatch(), SimConnect::Dispatch::alive);
    clock.extra += std::chrono::milliseconds(9900);
    EXPECT_EQ(dispatch(), SimConnect::Dispatch::alive);
    clock.extra += std::chrono::milliseconds(200);
    EXPECT_EQ(dispatch(), SimConnect::Dispatch::lost);
    EXPECT_FALSE(client.aiRemoveObject(1001, 105));
    EXPECT_FALSE(client.close());
}

TEST_F(WireClientTest, IdleTimeIsNoLackOfProgress) {
    openOnPipe();
    dispatch();
    clock.extra += std::chrono::hours(1);
    pipe.room = 0;
    client.aiRemoveObject(1001, 105);
    EXPECT_EQ(dispatch(), SimConnect::Dispatch::alive);
}

TEST_F(WireClientTest, OutputIsBounded) {
    openOnPipe();
    pipe.room = 0;
    const Bytes block(65536);
    int taken = 0;
    while (taken < 1000 && client.setDataOnSimObject(402, 5, block)) ++taken;
    EXPECT_EQ(taken, 64);
    EXPECT_EQ(dispatch(), SimConnect::Dispatch::lost);
}

TEST_F(WireClientTest, ImpossibleSizesEndTheConnection) {
    for (const char* head : {"0B 00 00 00", "01 00 10 00", "FF FF FF FF", "00 00 00 00"}) {
        SCOPED_TRACE(head);
        pipe = {};
        openOnPipe();
        add(eventMessage(ev::sim, 1));
        const Bytes bad = bytesOf(std::string(head) + " 00*60");
        pipe.toRead.insert(pipe.toRead.end(), bad.begin(), bad.end());
        EXPECT_EQ(dispatch(), SimConnect::Dispatch::lost);
        EXPECT_EQ(received, std::vector<uint32_t>{sc::recvEvent});
        received.clear();
    }
}

TEST_F(WireClientTest, WhatTheHandlerThrowsGoesThroughOnce) {
    openOnPipe();
    add(eventMessage(ev::sim, 1));
    add(frameMessage());
    EXPECT_THROW(client.callDispatch([](const SimRecv&) { throw std::runtime_error("x"); }),
                 std::runtime_error);
    EXPECT_EQ(dispatch(), SimConnect::Dispatch::alive);
    EXPECT_EQ(received, std::vector<uint32_t>{sc::recvFrame});
}

TEST_F(WireClientTest, AQuitIsFoundBehindOutputThatFails) {
    openOnPipe();
    add(frameMessage());
    const auto result = client.callDispatch([&](const SimRecv& message) {
        if (message.id != sc::recvFrame) return;
        client.aiRemoveObject(1001, 105);
        pipe.broken = true;
        pipe.lastWords = quitMessage().bytes();
    });
    EXPECT_EQ(result, SimConnect::Dispatch::quit);
}

TEST_F(WireClientTest, AVersionComplaintIsAnAnswer) {
    add(exceptionMessage(5, 0));
    ASSERT_TRUE(client.open("Skylantern", [] { return false; }));
    dispatch();
    EXPECT_EQ(received, std::vector<uint32_t>{sc::recvException});
}

TEST_F(WireClientTest, BrokenSettingsAreNamed) {
    WireClient broken([](std::string& trouble) -> std::unique_ptr<net::ByteStream> {
        trouble = "Port is missing";
        return nullptr;
    });
    EXPECT_FALSE(broken.open("Skylantern", [] { return false; }));
    EXPECT_EQ(broken.openTrouble(), "Port is missing");
}

using ThreadsWireTest = WireClientTest;

TEST_F(ThreadsWireTest, RequestsOfSeveralThreadsGoOutWholeAndInOrder) {
    openOnPipe();
    constexpr int threads = 2, requests = 2000;
    std::atomic<int> running{threads};
    std::vector<std::thread> senders;
    for (int i = 0; i < threads; ++i)
        senders.emplace_back([&] {
            for (int request = 0; request < requests; ++request) client.aiRemoveObject(1001, 105);
            --running;
        });
    while (running > 0) dispatch();
    for (auto& sender : senders) sender.join();
    dispatch();
    ASSERT_EQ(pipe.written.size(), size_t{threads * requests * 24});
    for (uint32_t i = 0; i < threads * requests; ++i) {
        ASSERT_EQ(u32At(pipe.written, i * 24), 24u);
        ASSERT_EQ(u32At(pipe.written, i * 24 + 12), i + 1);
    }
}

/// A server on a loopback socket; it acts whenever the client looks.
class LoopbackTest : public TempFolderTest {
  protected:
    void SetUp() override {
        TempFolderTest::SetUp();
        net::NetError error;
        listener = net::network().listenTcp("0", error);
        ASSERT_TRUE(listener) << error.step;
        writeFile("SimConnect.cfg", "[SimConnect]\nProtocol=IPv4\nAddress=127.0.0.1\nPort=" +
                                        std::to_string(listener->port()) + "\n");
        client = wire::makeClient();
    }
    void send(const Bytes& bytes) {
        ASSERT_TRUE(
            peer->sendAll({reinterpret_cast<const char*>(bytes.data()), bytes.size()}, net::Millis(1000)));
    }
    bool accept() {
        if (!peer) peer = listener->accept(net::Millis(0));
        return peer != nullptr;
    }
    bool open(const Bytes& answer) {
        bool sent = false;
        return client->open("Skylantern", [&] {
            if (accept() && !sent) {
                send(answer);
                sent = true;
            }
            return false;
        });
    }
    /// Dispatches until a number of messages is there or the connection has ended, 5 s at most.
    SimConnect::Dispatch dispatchUntil(size_t count) {
        auto result = SimConnect::Dispatch::alive;
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(5);
        do
            result = client->callDispatch([&](const SimRecv& message) {
                received.push_back(message.id);
                sizes.push_back(message.bytes.size());
            });
        while (received.size() < count && result == SimConnect::Dispatch::alive &&
               std::chrono::steady_clock::now() < end);
        return result;
    }
    /// An orderly end: nothing is left unread.
    void hangUp() {
        char buffer[65536];
        while (peer->waitReadable(net::Millis(50)) == 1 && peer->receive(buffer) > 0) {
        }
        peer.reset();
    }

    HastyClock clock;
    std::unique_ptr<net::TcpListener> listener;
    std::unique_ptr<net::TcpConnection> peer;
    std::unique_ptr<SimConnect> client;
    std::vector<uint32_t> received;
    std::vector<size_t> sizes;
};

TEST_F(LoopbackTest, MessagesInPiecesArriveWholeAndInOrder) {
    ASSERT_TRUE(open(openMessage("KittyHawk").bytes()));
    dispatchUntil(1);
    Bytes stream = eventMessage(ev::sim, 1).bytes();
    for (const auto& more : {frameMessage(), filenameMessage(), quitMessage()}) {
        const Bytes bytes = more.bytes();
        stream.insert(stream.end(), bytes.begin(), bytes.end());
    }
    peer->setNoDelay();
    for (size_t at = 0; at < stream.size(); at += 7) {
        send(Bytes(stream.begin() + static_cast<std::ptrdiff_t>(at),
                   stream.begin() + static_cast<std::ptrdiff_t>(std::min(at + 7, stream.size()))));
        client->callDispatch([&](const SimRecv& message) {
            received.push_back(message.id);
            sizes.push_back(message.bytes.size());
        });
    }
    EXPECT_EQ(dispatchUntil(5), SimConnect::Dispatch::quit);
    EXPECT_EQ(received, (std::vector<uint32_t>{sc::recvOpen, sc::recvEvent, sc::recvFrame, sc::recvFilename,
                                               sc::recvQuit}));
    EXPECT_EQ(sizes, (std::vector<size_t>{308, 24, 32, 288, 12}));
}

TEST_F(LoopbackTest, AStreamThatEndsInMidMessageIsLost) {
    ASSERT_TRUE(open(openMessage("KittyHawk").bytes()));
    send(eventMessage(ev::sim, 1).bytes());
    send(firstBytes(eventMessage(ev::sim, 1), 19));
    hangUp();
    EXPECT_EQ(dispatchUntil(3), SimConnect::Dispatch::lost);
    EXPECT_EQ(received, (std::vector<uint32_t>{sc::recvOpen, sc::recvEvent}));
    EXPECT_FALSE(client->aiRemoveObject(1001, 105));
}

TEST_F(LoopbackTest, AfterQuitRequestsAreSilent) {
    ASSERT_TRUE(open(openMessage("KittyHawk").bytes()));
    send(quitMessage().bytes());
    hangUp();
    client->aiRemoveObject(1001, 105);
    EXPECT_EQ(dispatchUntil(3), SimConnect::Dispatch::quit);
    // However much is asked for: nothing is kept.
    const Bytes block(wire::outputLimit);
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(client->setDataOnSimObject(402, 5, block));
    EXPECT_EQ(dispatchUntil(3), SimConnect::Dispatch::quit);
    EXPECT_TRUE(client->close());
}

TEST_F(LoopbackTest, NoAnswerIsNoSession) {
    clock.perLook = std::chrono::milliseconds(20);
    const Nanos before = clock.extra;
    EXPECT_FALSE(open({}));
    EXPECT_GE(clock.steadyNow() - before, wire::openPatience);
    // An answer cut short is none.
    peer.reset();
    EXPECT_FALSE(open(firstBytes(openMessage("KittyHawk"), 307)));
    // Nor is a stream that ends.
    peer.reset();
    EXPECT_FALSE(client->open("Skylantern", [&] {
        if (accept()) peer.reset();
        return false;
    }));
    // Nobody there: the port is free again.
    listener.reset();
    EXPECT_FALSE(client->open("Skylantern", [] { return false; }));
    EXPECT_EQ(client->openTrouble(), "");
}

TEST_F(LoopbackTest, AStopEndsTheWait) {
    const Nanos start = clock.steadyNow();
    int looks = 0;
    EXPECT_FALSE(client->open("Skylantern", [&] {
        accept();
        return ++looks > 3;
    }));
    EXPECT_LT(clock.steadyNow() - start, std::chrono::milliseconds(500));
}

TEST_F(LoopbackTest, AServerThatStopsReadingBlocksNobody) {
    ASSERT_TRUE(open(openMessage("KittyHawk").bytes()));
    const Bytes block(65536);
    const auto start = std::chrono::steady_clock::now();
    // The system may take some more a moment later: its own buffers are full when it has long taken nothing.
    for (int i = 0, held = 0; i < 20000 && held < 500; ++i) {
        if (!client->backlogged()) {
            ASSERT_TRUE(client->setDataOnSimObject(402, 5, block));
        }
        ASSERT_EQ(client->callDispatch([](const SimRecv&) {}), SimConnect::Dispatch::alive);
        held = client->backlogged() ? held + 1 : 0;
    }
    ASSERT_TRUE(client->backlogged());
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
    clock.extra += std::chrono::seconds(11);
    EXPECT_EQ(client->callDispatch([](const SimRecv&) {}), SimConnect::Dispatch::lost);
}

}  // namespace

}  // namespace skl::test
