// The link to RealTraffic: handshake, reports, loss and return, stepped; and once over real sockets.
#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "core/locks.h"
#include "core/parameters.h"
#include "core/run_state.h"
#include "engine/engine_state.h"
#include "feed/feed.h"
#include "feed/rt_link.h"
#include "feed/winsock_text.h"
#include "panel/panel_state.h"
#include "panel/requests.h"
#include "simlink/user_aircraft.h"
#include "tests/support/fake_network.h"
#include "tests/support/hasty_clock.h"
#include "tests/support/loopback_sockets.h"
#include "tests/support/stepped_world.h"
#include "tests/support/temp_folder.h"

namespace skl {
namespace {

class LinkTest : public test::TempFolderTest {
  protected:
    void SetUp() override {
        TempFolderTest::SetUp();
        gf_resetFeed();
        gf_resetPanel();
        gf_resetEngine();
        gf_resetRequests();
        rtLevel2 = false;
        g_realTrafficHere = true;
        g_flightPaused = false;
        engineUser = {};
        engineUser.lat = 47.458;
        engineUser.lon = 8.548;
    }
    void TearDown() override {
        gf_closeLink();
        gf_resetEngine();
        g_realTrafficHere = false;
        g_acceptTraffic = false;
        TempFolderTest::TearDown();
    }
};

class SteppedLinkTest : public LinkTest {
  protected:
    /// The state of a running cycle with a client taken.
    std::shared_ptr<test::FakeClient> connected() {
        auto client = network.connectClient();
        client->say(R"({"level":2,"version":"11.3"})");
        gf_startListener("10747");
        gf_rtHandshake();
        client->takeSent();
        g_flightRunning = true;
        g_cycleRunning = true;
        g_acceptTraffic = gf_linkAllowsTraffic();
        return client;
    }
    test::SteppedWorld world;
    test::FakeNetwork network;
};

TEST_F(SteppedLinkTest, HandshakeWaitsForTheClientAndReadsItsVersion) {
    std::shared_ptr<test::FakeClient> client;
    world.at(30, [&] { client = network.connectClient(); });
    world.at(31, [&] { client->say(" {\"level\":2,\"ver"); });
    world.at(33, [&] { client->say("sion\":\"11{}\\\"3\"}\r\nmore"); });
    qnh = 990;
    gf_startListener("10747");
    gf_rtHandshake();
    EXPECT_EQ(client->sent, "Qs999=version\r\n");
    EXPECT_NEAR(world.seconds(), 33, 0.2);
    EXPECT_TRUE(rtConnected && rtLevel2 && g_panel.feedConnected);
    EXPECT_FALSE(g_waitingForFeed);
    EXPECT_EQ(gf_panelText(&PanelState::feedText), "RT prof edition: 11{}\"3");
    EXPECT_EQ(qnh, 1013);
    EXPECT_TRUE(test::logHas("Waiting for RealTraffic to connect to |Skylantern ..."));
    EXPECT_TRUE(test::logHas("RealTraffic connected"));
    EXPECT_EQ(gf_panelText(&PanelState::statusText), "");
}

TEST_F(SteppedLinkTest, VersionRepliesOfAllKinds) {
    struct Case {
        std::string reply;  ///< "" says nothing
        bool leaves;
        bool level2;
        const char* feedText;
        double seconds;
        const char* logLine;
    };
    const std::string none = "No RealTraffic version received?";
    const std::vector<Case> cases{
        {R"({"level":2,"version":"11"})", false, true, "RT prof edition: 11", 0, ""},
        {R"({"level":3,"version":"11"})", false, false, "RT stnd edition: 11", 0, ""},
        {R"({"version":"10.1"})", false, false, "RT stnd edition: 10.1", 0, ""},
        {R"({"level":"2","version":5})", false, false, "RT stnd edition: ", 0, ""},
        {"[1,2]", false, false, "", 0, ""},
        {"{level:2}", false, false, "", 0, ""},
        {"", false, false, "before", 5, none.c_str()},
        {R"({"level":2,"version":)", false, false, "before", 5, none.c_str()},
        {R"({"level":2)", true, false, "before", 0, none.c_str()},
        {"{" + std::string(16383, ' '), false, false, "before", 0, "receive: buffer overrun: 16384"},
    };
    for (const auto& [reply, leaves, level2, feedText, seconds, logLine] : cases) {
        gf_setPanelText(&PanelState::feedText, "before", Band::status);
        rtLevel2 = true;
        auto client = network.connectClient();
        if (!reply.empty()) client->say(reply);
        client->ended = leaves;
        gf_startListener("10747");
        const double begin = world.seconds();
        gf_rtHandshake();
        EXPECT_EQ(rtLevel2, level2) << reply;
        EXPECT_EQ(gf_panelText(&PanelState::feedText), feedText) << reply;
        EXPECT_NEAR(world.seconds() - begin, seconds, 0.2) << reply;
        EXPECT_TRUE(test::logHas(logLine)) << reply;
        EXPECT_TRUE(g_panel.feedConnected);
        gf_closeLink();
        EXPECT_EQ(client->sent, "Qs999=version\r\nexit\r\n");
        EXPECT_TRUE(client->dropped);
        EXPECT_FALSE(rtConnected);
        EXPECT_EQ(network.listenPort, "");
    }
}

TEST_F(SteppedLinkTest, AStopEndsBothWaitsOfTheHandshake) {
    world.at(7, [] { gf_requestStop(ExitReason::newSettings, 3); });
    gf_startListener("10747");
    gf_rtHandshake();
    EXPECT_NEAR(world.seconds(), 7, 0.1);
    EXPECT_FALSE(rtConnected || g_panel.feedConnected);

    gf_resetRunState();
    network.connectClient();
    world.at(9, [] { gf_requestClose(); });
    gf_rtHandshake();
    EXPECT_NEAR(world.seconds(), 9, 0.1);
    EXPECT_FALSE(test::logHas("No RealTraffic version received?"));
    EXPECT_FALSE(g_panel.feedConnected);
}

TEST_F(SteppedLinkTest, AClientThatIsGoneBeforeTheQuestionIsPassedOver) {
    network.connectClient()->leave();
    auto second = network.connectClient();
    second->say(R"({"level":1,"version":"9"})");
    gf_startListener("10747");
    gf_rtHandshake();
    EXPECT_TRUE(rtConnected);
    EXPECT_EQ(gf_panelText(&PanelState::feedText), "RT stnd edition: 9");
    EXPECT_EQ(test::logCount("sendDataPacket to RealTraffic failed: 10054 Connection reset by peer"), 1);
}

TEST_F(SteppedLinkTest, PositionAndTimeReports) {
    auto client = connected();
    engineUser.pitch = -0.0523599;
    engineUser.bank = 0.2;
    engineUser.heading = 4.71238898;
    engineUser.altitude = 35000.4;
    engineUser.groundSpeed = 0.25;
    gf_sendPosition();
    EXPECT_EQ(client->takeSent(), "Qs121=-5236;20000;4.712389;35000400;250;0.828298;0.149191\r\n");
    engineUser.lat = engineUser.lon = 0.0001;
    gf_sendPosition();
    gf_sendSimTime(0);
    EXPECT_EQ(client->takeSent(), "");
    gf_sendSimTime(1700000000);
    EXPECT_EQ(client->takeSent(), "Qs123=1700000000000\r\n");
    // What RealTraffic says later is read and dropped.
    engineUser.lat = 47;
    client->say("anything");
    gf_sendPosition();
    EXPECT_TRUE(client->segments.empty());
}

TEST_F(SteppedLinkTest, ALostLinkClearsTheSkyAndARegainedOneTakesTrafficAgain) {
    connected()->leave();
    liveAcs.emplace_back().hexid = 20000;
    trafficInbox.resize(7);
    qnh = 990;
    gf_sendPosition();
    EXPECT_FALSE(rtConnected || g_panel.feedConnected || g_acceptTraffic || gf_linkAllowsTraffic());
    EXPECT_TRUE(trafficInbox.empty());
    EXPECT_EQ(qnh, 1013);
    for (const LiveAc& record : liveAcs) EXPECT_TRUE(record.eraseNow);
    const std::string gone = "RealTraffic gone? Wait for RealTraffic to re-connect ...";
    EXPECT_TRUE(test::logHas("RealTraffic client socket closed"));
    EXPECT_NE(gf_panelText(&PanelState::statusText).find(gone), std::string::npos);

    // One look, without waiting.
    const double before = world.seconds();
    gf_sendPosition();
    EXPECT_EQ(world.seconds(), before);
    EXPECT_EQ(test::logCount(gone), 1);

    auto again = network.connectClient();
    gf_sendPosition();
    EXPECT_TRUE(rtConnected && g_panel.feedConnected && g_acceptTraffic);
    EXPECT_TRUE(rtLevel2) << "not asked again";
    EXPECT_EQ(again->sent, "");
    EXPECT_TRUE(test::logHas("RealTraffic re-connected"));
    EXPECT_EQ(gf_panelText(&PanelState::statusText), "");
    gf_sendPosition();
    EXPECT_EQ(again->takeSent().rfind("Qs121=", 0), 0u);
}

TEST_F(SteppedLinkTest, ALossFirstSeenByTheTimeReportIsALossToo) {
    connected()->leave();
    gf_sendSimTime(1700000000);
    network.connectClient();
    gf_sendPosition();
    EXPECT_TRUE(test::logHas("RealTraffic gone?"));
    EXPECT_FALSE(rtConnected || g_acceptTraffic);
    gf_sendPosition();
    EXPECT_TRUE(rtConnected && g_acceptTraffic);
}

TEST_F(SteppedLinkTest, ALinkThatReturnsDuringAPauseTakesNoTraffic) {
    connected()->leave();
    g_flightPaused = true;
    g_acceptTraffic = false;
    gf_sendPosition();
    network.connectClient();
    gf_sendPosition();
    EXPECT_TRUE(rtConnected && gf_linkAllowsTraffic());
    EXPECT_FALSE(g_acceptTraffic);
}

TEST_F(SteppedLinkTest, NoLookForAClientOnceARunEndsOrWithoutAListener) {
    connected()->leave();
    gf_sendPosition();
    network.connectClient();
    gf_requestStop(ExitReason::readerError, 15);
    gf_sendPosition();
    EXPECT_FALSE(rtConnected);
    gf_resetRunState();
    gf_closeLink();
    EXPECT_FALSE(waitForClient());
    gf_sendPosition();
    EXPECT_FALSE(rtConnected);
    AEROWINX.value = true;
    EXPECT_TRUE(gf_linkAllowsTraffic());
}

TEST_F(SteppedLinkTest, AnotherPcNeedsNoLink) {
    g_realTrafficHere = false;
    EXPECT_TRUE(gf_linkAllowsTraffic());
    gf_rtHandshake();
    gf_sendPosition();
    EXPECT_EQ(world.seconds(), 0);
    EXPECT_FALSE(test::logHas("RealTraffic"));
}

TEST_F(SteppedLinkTest, FailuresOfListenerAndClient) {
    const std::vector<std::pair<net::NetError, std::string>> cases{
        {{"startup", 10091}, "WSAStartup failed with error 10091"},
        {{"getaddrinfo", 11001}, "getaddrinfo failed with error 11001"},
        {{"socket", 10024}, "socket failed with error 10024 Too many open sockets"},
        {{"ioctlsocket", 10014}, "ioctlsocket failed with error 10014 Bad address"},
        {{"setsockopt", 10013}, "setsockopt(SO_REUSEADDR) failed"},
        {{"bind", 10048}, "Bind failed at port 10747 with error 10048 Address already in use"},
        {{"listen", 9}, "listen failed with error 9 Unknown errror code"}};
    for (const auto& [failure, text] : cases) {
        network.openFailure = failure;
        try {
            gf_startListener("10747");
            ADD_FAILURE() << text;
        } catch (const std::runtime_error& error) {
            EXPECT_EQ(error.what(), text);
        }
        EXPECT_EQ(lf_listenPort(), 0);
    }
    network.openFailure = {};
    gf_startListener("10747");
    network.connectClient()->noDelayError = 10042;
    EXPECT_FALSE(waitForClient());
    EXPECT_TRUE(test::logHas("setsockopt failed with error 10042 Bad protocol option"));
    EXPECT_FALSE(rtConnected);
    network.acceptError = 10024;
    gf_rtHandshake();
    EXPECT_EQ(world.seconds(), 0) << "a broken listener is not waited for";
}

using ThreadsLinkTest = LinkTest;

TEST_F(ThreadsLinkTest, OverLoopbackFromTheQuestionToTheExit) {
    gf_startListener("0");
    const uint16_t port = lf_listenPort();
    std::string question, report, rest;
    std::thread realTraffic([&] {
        auto link = test::LoopbackSocket::tcpTo(port);
        question = link.receive();
        link.send(R"({"level":2,)");
        link.send(R"("version":"11.3"})");
        report = link.receive(6);
        while (!rest.ends_with("exit\r\n")) {
            const std::string more = link.receive();
            if (more.empty()) break;
            rest += more;
        }
    });
    gf_rtHandshake();
    EXPECT_TRUE(rtConnected && rtLevel2);
    gf_sendPosition();
    gf_closeLink();
    realTraffic.join();
    EXPECT_EQ(question, "Qs999=version\r\n");
    EXPECT_EQ(report, "Qs121=");
    EXPECT_TRUE(rest.ends_with("\r\nexit\r\n")) << rest;
}

TEST_F(ThreadsLinkTest, OverLoopbackNothingOrHalfAReplyIsWaitedForFiveSeconds) {
    test::HastyClock clock;
    clock.perLook = std::chrono::milliseconds(20);
    for (const char* reply : {"", R"({"level":2,"ver)"}) {
        gf_startListener("0");
        auto link = test::LoopbackSocket::tcpTo(lf_listenPort());
        link.send(reply);
        const Nanos begin = clock.steadyNow();
        gf_rtHandshake();
        EXPECT_NEAR(std::chrono::duration<double>(clock.steadyNow() - begin).count(), 5, 1) << reply;
        EXPECT_TRUE(rtConnected && g_panel.feedConnected) << reply;
        EXPECT_FALSE(rtLevel2) << reply;
        EXPECT_EQ(link.receive(), "Qs999=version\r\n") << reply;
        gf_closeLink();
    }
    EXPECT_EQ(test::logCount("No RealTraffic version received?"), 2);
}

TEST_F(ThreadsLinkTest, APeerThatResetsIsNoticedAndItsSuccessorTaken) {
    gf_startListener("0");
    auto first = test::LoopbackSocket::tcpTo(lf_listenPort());
    ASSERT_TRUE(gf_waitUntil(gf_steadyNow() + std::chrono::seconds(10), [] { return waitForClient(); }));
    first.reset();
    EXPECT_TRUE(gf_waitUntil(gf_steadyNow() + std::chrono::seconds(10), [] {
        gf_sendPosition();
        return !rtConnected;
    }));
    EXPECT_TRUE(test::logHas("RealTraffic gone?"));
    auto second = test::LoopbackSocket::tcpTo(lf_listenPort());
    EXPECT_TRUE(gf_waitUntil(gf_steadyNow() + std::chrono::seconds(10), [] {
        gf_sendPosition();
        return rtConnected.load();
    }));
    gf_sendPosition();
    EXPECT_EQ(second.receive(6), "Qs121=");
}

}  // namespace
}  // namespace skl
