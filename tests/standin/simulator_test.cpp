// The simulator stand-in over a real loopback socket, with bytes put together by hand and a clock of the
// test's own.
#include "standin/simulator/simulator.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <bit>
#include <filesystem>
#include <fstream>
#include <memory>
#include <nlohmann/json.hpp>

namespace {

namespace fs = std::filesystem;
using simulator::Options;
using simulator::Simulator;

std::string number(std::uint64_t value, int bytes) {
    std::string result;
    for (int i = 0; i < bytes; ++i) {
        result.push_back(static_cast<char>(value >> (8 * i)));
    }
    return result;
}
std::string u32(std::uint32_t value) {
    return number(value, 4);
}
std::string f64(double value) {
    return number(std::bit_cast<std::uint64_t>(value), 8);
}
std::string text(std::string value, std::size_t width) {
    value.resize(width, '\0');
    return value;
}
std::string hex(std::string_view digits) {
    std::string result;
    std::string pair;
    for (const char c : digits) {
        if (c != ' ') {
            pair.push_back(c);
        }
        if (pair.size() == 2) {
            result.push_back(static_cast<char>(std::stoi(pair, nullptr, 16)));
            pair.clear();
        }
    }
    return result;
}

// A message as it came, with its fields by offset.
struct Received {
    std::string bytes;
    std::uint64_t at(std::size_t offset, int width) const {
        std::uint64_t value = 0;
        for (int i = 0; i < width; ++i) {
            value |= std::uint64_t{static_cast<unsigned char>(bytes.at(offset + static_cast<std::size_t>(i)))}
                     << (8 * i);
        }
        return value;
    }
    std::uint32_t u32(std::size_t offset) const { return static_cast<std::uint32_t>(at(offset, 4)); }
    double f64(std::size_t offset) const { return std::bit_cast<double>(at(offset, 8)); }
    std::uint32_t id() const { return u32(8); }
    std::string text(std::size_t offset) const { return bytes.c_str() + offset; }
};

class SimulatorTest : public ::testing::Test {
  protected:
    void SetUp() override {
        folder = fs::temp_directory_path() / ("simulator-test-" + std::to_string(::getpid()));
        fs::create_directories(folder);
        options.port = 0;
        options.lat = 50;
        options.lon = 8;
        options.elevation = 300;
    }
    void TearDown() override {
        for (const int peer : peers) {
            ::close(peer);
        }
        sim.reset();
        fs::remove_all(folder);
    }

