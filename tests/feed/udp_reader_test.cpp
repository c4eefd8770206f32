// The readers' loop: stepped on a fake network, and on real threads and loopback sockets.
#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "core/locks.h"
#include "core/run_state.h"
#include "engine/engine_state.h"
#include "feed/qnh_reader.h"
#include "feed/traffic_reader.h"
#include "panel/panel_state.h"
#include "panel/traffic_range.h"
#include "tests/support/fake_network.h"
#include "tests/support/loopback_sockets.h"
#include "tests/support/stepped_world.h"
#include "tests/support/temp_folder.h"

namespace skl {
namespace {

/// A record at 47.6, 8.6 with the given id.
std::string record(int hexid) {
    return "RTTFC," + std::to_string(hexid) +
           ",47.6,8.6,9000,0,0,137.5,280,SWR123,A320,HB-JLT,LSZH,EGLL,1700000000,X,,mlat,9000,-1,310,-1,-1,0,"
           "0,0,0,none,A3";
}

class ReaderTest : public test::TempFolderTest {
  protected:
    void SetUp() override {
        TempFolderTest::SetUp();
        gf_resetFeed();
        gf_resetPanel();
        gf_resetEngine();
        rangeNm = 40;
        gf_setFilterPos({47.6, 8.6});
        g_realTrafficHere = true;
        const LockGuard guard(g_trafficLock);
        g_acceptTraffic = true;
    }
    void TearDown() override {
        g_realTrafficHere = false;
        g_acceptTraffic = false;
        gf_resetEngine();
        gf_resetFeed();
        TempFolderTest::TearDown();
    }
    static size_t inboxSize() {
        const LockGuard guard(g_trafficLock);
        return trafficInbox.size();
    }
};

class SteppedReaderTest : public ReaderTest {
  protected:
    void start() {
        qnhThread = gf_taskRunner().start("QNH Reader", gf_qnhReaderTask(qnhPort));
        trafficThread = gf_taskRunner().start("Traffic Reader", gf_trafficReaderTask(trafficPort));
        gf_sleep(std::chrono::seconds(2));
    }
    void settle() { gf_sleep(std::chrono::milliseconds(100)); }
    void stop() {
        gf_stopReaders();
        trafficThread->join();
        qnhThread->join();
    }
    test::SteppedWorld world;
    test::FakeNetwork network;
    std::unique_ptr<RunningTask> trafficThread, qnhThread;
};

TEST_F(SteppedReaderTest, ReceivesUntilStoppedWithLampsAndLogLines) {
    start();
    EXPECT_EQ(g_panel.trafficState, readerRunning);
    EXPECT_EQ(g_panel.weatherState, readerRunning);
    EXPECT_TRUE(network.udpLoopbackOnly(trafficPort));
    network.sendUdp(qnhPort, R"({"QNH":1001})");
    for (int i = 0; i < 3; ++i) network.sendUdp(trafficPort, record(20000 + i));
    network.sendUdp(trafficPort, "");
    settle();
    EXPECT_EQ(qnh, 1001);
    EXPECT_EQ(trafficInbox.size(), 3u);
    const double before = world.seconds();
    stop();
    EXPECT_LT(world.seconds() - before, 1);
    EXPECT_FALSE(network.udpOpen(trafficPort) || network.udpOpen(qnhPort));
    EXPECT_EQ(g_panel.trafficState, readerStopped);
    for (const char* line :
         {"          Traffic Reader connected", "Traffic Reader has stopped", "Traffic Reader disconnected",
          "          QNH Reader connected", "QNH Reader has stopped", "QNH Reader disconnected"})
        EXPECT_EQ(test::logCount(line), 1) << line;
    EXPECT_FALSE(g_stopRequested);
}

TEST_F(SteppedReaderTest, DuplicatesAreDroppedOnlyWhenTheFeedComesFromAnotherPc) {
    const uint32_t packets = lf_trafficReader().packetCount;
    const uint64_t duplicates = feedCounters.duplicates;
    start();
    for (int i = 0; i < 2; ++i) network.sendUdp(trafficPort, record(20000));
    settle();
    EXPECT_EQ(trafficInbox.size(), 2u);
    stop();

    gf_resetFeed();
    trafficInbox.clear();
    g_realTrafficHere = false;
    start();
    EXPECT_FALSE(network.udpLoopbackOnly(trafficPort));
    for (int id : {20000, 20000, 20001, 20000}) network.sendUdp(trafficPort, record(id));
    network.sendUdp(qnhPort, R"({"QNH":1001})");
    settle();
    EXPECT_EQ(trafficInbox.size(), 3u);
    EXPECT_EQ(feedCounters.duplicates, duplicates + 1);
    EXPECT_EQ(lf_trafficReader().packetCount, packets + 6u);
    stop();

    // A new run takes the first datagram even if it equals the last of the run before.
    gf_resetFeed();
    start();
    network.sendUdp(qnhPort, R"({"QNH":1001})");
    settle();
    EXPECT_EQ(qnh, 1001);
    stop();
}

TEST_F(SteppedReaderTest, AnOversizedDatagramIsLostAlone) {
    const uint64_t oversized = feedCounters.oversized, badRecords = feedCounters.badRecords;
    start();
    network.sendUdp(trafficPort, std::string(16384, 'x'));
    network.sendUdp(trafficPort, std::string(16383, ','));
    network.sendUdp(trafficPort, record(20000));
    settle();
    EXPECT_EQ(test::logCount("buffer overrun: 16384 bytes"), 1);
    EXPECT_EQ(feedCounters.oversized, oversized + 1);
    EXPECT_EQ(feedCounters.badRecords, badRecords + 1);
    EXPECT_EQ(trafficInbox.size(), 1u);
    stop();
}

TEST_F(SteppedReaderTest, AFailureEndsTheReaderAndAsksForARestart) {
    start();
    network.breakUdp(trafficPort, 10054);
    settle();
    EXPECT_TRUE(test::logHas(
        "The Traffic Reader has stopped with error: receive error: 10054 Connection reset by peer"));
    EXPECT_EQ(g_exitReason, ExitReason::readerError);
    EXPECT_EQ(g_restartSeconds, 15);
    EXPECT_FALSE(network.udpOpen(trafficPort));
    // The other reader goes on until it is stopped, and what fails while stopping is no reason of its own.
    EXPECT_TRUE(network.udpOpen(qnhPort));
    stop();
}

TEST_F(SteppedReaderTest, EachStepOfOpeningHasItsText) {
    const std::vector<std::pair<net::NetError, const char*>> cases{
        {{"startup", 10093}, "WSA startup error: 10093"},
        {{"socket", 10024}, "failed to create the socket, error: 10024 Too many open sockets"},
        {{"bind", 10048}, "bind to stream socket failed, error: 10048 Address already in use"}};
    for (const auto& [failure, text] : cases) {
        gf_resetFeed();
        gf_resetRunState();
        network.openFailure = failure;
        start();
        stop();
        EXPECT_EQ(test::logCount(std::string("The QNH Reader has stopped with error: ") + text), 1) << text;
    }
}

TEST_F(SteppedReaderTest, LampsGoStaleAndComeBack) {
    start();
    gf_updateReaderLamps();
    EXPECT_EQ(g_panel.trafficState, readerRunning) << "not while the link is down";
    g_panel.feedConnected = true;
    network.sendUdp(trafficPort, record(20000));
    settle();
    gf_updateReaderLamps();
    EXPECT_EQ(g_panel.trafficState, readerRunning);
    EXPECT_EQ(g_panel.weatherState, readerStale);
    EXPECT_TRUE(gf_anyReaderStale());
    gf_updateReaderLamps();
    EXPECT_EQ(g_panel.trafficState, readerStale);
    network.sendUdp(trafficPort, record(20000));
    network.sendUdp(qnhPort, "nonsense");
    settle();
    gf_updateReaderLamps();
    EXPECT_EQ(g_panel.trafficState, readerRunning);
    EXPECT_EQ(g_panel.weatherState, readerRunning);
    EXPECT_FALSE(gf_anyReaderStale());
    stop();
}

class ThreadsReaderTest : public ReaderTest {
  protected:
    void SetUp() override {
        ReaderTest::SetUp();
        qnhThread = gf_taskRunner().start("QNH Reader", gf_qnhReaderTask(0));
        trafficThread = gf_taskRunner().start("Traffic Reader", gf_trafficReaderTask(0));
        ASSERT_TRUE(soon([] { return lf_qnhReader().boundPort != 0 && lf_trafficReader().boundPort != 0; }));
    }
    void TearDown() override {
        gf_stopReaders();
        trafficThread->join();
        qnhThread->join();
        ReaderTest::TearDown();
    }
    static bool soon(const std::function<bool()>& done) {
        return gf_waitUntil(gf_steadyNow() + std::chrono::seconds(10), done);
    }
    std::unique_ptr<RunningTask> trafficThread, qnhThread;
};

TEST_F(ThreadsReaderTest, GoodDatagramsAmongBrokenOnesReachTheInbox) {
    const uint64_t oversized = feedCounters.oversized, badRecords = feedCounters.badRecords;
    auto traffic = test::LoopbackSocket::udpTo(lf_trafficReader().boundPort);
    auto weather = test::LoopbackSocket::udpTo(lf_qnhReader().boundPort);
    std::string allBytes;
    for (int i = 0; i < 256; ++i) allBytes += static_cast<char>(i);
    traffic.send(record(20001));
    for (const auto& bad : {std::string("x"), allBytes, std::string(20000, 'A'), std::string(5000, ','),
                            record(20003).substr(0, 60), std::string("RTTFC,1,2")})
        traffic.send(bad);
    traffic.send(record(20002));
    weather.send(allBytes);
    weather.send(R"({"QNH":"nonsense"})");
    weather.send(R"({"QNH":1001})");
    ASSERT_TRUE(soon([] { return inboxSize() == 2 && qnh == 1001; }));
    EXPECT_EQ(trafficInbox.front().hexid, 20001u);
    EXPECT_EQ(trafficInbox.back().hexid, 20002u);
    EXPECT_EQ(feedCounters.badRecords, badRecords + 5);
    EXPECT_EQ(feedCounters.oversized, oversized + 1);
    EXPECT_FALSE(g_stopRequested);
}

TEST_F(ThreadsReaderTest, AStopWithoutDataIsSeenWithinASecond) {
    const auto asked = std::chrono::steady_clock::now();
    gf_stopReaders();
    trafficThread->join();
    qnhThread->join();
    EXPECT_LT(std::chrono::steady_clock::now() - asked, std::chrono::milliseconds(1500));
}

TEST_F(ThreadsReaderTest, TheWorkerMaySetAndResetWhileRecordsArrive) {
    auto traffic = test::LoopbackSocket::udpTo(lf_trafficReader().boundPort);
    auto weather = test::LoopbackSocket::udpTo(lf_qnhReader().boundPort);
    lf_trafficReader().collectCallsigns(true);
    g_panel.feedConnected = true;
    size_t taken = 0;
    for (int i = 0; i < 300; ++i) {
        traffic.send(record(20000 + i));
        weather.send(R"({"QNH":)" + std::to_string(950 + i % 100) + "}");
        gf_setFilterPos({47.6, 8.6 + i * 1e-4});
        gf_setGroundReference(GroundReference{{47.6, 8.6}, i * 1.0});
        taken += lf_trafficReader().takeCallsigns().size();
        gf_resetFeed();
        gf_updateReaderLamps();
        gf_feedTimestamp();
    }
    lf_trafficReader().collectCallsigns(false);
    gf_setGroundReference(std::nullopt);
    // Once quiet, a reset and one value leave all copies of the pressure equal. A full socket may lose a
    // datagram.
    gf_resetFeed();
    ASSERT_TRUE(soon([&] {
        weather.send(R"({"QNH":1070})");
        return qnh == 1070;
    }));
    EXPECT_EQ(lf_trafficReader().qnhCopy, 1070);
    EXPECT_LE(taken, 300u);
}

}  // namespace
}  // namespace skl
