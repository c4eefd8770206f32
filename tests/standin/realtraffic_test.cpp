// The RealTraffic stand-in over real loopback sockets, with a clock of the test's own.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <memory>
#include <nlohmann/json.hpp>

#include "standin/realtraffic/options.h"
#include "standin/realtraffic/player.h"
#include "standin/realtraffic/position.h"
#include "standin/realtraffic/recording.h"
#include "tests/support/loopback_sockets.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using realtraffic::Kind;
using realtraffic::Player;
using skl::test::LoopbackSocket;

constexpr double kUtc = 1800000000.4;

std::string record(const std::string& stamp, const std::string& callsign = "DLH1",
                   const std::string& alt = "5000") {
    return "RTTFC,4000000,51.5,-0.4," + alt + ",0,0,90,250," + callsign + ",A320,D-AIUA,,," + stamp +
           ",X,,adsb_icao," + alt + ",-1,-1,-1,0,-1,-1,-1,0,none,A3";
}

// The program's side of a stream of datagrams.
class Datagrams {
  public:
    Datagrams() : socket_(::socket(AF_INET, SOCK_DGRAM, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        EXPECT_EQ(0, ::bind(socket_, reinterpret_cast<sockaddr*>(&address), length));
        EXPECT_EQ(0, ::getsockname(socket_, reinterpret_cast<sockaddr*>(&address), &length));
        port = ntohs(address.sin_port);
    }
    ~Datagrams() { ::close(socket_); }
    Datagrams(const Datagrams&) = delete;
    Datagrams& operator=(const Datagrams&) = delete;

    std::vector<std::string> take() {
        std::vector<std::string> all;
        std::array<char, 20000> buffer;
        for (ssize_t n = 0; (n = ::recv(socket_, buffer.data(), buffer.size(), MSG_DONTWAIT)) > 0;) {
            all.emplace_back(buffer.data(), static_cast<std::size_t>(n));
        }
        return all;
    }
    int port = 0;

  private:
    int socket_;
};

class RealTrafficTest : public ::testing::Test {
  protected:
    void SetUp() override {
        auto name = (fs::temp_directory_path() / "rt-XXXXXX").string();
        ASSERT_NE(nullptr, ::mkdtemp(name.data()));
        folder_ = name;
        options.tcpPort = server.port();
        options.trafficPort = traffic.port;
        options.weatherPort = weather.port;
        options.feed = folder_ / "feed.txt";
        options.wait = 5;
        options.linger = 10;
    }
    void TearDown() override {
        player.reset();
        fs::remove_all(folder_);
    }

    void start(const std::vector<std::string>& lines, const std::string& script = "") {
        std::ofstream feed(options.feed, std::ios::binary);
        for (const auto& line : lines) {
            feed << line << "\r\n";
        }
        feed.close();
        if (!script.empty()) {
            options.script = folder_ / "script.txt";
            std::ofstream(options.script) << script;
        }
        player = std::make_unique<Player>(
            options, [this] { return time; }, kUtc);
        ASSERT_EQ("", player->start());
    }
    // The clock jumps to a second, where the player does what is due.
    void at(double seconds) {
        time = 100 + seconds;
        player->step(0);
    }
    // The same second until the report tells so.
    void until(const char* key, const json& value) {
        for (int i = 0; i < 500 && player->report()[key] != value; ++i) {
            player->step(0.01);
        }
        EXPECT_EQ(value, player->report()[key]) << key;
    }
    LoopbackSocket accept() {
        player->step(0);
        return server.accept();
    }
    LoopbackSocket acceptAndAsk() {
        const auto asked = player->report()["versionQuestions"].get<int>();
        auto link = accept();
        EXPECT_TRUE(link.send("Qs999=version\r\n"));
        until("versionQuestions", asked + 1);
        return link;
    }