    std::string file(const std::string& name, const std::string& content) {
        std::ofstream(folder / name) << content;
        return (folder / name).string();
    }
    void start() {
        sim = std::make_unique<Simulator>(
            options, [this] { return now; }, 1700000000);
        ASSERT_EQ(sim->start(), "");
    }
    int connect() {
        const int peer = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(static_cast<std::uint16_t>(sim->port()));
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        EXPECT_EQ(::connect(peer, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
        ::fcntl(peer, F_SETFL, O_NONBLOCK);
        peers.push_back(peer);
        sim->step(0);
        return peer;
    }
    int open(std::uint32_t version = 5) {
        const int peer = connect();
        send(peer, packet(1, text("Test", 256) + text("", 24), 0, version));
        EXPECT_EQ(take(peer, 2).size(), 1U);
        return peer;
    }
    std::string packet(std::uint32_t type, const std::string& body, std::uint32_t sendId = 7,
                       std::uint32_t version = 5) {
        return u32(static_cast<std::uint32_t>(body.size() + 16)) + u32(version) + u32(0xF0000000U | type) +
               u32(sendId) + body;
    }
    // Sends and lets the simulator work until it has read everything.
    void send(int peer, const std::string& bytes) {
        const auto before = read();
        ASSERT_EQ(::send(peer, bytes.data(), bytes.size(), MSG_NOSIGNAL), std::ssize(bytes));
        for (int i = 0; i < 1000 && read() < before + bytes.size(); ++i) {
            sim->step(0);
            if (i > 10) {
                ::poll(nullptr, 0, 1);
            }
        }
        sim->step(0);
    }
    std::uint64_t read() const { return sim->report()["bytes"]["received"]; }
    // Takes from the sockets until everything that was sent has come.
    void drain() {
        const std::uint64_t sent = sim->report()["bytes"]["sent"];
        for (int i = 0; i < 2000; ++i) {
            for (const int peer : peers) {
                char buffer[65536];
                ssize_t count = 0;
                while ((count = ::recv(peer, buffer, sizeof buffer, 0)) > 0) {
                    rest[peer].append(buffer, static_cast<std::size_t>(count));
                    arrived += static_cast<std::uint64_t>(count);
                }
                ended[peer] = count == 0;
            }
            if (arrived >= sent) {
                return;
            }
            ::poll(nullptr, 0, 1);
        }
        ADD_FAILURE() << "only " << arrived << " of " << sent << " bytes came";
    }
    bool hasEnded(int peer) {
        for (int i = 0; i < 2000 && !ended[peer]; ++i) {
            drain();
            ::poll(nullptr, 0, 1);
        }
        return ended[peer];
    }
    // Whole messages that have come; the bytes of a torn one stay in `rest`.
    std::vector<Received> all(int peer) {
        drain();
        std::string& bytes = rest[peer];
        std::vector<Received> messages;
        while (bytes.size() >= 12 && bytes.size() >= Received{bytes}.u32(0)) {
            const auto size = Received{bytes}.u32(0);
            if (size < 12) {
                ADD_FAILURE() << "message of " << size << " bytes";
                break;
            }
            messages.push_back({bytes.substr(0, size)});
            bytes.erase(0, size);
        }
        return messages;
    }
    std::vector<Received> take(int peer, std::uint32_t id) {
        auto messages = all(peer);
        std::erase_if(messages, [id](const Received& message) { return message.id() != id; });
        return messages;
    }
    // The same while time stands still, until one is there.
    std::vector<Received> await(int peer, std::uint32_t id) {
        std::vector<Received> messages;
        for (int i = 0; i < 2000 && messages.empty(); ++i) {
            sim->step(0);
            messages = take(peer, id);
            ::poll(nullptr, 0, messages.empty() ? 1 : 0);
        }
        return messages;
    }
    // Time goes on in frames.
    void pass(double seconds) {
        const double end = now + seconds;
        while (now < end - 1e-9) {
            now = std::min(end, now + 1 / options.fps);
            sim->step(0);
        }
    }
    std::string define(std::uint32_t id, const std::string& name, const std::string& unit, std::uint32_t type,
                       const std::string& epsilonAndDatum = hex("00 00 00 00 FF FF FF FF")) {
        return packet(0x0C, u32(id) + text(name, 256) + text(unit, 256) + u32(type) + epsilonAndDatum);
    }
    std::string create(const std::string& title, const std::string& tail, double lat, double alt,
                       std::uint32_t ground = 0, std::uint32_t sendId = 7) {
        return packet(0x29,
                      text(title, 256) + text(tail, 12) + f64(lat) + f64(8) + f64(alt) + f64(0) + f64(0) +
                          f64(0) + u32(ground) + u32(0) + u32(104),
                      sendId);
    }
    std::string request(std::uint32_t id, std::uint32_t definition, std::uint32_t object,
                        std::uint32_t period, std::uint32_t flags = 0, std::uint32_t origin = 0,
                        std::uint32_t interval = 0, std::uint32_t limit = 0) {
        return packet(0x0E, u32(id) + u32(definition) + u32(object) + u32(period) + u32(flags) + u32(origin) +
                                u32(interval) + u32(limit));
    }
    std::string subscribe(std::uint32_t id, const std::string& name) {
        return packet(0x17, u32(id) + text(name, 256));
    }
    std::string map(std::uint32_t id, const std::string& name) {
        return packet(0x04, u32(id) + text(name, 256));
    }
    std::string transmit(std::uint32_t object, std::uint32_t event, std::uint32_t data) {
        return packet(0x05, u32(object) + u32(event) + u32(data) + u32(301) + u32(0));
    }

    Options options;
    double now = 100;
    std::unique_ptr<Simulator> sim;
    std::vector<int> peers;
    std::map<int, std::string> rest;
    std::map<int, bool> ended;
    std::uint64_t arrived = 0;
    fs::path folder;
};

TEST_F(SimulatorTest, AnswersTheCapturedOpenOfEveryVersion) {
    const std::string head5 = "28010000 05000000 010000F0 00000000";
    const std::string tail5 = "00000000 00484B00 0B000000 00000000 BBF40000 03000000";
    const std::string head6 = "28010000 06000000 010000F0 00000000";
    const std::string tail6 = "00000000 00525300 0C000000 02000000 3E4E0400 E7030000";
    for (const int year : {2020, 2024}) {
        options.sim = year;
        start();
        for (const auto& [head, tail, version] :
             {std::tuple{head5, tail5, 5U}, std::tuple{head6, tail6, 6U}}) {
            const int peer = connect();
            const auto whole = hex(head) + text("Skylantern", 256) + hex(tail);
            ASSERT_EQ(whole.size(), 296U);
            // In two halves, and only the second makes it a message.
            send(peer, whole.substr(0, 100));
            EXPECT_TRUE(all(peer).empty());
            send(peer, whole.substr(100));
            const auto messages = all(peer);
            ASSERT_EQ(messages.size(), 1U);
            EXPECT_EQ(messages[0].bytes.size(), 308U);
            EXPECT_EQ(messages[0].id(), 2U);
            EXPECT_EQ(messages[0].u32(4), version);
            EXPECT_EQ(messages[0].text(12), year == 2020 ? "KittyHawk" : "SunRise");
            EXPECT_EQ(messages[0].u32(268), year == 2020 ? 11U : 12U);
        }
    }
}

TEST_F(SimulatorTest, RefusesWhatComesBeforeOpenAndVersionsItDoesNotKnow) {
    start();
    const int peer = connect();
    send(peer, packet(0x0D, u32(1), 3));
    auto exceptions = take(peer, 1);
    ASSERT_EQ(exceptions.size(), 1U);
    EXPECT_EQ(exceptions[0].u32(12), 4U);
    EXPECT_EQ(exceptions[0].u32(16), 3U);
    send(peer, packet(1, text("Test", 280), 4, 7));
    exceptions = take(peer, 1);
    ASSERT_EQ(exceptions.size(), 1U);
    EXPECT_EQ(exceptions[0].u32(12), 5U);
    // A size that cannot be ends the connection.
    send(peer, u32(12) + u32(5) + u32(0xF0000001U));
    EXPECT_TRUE(hasEnded(peer));
}

TEST_F(SimulatorTest, AnswersFaultsWithTheirExceptions) {
    options.refuse = "Bad";
    start();
    const int peer = open();
    send(peer, define(1, "plane altitude", "feet", 4) + map(10, "gear_set") + subscribe(20, "FRAME"));
    send(peer, create("Plane", "A", 50, 5000));
    EXPECT_TRUE(take(peer, 1).empty());
    const struct {
        const char* what;
        std::string bytes;
        std::uint32_t exception;
    } cases[] = {
        {"a type that does not exist", packet(0x7F, ""), 1},
        {"a message cut short", packet(0x04, u32(1)), 2},
        {"a newer client's creation", packet(0x59, text("Plane", 584)), 5},
        {"a second open", packet(0x01, text("Test", 280)), 25},
        {"unknown variable", define(2, "PLANE COLOUR", "feet", 4), 7},
        {"unknown unit", define(2, "PLANE ALTITUDE", "furlong", 4), 20},
        {"unit of another dimension", define(2, "PLANE ALTITUDE", "knots", 4), 20},
        {"a number as a text", define(2, "PLANE ALTITUDE", "feet", 6), 18},
        {"a text as a number", define(2, "TITLE", "", 4), 18},
        {"unknown event", map(11, "GEAR_SETT"), 7},
        {"event id in use", map(10, "FLAPS_SET"), 9},
        {"unknown system event", subscribe(21, "Frames"), 7},
        {"subscription id in use", subscribe(20, "Sim"), 9},
        {"unsubscribe what is not there", packet(0x18, u32(21)), 3},
        {"clear what is not there", packet(0x0D, u32(99)), 3},
        {"unknown definition", request(1, 99, 0, 1), 3},
        {"unknown object", request(1, 1, 5, 1), 3},
        {"period out of range", request(1, 1, 0, 5), 27},
        {"radius too large", packet(0x0F, u32(1) + u32(1) + u32(200001) + u32(2)), 31},
        {"object type out of range", packet(0x0F, u32(1) + u32(1) + u32(1) + u32(6)), 27},
        {"captured pose of an object that is not there",
         packet(0x10, hex("92010000 05000000 00000000 01000000 10000000"
                          "000000000000F03F 0000000000000040")),
         3},
        {"data of the wrong length", packet(0x10, u32(1) + u32(1000) + u32(0) + u32(1) + u32(4) + u32(0)),
         19},
        {"more elements than bytes",
         packet(0x10, u32(1) + u32(1000) + u32(0) + u32(0x20000000) + u32(8) + f64(0)), 19},
        {"not a number", packet(0x10, u32(1) + u32(1000) + u32(0) + u32(1) + u32(8) + f64(std::nan(""))), 20},
        {"event of an unknown object", transmit(999, 10, 1), 3},
        {"event that is not mapped", transmit(1000, 11, 1), 3},
        {"group of an event that is not mapped", packet(0x07, u32(301) + u32(11) + u32(0)), 3},
        {"priority of no group", packet(0x09, u32(302) + u32(1)), 3},
        {"refused title", create("A Bad Plane", "B", 50, 5000), 22},
        {"no title", create("", "B", 50, 5000), 22},
        {"no place", create("Plane", "B", 91, 5000), 22},
        {"removal of what is not there", packet(0x2C, u32(4000) + u32(1)), 3},
        {"removal of the user", packet(0x2C, u32(1) + u32(1)), 24},
        {"release of what is not there", packet(0x2B, u32(4000) + u32(1)), 3},
        {"a plan that is not there", packet(0x2D, u32(1000) + text((folder / "none").string(), 260) + u32(1)),
         23},
    };
    std::uint32_t sendId = 1000;
    for (auto fault : cases) {
        fault.bytes.replace(12, 4, u32(++sendId));
        send(peer, fault.bytes);
        const auto exceptions = take(peer, 1);
        ASSERT_EQ(exceptions.size(), 1U) << fault.what;
        EXPECT_EQ(exceptions[0].bytes.size(), 24U);
        EXPECT_EQ(exceptions[0].u32(12), fault.exception) << fault.what;
        EXPECT_EQ(exceptions[0].u32(16), sendId) << fault.what;
    }
    const auto report = sim->report();
    EXPECT_EQ(report["exceptions"]["22"], 3);
    EXPECT_EQ(report["refused"], 3);
    EXPECT_EQ(report["alive"], 1);
}

TEST_F(SimulatorTest, CreatesMovesFreezesAndRemovesAnObject) {
    options.trace = (folder / "trace").string();
    start();
    const int peer = open();
    send(peer,
         subscribe(202, "ObjectAdded") + subscribe(203, "ObjectRemoved") + map(215, "FREEZE_ALTITUDE_SET"));
    send(peer, define(402, "Plane Latitude", "degree", 4) +
                   define(402, "Plane Heading degrees true", "radians", 4) +
                   define(402, "Vertical Speed", "feet per second", 4));
    send(peer, define(404, "Plane Altitude", "feet", 4) + define(404, "SIM ON GROUND", "Bool", 2) +
                   define(404, "ATC ID", "", 6) + define(404, "Plane Latitude", "radians", 3));
    // The captured creation, tail number BAW123, latitude 1.0.
    send(peer, packet(0x29, text("Plane", 256) + hex("424157313233000000000000 000000000000F03F") +
                                text("", 40) + hex("01000000 FEFFFFFF 68000000")));
    auto messages = all(peer);
    ASSERT_EQ(messages.size(), 2U);
    EXPECT_EQ(messages[0].id(), 12U);
    EXPECT_EQ(messages[0].u32(12), 104U);
    EXPECT_EQ(messages[0].u32(16), 1000U);
    EXPECT_EQ(messages[1].id(), 5U);
    EXPECT_EQ(messages[1].u32(12), 0xFFFFFFFFU);
    EXPECT_EQ(messages[1].u32(16), 202U);
    EXPECT_EQ(messages[1].u32(20), 1000U);
    EXPECT_EQ(messages[1].u32(24), 2U);

    send(peer, request(8, 404, 1000, 1));
    messages = all(peer);
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(messages[0].bytes.size(), 40U + 8 + 8 + 32 + 4);
    EXPECT_EQ(messages[0].u32(12), 8U);
    EXPECT_EQ(messages[0].u32(16), 1000U);
    EXPECT_EQ(messages[0].u32(20), 404U);
    EXPECT_EQ(messages[0].u32(36), 4U);
    EXPECT_GE(messages[0].f64(40), 1.0);
    EXPECT_EQ(messages[0].at(48, 8), 1U);
    EXPECT_EQ(messages[0].text(56), "BAW123");
    EXPECT_NEAR(std::bit_cast<float>(messages[0].u32(88)), 0.0174533F, 1e-6);

    // Array count 0 is 1. The pose can be read back by a request right behind it in the stream.
    send(peer,
         packet(0x10, u32(402) + u32(1000) + u32(0) + u32(0) + u32(24) + f64(1.5) + f64(-0.5) + f64(20)) +
             request(8, 402, 1000, 1));
    messages = all(peer);
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_NEAR(messages[0].f64(40), 1.5, 1e-12);
    EXPECT_NEAR(messages[0].f64(48), 6.283185307 - 0.5, 1e-6);
    EXPECT_NEAR(messages[0].f64(56), 20, 1e-9);

    send(peer, transmit(1000, 215, 1) + packet(0x2B, u32(1000) + u32(103)));
    send(peer, packet(0x2C, u32(1000) + u32(105)));
    messages = all(peer);
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(messages[0].id(), 5U);
    EXPECT_EQ(messages[0].u32(16), 203U);
    EXPECT_EQ(messages[0].u32(20), 1000U);

    sim->quit();
    std::ifstream in(options.trace);
    std::vector<std::string> operations;
    for (std::string line; std::getline(in, line);) {
        const auto record = nlohmann::json::parse(line);
        EXPECT_TRUE(record.contains("t") && record.contains("utc"));
        EXPECT_EQ(record["oid"], 1000);
        EXPECT_EQ(record["tail"], "BAW123");
        operations.push_back(record["op"]);
        if (record["op"] == "pose") {
            EXPECT_NEAR(record["lat"].get<double>(), 1.5, 1e-6);
            EXPECT_NEAR(record["hdg"].get<double>(), 360 - 28.648, 0.01);
        }
    }
    EXPECT_EQ(operations, (std::vector<std::string>{"create", "pose", "event", "remove"}));
}

TEST_F(SimulatorTest, WhatIsNotFrozenFallsToTheGroundOnceTheFlightRuns) {
    options.slope = 1;
    start();
    const int peer = open();
    send(peer, subscribe(201, "Sim") + map(215, "FREEZE_ALTITUDE_SET") +
                   define(1, "PLANE ALTITUDE", "feet", 4) +
                   define(2, "PLANE ALT ABOVE GROUND MINUS CG", "feet", 4) +
                   define(2, "GROUND ALTITUDE", "feet", 4));
    pass(2.5);
    send(peer, create("Plane", "FALLS", 50.01, 1000) + create("Plane", "STAYS", 50.01, 1000) +
                   transmit(1001, 215, 1));
    all(peer);
    const auto altitudes = [&](std::uint32_t definition) {
        send(peer, request(1, definition, 1000, 1) + request(2, definition, 1001, 1));
        const auto data = take(peer, 8);
        EXPECT_EQ(data.size(), 2U);
        return std::pair(data.at(0).f64(40), data.at(1).f64(40));
    };
    pass(1);
    const auto [falling, staying] = altitudes(1);
    EXPECT_NEAR(falling, 1000 - 16.1, 1.5);
    EXPECT_EQ(staying, 1000);
    pass(20);
    EXPECT_NEAR(altitudes(2).first, 0, 1e-6);
    EXPECT_EQ(altitudes(1).second, 1000);
    // The ground rises by one foot in a hundred to the north.
    send(peer, request(3, 2, 1000, 1));
    EXPECT_NEAR(take(peer, 8).at(0).f64(48), 300 + 0.01 * 0.01 * 111194.9 / 0.3048, 0.05);
}

TEST_F(SimulatorTest, StartsPausesResumesAndSendsFrames) {
    options.script = file("script", "# as the user does it\n4 pause\n\n6 resume\n7 teleport 51 9\n");
    start();
    const int peer = open();
    send(peer, subscribe(201, "Sim") + subscribe(204, "Frame"));
    auto events = take(peer, 4);
    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(events[0].u32(20), 0U);
    pass(1.9);
    EXPECT_TRUE(take(peer, 4).empty());
    std::vector<std::uint32_t> values;
    std::size_t frames = 0;
    for (int i = 0; i < 60; ++i) {
        pass(0.1);
        for (const auto& message : all(peer)) {
            if (message.id() == 4) {
                EXPECT_EQ(message.u32(16), 201U);
                values.push_back(message.u32(20));
            }
            if (message.id() == 7) {
                EXPECT_EQ(message.bytes.size(), 32U);
                EXPECT_EQ(std::bit_cast<float>(message.u32(24)), 30.0F);
                ++frames;
            }
        }
    }
    EXPECT_EQ(values, (std::vector<std::uint32_t>{1, 0, 1}));
    EXPECT_NEAR(static_cast<double>(frames), 180, 2);
    // A second client hears of the running flight at once.
    const int other = open(4);
    send(other, subscribe(1, "sim") + define(1, "PLANE LATITUDE", "degrees", 4) + request(1, 1, 0, 1));
    const auto sims = take(other, 4);
    ASSERT_EQ(sims.size(), 1U);
    EXPECT_EQ(sims[0].u32(20), 1U);
}

TEST_F(SimulatorTest, AnswersByTypeWithinTheRadius) {
    start();
    const int peer = open();
    send(peer, define(1, "TITLE", "", 11));
    send(peer, create("Near", "A", 50.01, 5000) + create("Far", "B", 50.1, 5000));  // 1.1 km and 11 km
    all(peer);
    const struct {
        std::uint32_t radius, type;
        std::vector<std::string> titles;
    } cases[] = {
        {20000, 2, {"Airbus A320 Neo Asobo", "Near", "Far"}},
        {5000, 1, {"Airbus A320 Neo Asobo", "Near"}},
        {0, 2, {"Airbus A320 Neo Asobo"}},
        {20000, 0, {"Airbus A320 Neo Asobo"}},
    };
    for (const auto& one : cases) {
        send(peer, packet(0x0F, u32(5) + u32(1) + u32(one.radius) + u32(one.type)));
        const auto data = take(peer, 9);
        ASSERT_EQ(data.size(), one.titles.size());
        for (std::size_t i = 0; i < data.size(); ++i) {
            EXPECT_EQ(data[i].text(40), one.titles[i]);
            EXPECT_EQ(data[i].bytes.size() % 4, 0U);
            EXPECT_EQ(data[i].u32(28), i + 1);
            EXPECT_EQ(data[i].u32(32), data.size());
        }
    }
    // None of a type: one message without an entry.
    send(peer, packet(0x0F, u32(5) + u32(1) + u32(20000) + u32(3)));
    const auto none = take(peer, 9);
    ASSERT_EQ(none.size(), 1U);
    EXPECT_EQ(none[0].u32(28) + none[0].u32(32) + none[0].u32(36), 0U);
}

TEST_F(SimulatorTest, RepeatsRequestsByPeriodIntervalLimitAndChange) {
    options.userPath = file("path", "0 50 8 1000 0 0\n1 50 8 1000 0 0\n2 50 8 2000 90 100\n");
    options.fps = 10;
    start();
    const int peer = open();
    const auto tagged = hex("00 00 00 00 21 00 00 00");
    send(peer, define(1, "PLANE ALTITUDE", "feet", 4, tagged) +
                   define(1, "GROUND VELOCITY", "knots", 4, hex("0000C842 22000000")) +
                   subscribe(201, "Sim"));
    all(peer);
    pass(1.9);
    send(peer, request(1, 1, 0, 2));              // every frame
    send(peer, request(2, 1, 0, 2, 0, 3, 1, 4));  // three frames later, every second one, four times
    send(peer, request(3, 1, 0, 4));              // every second
    send(peer, request(4, 1, 0, 3));              // only while the flight runs
    send(peer, request(5, 1, 0, 2, 1));           // only changed values
    send(peer, request(6, 1, 0, 2, 3));           // only changed values, tagged
    send(peer, request(7, 1, 0, 2, 0, 0, 4));     // every fifth frame
    pass(2.9);
    std::map<std::uint32_t, std::vector<Received>> replies;
    for (const auto& message : take(peer, 8)) {
        EXPECT_EQ(message.u32(16), 1U);
        replies[message.u32(12)].push_back(message);
    }
    EXPECT_NEAR(static_cast<double>(replies[1].size()), 29, 1);
    EXPECT_EQ(replies[2].size(), 4U);
    EXPECT_EQ(replies[3].size(), 3U);
    EXPECT_NEAR(static_cast<double>(replies[7].size()), 6, 1);
    EXPECT_NEAR(static_cast<double>(replies[4].size()), 28, 1);
    // Once for itself, then about ten times while the aircraft climbs from the first to the second second.
    EXPECT_NEAR(static_cast<double>(replies[5].size()), 10, 2);
    EXPECT_EQ(replies[6].size(), replies[5].size());
    EXPECT_EQ(replies[5].back().bytes.size(), 56U);
    // The speed never changed by more than its epsilon of 100 knots: altitude alone, with its tag.
    EXPECT_EQ(replies[6].front().u32(36), 2U);
    EXPECT_EQ(replies[6].back().u32(36), 1U);
    EXPECT_EQ(replies[6].back().u32(40), 0x21U);
    send(peer, request(1, 1, 0, 0));
    all(peer);
    pass(0.5);
    for (const auto& message : take(peer, 8)) {
        EXPECT_NE(message.u32(12), 1U);
    }
}

TEST_F(SimulatorTest, RefusesTheThousandAndFirstObject) {
    start();
    const int peer = open();
    for (int i = 0; i < 1000; ++i) {
        send(peer, create("Plane", "T" + std::to_string(i), 50, 5000));
    }
    EXPECT_EQ(take(peer, 12).size(), 1000U);
    send(peer, create("Plane", "MORE", 50, 5000, 0, 4711));
    const auto messages = all(peer);
    ASSERT_EQ(messages.size(), 2U);
    EXPECT_EQ(messages[0].u32(12), 11U);
    EXPECT_EQ(messages[1].u32(12), 22U);
    EXPECT_EQ(messages[0].u32(16), 4711U);
    EXPECT_EQ(messages[1].u32(16), 4711U);
}

TEST_F(SimulatorTest, AClientThatGoesTakesItsObjectsWithIt) {
    start();
    const int first = open();
    const int second = open(6);
    send(second, subscribe(1, "ObjectRemoved"));
    send(first, create("Plane", "A", 50, 5000));
    // The other client cannot remove it.
    send(second, packet(0x2C, u32(1000) + u32(1)));
    EXPECT_EQ(take(second, 1).at(0).u32(12), 25U);
    ::shutdown(first, SHUT_RDWR);
    for (int i = 0; i < 1000 && sim->report()["alive"] == 1; ++i) {
        sim->step(0);
    }
    sim->step(0);
    const auto removed = take(second, 5);
    ASSERT_EQ(removed.size(), 1U);
    EXPECT_EQ(removed[0].u32(20), 1000U);
    // The newer creation with a livery.
    send(second, packet(0x59, text("Plane", 256) + text("Livery", 256) + text("B", 12) + f64(50) + f64(8) +
                                  f64(0) + text("", 24) + u32(1) + u32(0) + u32(9)));
    EXPECT_EQ(take(second, 12).at(0).u32(12), 9U);
}

TEST_F(SimulatorTest, NotifiesGroupsOfTheUsersEventsByPriority) {
    start();
    const int first = open();
    const int second = open();
    const auto group = [&](std::uint32_t priority, std::uint32_t maskable) {
        return map(10, "GEAR_SET") + packet(0x07, u32(300) + u32(10) + u32(maskable)) +
               packet(0x09, u32(300) + u32(priority));
    };
    send(first, group(10000000, 1));
    send(second, group(1900000000, 0));
    send(second, transmit(0, 10, 5));
    const auto heard = take(first, 4);
    ASSERT_EQ(heard.size(), 1U);
    EXPECT_EQ(heard[0].u32(12), 300U);
    EXPECT_EQ(heard[0].u32(16), 10U);
    EXPECT_EQ(heard[0].u32(20), 5U);
    EXPECT_TRUE(take(second, 4).empty());  // masked
    send(first, packet(0x07, u32(300) + u32(10) + u32(0)));
    send(second, packet(0x44, u32(0) + u32(10) + u32(300) + u32(0) + u32(6) + text("", 16)));
    EXPECT_EQ(take(first, 27).at(0).u32(20), 6U);
    EXPECT_EQ(take(second, 27).at(0).bytes.size(), 40U);
}

TEST_F(SimulatorTest, ScriptsWhatCanGoWrong) {
    options.script = file("script",
                          "1 stop-reading 2\n4 late-replies 3\n8 foreign-object\n8 flight-loaded\n"
                          "9 cut-mid-message\n10 wrong-name\n11 cut\n12 quit\n");
    start();
    int peer = open();
    const auto definition = define(1, "PLANE ALTITUDE", "feet", 4);
    send(peer, subscribe(1, "ObjectAdded") + subscribe(2, "FlightLoaded") + definition);
    pass(1.5);
    const auto question = request(1, 1, 0, 1);
    ASSERT_EQ(::send(peer, question.data(), question.size(), 0), std::ssize(question));
    pass(1);
    EXPECT_TRUE(all(peer).empty());
    pass(1);
    EXPECT_EQ(await(peer, 8).size(), 1U);
    pass(1);
    send(peer, question);
    pass(2.9);
    EXPECT_TRUE(all(peer).empty());
    pass(0.3);
    EXPECT_EQ(take(peer, 8).size(), 1U);
    pass(0.5);
    auto messages = all(peer);
    ASSERT_EQ(messages.size(), 2U);
    EXPECT_EQ(messages[0].id(), 5U);
    EXPECT_EQ(messages[1].id(), 6U);
    EXPECT_EQ(messages[1].bytes.size(), 288U);
    EXPECT_EQ(messages[1].u32(16), 2U);
    pass(1);
    EXPECT_TRUE(all(peer).empty());
    EXPECT_TRUE(hasEnded(peer));
    EXPECT_EQ(rest[peer].size(), 19U);
    pass(1);
    peer = connect();
    send(peer, packet(1, text("Test", 280)));
    pass(0);
    now += 3;  // the reply is late
    EXPECT_EQ(all(peer).size(), 1U);
    sim->step(0);
    EXPECT_TRUE(hasEnded(peer));
    EXPECT_TRUE(sim->ended());
}

TEST_F(SimulatorTest, ComplainsOfBadFilesAndOptions) {
    const auto complaint = [this] {
        return Simulator(
                   options, [this] { return now; }, 0)
            .start();
    };
    for (const char* line :
         {"x pause", "1 dance", "1 teleport 1", "1 late-replies soon", "1 pause now", "1"}) {
        options.script = file("script", std::string("0 resume\n") + line + "\n");
        EXPECT_NE(complaint().find("line 2"), std::string::npos) << line;
    }
    options.script.clear();
    options.userPath = file("path", "0 1 2 3 4 5\n0 1 2 3 4 5\n");
    EXPECT_NE(complaint().find("line 2"), std::string::npos);
    const std::vector<std::string> bad[] = {
        {"--port"},       {"--port", "70000"}, {"--port", "2x"},      {"--sim", "2022"},
        {"--lat", "nan"}, {"--fly", "1"},      {"--on-ground", "yes"}};
    for (const auto& arguments : bad) {
        Options read;
        EXPECT_NE(simulator::readOptions(arguments, read), "") << arguments[0];
    }
    Options read;
    EXPECT_EQ(
        simulator::readOptions({"--port", "0", "--sim", "2024", "--alt", "-3.5", "--refuse", "a b"}, read),
        "");
    EXPECT_EQ(read.sim, 2024);
    EXPECT_EQ(read.alt, -3.5);
    EXPECT_EQ(read.refuse, "a b");
}

// Poses of one aircraft into the figures.
class MotionTest : public ::testing::Test {
  protected:
    void SetUp() override {
        for (int i = 0; i <= 20; ++i) {  // eastwards along the equator at 100 m/s, with a gap of 60 s
            feed.add("RTTFC,1,0," + std::to_string(i * 200 / kDegree) +
                     ",3000,0,0,90,194.4,FLY1,A320,REG,,," +
                     std::to_string(1000 + 2 * i + (i > 10 ? 60 : 0)) +
                     ",X,,adsb,0,-1,-1,-1,0,-1,-1,-1,0,none,A3");
        }
        feed.add("RTTFC,1,5,5,0,0,0,0,0,SHORT");
        feed.order();
        object.id = 1000;
        object.tail = "FLY1";
    }
    // Flies straight; `change` may bend the pose of a moment.
    nlohmann::json fly(double seconds, const std::function<void(double, simulator::Pose&)>& change) {
        simulator::Motion motion(1 / 30.0, 0.2, feed);
        motion.created(object);
        for (int i = 0; i <= seconds * 30; ++i) {
            simulator::Pose pose{i / 30.0, 0, 100 * (i / 30.0) / kDegree, 0, 90, 194.4, 3000};
            change(pose.t, pose);
            motion.pose(1000, pose);
        }
        return motion.report();
    }
    static constexpr double kDegree = 111194.93;
    simulator::FeedPaths feed;
    simulator::SimObject object;
};

TEST_F(MotionTest, AStraightFlightHasNoFault) {
    const auto report = fly(20, [](double, simulator::Pose&) {});
    EXPECT_EQ(report["step"]["breaches"], 0);
    EXPECT_EQ(report["step"]["poses"], 600);
    EXPECT_EQ(report["heading"]["breaches"], 0);
    EXPECT_EQ(report["pitch"]["breaches"], 0);
    EXPECT_LT(report["air"]["Large"]["accelerationG"]["max"], 0.01);
    EXPECT_LT(report["crossTrack"]["max"], 0.1);
    EXPECT_EQ(report["crossTrack"]["flights"], 1);
    EXPECT_LT(report["crossTrack"]["leftOutShare"], 0.02);
    EXPECT_FALSE(report.contains("onGround"));
}

TEST_F(MotionTest, FindsJumpsTurnsAndSpeedChangesWithTheirSecond) {
    auto report = fly(20, [](double t, simulator::Pose& pose) { pose.lon += t > 9.99 ? 15 / kDegree : 0; });
    EXPECT_EQ(report["step"]["breaches"], 1);
    EXPECT_NEAR(report["step"]["worst"]["t"].get<double>(), 10, 0.05);
    EXPECT_NEAR(report["step"]["worst"]["value"].get<double>(), 18.3, 0.1);
    EXPECT_EQ(report["step"]["worst"]["tail"], "FLY1");
    EXPECT_NEAR(report["air"]["all"]["accelerationG"]["max"].get<double>(), 15 / 9.80665, 0.1);

    report = fly(20, [](double t, simulator::Pose& pose) {
        pose.heading += t > 4.99 ? 2 : 0;  // allowed are 1.83 degrees
        pose.pitch -= t > 6.99 ? 0.6 : 0;  // and 0.67
    });
    EXPECT_EQ(report["heading"]["breaches"], 1);
    EXPECT_EQ(report["pitch"]["breaches"], 0);
    EXPECT_NEAR(report["air"]["all"]["yawRate"]["max"].get<double>(), 2, 0.1);

    // Its own speed counts, the report's as well.
    report = fly(20, [](double, simulator::Pose& pose) { pose.airspeed = 50; });
    EXPECT_EQ(report["step"]["breaches"], 0);
    object.tail = "OTHER";
    report = fly(20, [](double, simulator::Pose& pose) { pose.airspeed = 50; });
    EXPECT_GT(report["step"]["breaches"], 500);
}

TEST_F(MotionTest, MeasuresTheDistanceFromThePathAndLeavesGapsOut) {
    auto report = fly(20, [](double, simulator::Pose& pose) { pose.lat = 20 / kDegree; });
    EXPECT_NEAR(report["crossTrack"]["p95"].get<double>(), 20, 1);
    EXPECT_NEAR(report["crossTrack"]["max"].get<double>(), 20, 0.05);
    // From 2000 to 2200 m there was no report, and nothing of a path a minute past the end.
    report = fly(
        100, [](double t, simulator::Pose& pose) { pose.lat = t > 20.1 && t < 21.9 ? 500 / kDegree : 0; });
    EXPECT_LT(report["crossTrack"]["max"], 0.1);
    EXPECT_NEAR(report["crossTrack"]["leftOutShare"].get<double>(), 0.32, 0.03);
}

TEST_F(MotionTest, JudgesTouchDownWheelsAndSliding) {
    const auto report = fly(40, [](double t, simulator::Pose& pose) {
        pose.height = t < 10 ? 300 - 30 * t + 0.4 : 0.4;  // 1800 feet a minute down to the ground
        if (t > 20) {
            pose.height = 3;  // hovers
        }
        if (t > 30) {
            pose.height = 0;
            pose.heading = t > 35 ? 270 : 150;  // slides, then goes backwards
        }
    });
    const auto& ground = report["onGround"];
    EXPECT_EQ(ground["touchDown"]["count"], 1);
    EXPECT_NEAR(ground["touchDown"]["hardest"]["feetPerMinute"].get<double>(), 1800, 60);
    EXPECT_EQ(ground["touchDown"]["tooHard"], 1);
    EXPECT_NEAR(ground["wheels"]["breaches"].get<double>(), 9, 1);
    EXPECT_NEAR(ground["wheels"]["worst"]["metres"].get<double>(), 0.914, 0.01);
    EXPECT_NEAR(ground["sideways"]["seconds"].get<double>(), 5, 1);
    EXPECT_NEAR(ground["sideways"]["backwards"].get<double>(), 4, 1);
    // The window of the turn lies between 60 and 180 degrees.
    EXPECT_NEAR(ground["sideways"]["worst"]["degrees"].get<double>(), 120, 1);
}

}  // namespace
