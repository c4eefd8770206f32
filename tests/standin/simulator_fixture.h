// The simulator stand-in over a real loopback socket, with bytes put together by hand and a clock of the
// test's own.
#pragma once

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
#include <map>
#include <memory>
#include <nlohmann/json.hpp>

#include "standin/simulator/simulator.h"

namespace standin_test {

namespace fs = std::filesystem;
using simulator::Options;
using simulator::Simulator;

inline std::string number(std::uint64_t value, int bytes) {
    std::string result;
    for (int i = 0; i < bytes; ++i) {
        result.push_back(static_cast<char>(value >> (8 * i)));
    }
    return result;
}
inline std::string u32(std::uint32_t value) {
    return number(value, 4);
}
inline std::string f64(double value) {
    return number(std::bit_cast<std::uint64_t>(value), 8);
}
inline std::string text(std::string value, std::size_t width) {
    value.resize(width, '\0');
    return value;
}
inline std::string hex(std::string_view digits) {
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
        std::string body = u32(id);
        body += text(name, 256);  // as a sum, optimised, the compiler warns of bounds that are kept
        return packet(0x04, body);
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

}  // namespace standin_test