    fs::path folder_;
    realtraffic::Options options;
    LoopbackSocket server = LoopbackSocket::tcpServer();
    Datagrams traffic, weather;
    double time = 100;
    std::unique_ptr<Player> player;
};

using Lines = std::vector<std::string>;

TEST_F(RealTrafficTest, PlaysTheRecordingFromTheVersionQuestionOn) {
    options.level = 2;
    options.qnh = 1009;
    start({record("1700000000.25"), record("1700000002"), "RTTFC,torn",
           record("1700000002.5", "OPS1 VEH", "0"), record("1700000012", "DLH2", "0")});
    at(3);
    EXPECT_EQ(Lines{}, traffic.take()) << "nobody has asked yet";
    auto link = acceptAndAsk();
    const auto answer = json::parse(link.receive());
    EXPECT_EQ(2, answer.at("level"));
    EXPECT_FALSE(answer.at("version").get<std::string>().empty());

    // It begins at 1800000003.4, so the stamps move by 100000003 whole seconds.
    EXPECT_EQ(Lines{record("1800000003.25")}, traffic.take());
    EXPECT_EQ(Lines{R"({"QNH":1009})"}, weather.take());
    at(4.7);
    EXPECT_EQ(Lines{}, traffic.take());
    at(4.8);
    EXPECT_EQ((Lines{record("1800000005"), "RTTFC,torn"}), traffic.take());
    at(8);
    EXPECT_EQ(Lines{record("1800000005.5", "OPS1 VEH", "0")}, traffic.take());
    EXPECT_EQ(1U, weather.take().size());
    at(14.8);
    EXPECT_EQ(Lines{record("1800000015", "DLH2", "0")}, traffic.take());
    at(24.7);
    EXPECT_FALSE(player->ended());
    at(24.8);
    EXPECT_TRUE(player->ended());

    const auto report = player->report();
    EXPECT_EQ(5, report["sent"]);
    EXPECT_EQ((json{{"air", 2}, {"ground", 1}, {"vehicles", 1}, {"broken", 1}}), report["byKind"]);
    EXPECT_EQ(kUtc + 3, report["recordingBeganUtc"]);
    EXPECT_EQ(0, report["unsent"]);
}

TEST_F(RealTrafficTest, SpeedPlaysFasterWithTheSameStamps) {
    options.speed = 10;
    start({record("1700000000"), record("1700000100")});
    auto link = acceptAndAsk();
    at(9.9);
    EXPECT_EQ(Lines{record("1800000000")}, traffic.take());
    at(10);
    EXPECT_EQ(Lines{record("1800000100")}, traffic.take());
}

TEST_F(RealTrafficTest, TriesTheLinkEachSecondAndBeginsWithoutItInTheEnd) {
    const auto closed = LoopbackSocket::tcpServer().port();
    options.tcpPort = closed;
    start({record("1700000000")});
    at(4.9);
    EXPECT_EQ(Lines{}, traffic.take());
    at(5);
    EXPECT_EQ(Lines{record("1800000005")}, traffic.take());
    EXPECT_EQ(json::parse(R"([{"t":5.0,"event":"begins without a link"}])"), player->report()["linkEvents"]);
}

TEST_F(RealTrafficTest, ComesBackAfterTheOtherSideHasGone) {
    start({record("1700000000"), record("1700000050")});
    {
        auto link = acceptAndAsk();
        EXPECT_TRUE(link.send("exit\r\n"));
        until("exits", 1);
    }
    until("linkEvents",
          json::parse(R"([{"t":0.0,"event":"up"},{"t":0.0,"event":"exit"},{"t":0.0,"event":"lost"}])"));
    at(7);
    auto link = acceptAndAsk();
    EXPECT_EQ(Lines{record("1800000000")}, traffic.take()) << "a second question begins nothing anew";
    EXPECT_EQ(0, player->report()["recordingBegan"]);
}

TEST_F(RealTrafficTest, NotesWhatTheProgramTells) {
    start({record("1700000000")});
    auto link = accept();
    // Half a command, then its rest with others.
    EXPECT_TRUE(link.send("Qs121=-1745;0;1.570796;83"));
    player->step(0);
    EXPECT_TRUE(
        link.send("000;12500.5;0.898331;-0.008062\r\nQs123=1800000001000\r\nQs121=1;2;3\r\nhello\r\n"));
    until("unknownCommands", 1);
    const auto report = player->report();
    EXPECT_EQ(1, report["positionReports"]);
    EXPECT_EQ(1, report["badPositionReports"]);
    EXPECT_EQ("1800000001000", report["lastTime"]);
    EXPECT_EQ("hello", report["firstUnknown"]);
    const auto position = report["lastPosition"];
    const std::map<std::string, double> expected{{"pitch", -1},
                                                 {"bank", 0},
                                                 {"heading", 90},
                                                 {"altitude", 83},
                                                 {"groundSpeed", 12.5005},
                                                 {"latitude", 51.4706},
                                                 {"longitude", -0.4619}};
    for (const auto& [name, value] : expected) {
        EXPECT_NEAR(value, position.at(name).get<double>(), 1e-3) << name;
    }
}

TEST_F(RealTrafficTest, DropsTheLinkAndOpensItAgainOnlyWhenTold) {
    start({record("1700000000"), record("1700000005")}, "# faults\n4 drop-link\n\n8 reconnect\n");
    auto link = acceptAndAsk();
    EXPECT_FALSE(link.receive().empty());
    at(4);
    EXPECT_EQ("", link.receive()) << "the end of the stream";
    at(6);
    EXPECT_EQ(2U, traffic.take().size()) << "records go on";
    EXPECT_EQ(2U, player->report()["linkEvents"].size());
    at(8);
    auto again = acceptAndAsk();
    EXPECT_FALSE(again.receive().empty());
    EXPECT_EQ(3U, player->report()["linkEvents"].size());
}

TEST_F(RealTrafficTest, IsSilentForAWhile) {
    Lines lines;
    for (int i = 0; i < 30; ++i) {
        lines.push_back(record(std::to_string(1700000000 + i)));
    }
    start(lines, "0 silent 12\n");
    at(0);
    auto link = acceptAndAsk();
    at(11.9);
    EXPECT_EQ(Lines{}, traffic.take());
    EXPECT_EQ(Lines{}, weather.take());
    at(12);
    EXPECT_EQ(Lines{record("1800000012")}, traffic.take());
    EXPECT_EQ(12, player->report()["lostInSilence"]);
    EXPECT_EQ(0, player->report()["bytes"]["linkSent"]);
    at(15);
    EXPECT_EQ(1U, weather.take().size());
}

TEST_F(RealTrafficTest, GivesHalfAnAnswerOnceAndRawBytes) {
    start({record("1700000000")}, "0 half-reply\n2 raw 00ff2C41\n");
    at(0);
    auto link = acceptAndAsk();
    const auto half = link.receive();
    EXPECT_TRUE(half.starts_with("{"));
    EXPECT_FALSE(json::accept(half));
    EXPECT_TRUE(link.send("Qs999=version\r\n"));
    until("versionQuestions", 2);
    EXPECT_TRUE(json::accept(link.receive()));
    traffic.take();
    at(2);
    EXPECT_EQ(Lines{std::string("\x00\xff,A", 4)}, traffic.take());
}

TEST(RealTrafficRecording, TakesStampsThatCanBeRead) {
    struct Case {
        const char* why;
        std::string line;
        double seconds;
        Kind kind;
        std::string moved;  // by 5 s
    };
    const std::vector<Case> cases{
        {"nothing to go by yet", "noise", 0, Kind::kBroken, "noise"},
        {"the first stamp", record("1700000000"), 0, Kind::kAir, record("1700000005")},
        {"one digit more by moving", record("1700000999"), 999, Kind::kAir, record("1700001004")},
        {"backward: not before the line in front", record("1700000990.5"), 999, Kind::kAir,
         record("1700000995.5")},
        {"no number", record("nan"), 999, Kind::kBroken, record("nan")},
        {"empty", record(""), 999, Kind::kBroken, record("")},
        {"an exponent", record("1.7e9"), 999, Kind::kBroken, record("1.7e9")},
        {"years ahead", record("1900000000"), 999, Kind::kBroken, record("1900000000")},
        {"ten years back", record("1400000000"), 999, Kind::kBroken, record("1400000000")},
        {"good stamp, bad height", record("1700001000", "X", "high"), 1000, Kind::kBroken,
         record("1700001005", "X", "high")},
        {"on the ground", record("1700001001", "X", "0"), 1001, Kind::kGround,
         record("1700001006", "X", "0")},
        {"a vehicle", record("1700001002", "A VEH", "0"), 1002, Kind::kVehicle,
         record("1700001007", "A VEH", "0")},
    };
    realtraffic::Recording recording;
    recording.add("");
    recording.add("\r");
    for (const auto& one : cases) {
        recording.add(one.line);
        const auto last = recording.size() - 1;
        EXPECT_EQ(one.seconds, recording.secondsOf(last)) << one.why;
        EXPECT_EQ(one.kind, recording.kindOf(last)) << one.why;
        EXPECT_EQ(one.moved, recording.text(last, 5)) << one.why;
    }
    EXPECT_EQ(cases.size(), recording.size());
}

TEST(RealTrafficPosition, RefusesWhatIsNone) {
    EXPECT_TRUE(realtraffic::positionOf("0;0;0.000000;83000;0;0.898331;-0.008062"));
    for (const char* values : {"", "0;0;0;83000;0;0.9", "0;0;0;83000;0;0.9;0;0", "0;0;0;4e+07;0;0.9;0",
                               "0;0;0;83000.5;0;0.9;0", "0;0;x;83000;0;0.9;0", "0;0;0;83000;;0.9;0",
                               "0;0;0;83000;0;nan;0", "0;0;0;83000;0;1.6;0", "0;0;0;83000;0;0.9;3.2"}) {
        EXPECT_FALSE(realtraffic::positionOf(values)) << values;
    }
}

TEST_F(RealTrafficTest, RefusesScriptsAndOptionsThatAreNone) {
    const auto complaint = [this] {
        return Player(
                   options, [] { return 0.0; }, kUtc)
            .start();
    };
    std::ofstream(options.feed) << record("1700000000") << '\n';
    options.script = folder_ / "bad.txt";
    for (const char* line :
         {"5 drop", "5 drop-link now", "5 raw", "5 raw 0g", "5 silent 0", "5 half-reply 1"}) {
        std::ofstream(options.script) << "1 drop-link\n" << line << '\n';
        EXPECT_NE(std::string::npos, complaint().find("line 2")) << line << ": " << complaint();
    }
    options.script.clear();
    EXPECT_EQ("", complaint());
    options.feed = folder_ / "none.txt";
    EXPECT_NE("", complaint());
    const std::vector<std::vector<std::string>> bad{{},
                                                    {"--feed", "f", "--level", "3"},
                                                    {"--feed", "f", "--speed", "0"},
                                                    {"--feed", "f", "--tcp-port", "0"}};
    for (const auto& arguments : bad) {
        realtraffic::Options read;
        EXPECT_NE("", realtraffic::readOptions(arguments, read)) << json(arguments);
    }
}

}  // namespace
