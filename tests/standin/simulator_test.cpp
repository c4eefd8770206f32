// What the simulator stand-in does by itself: the ground, the flight with its frames, its script, its
// objects.
#include "tests/standin/simulator_fixture.h"

namespace standin_test {

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
         {"1 dance", "1 pause now", "1 teleport 1", "1 stop-reading 0", "1 late-replies -1"}) {
        options.script = file("script", std::string("0 resume\n") + line + "\n");
        EXPECT_NE(complaint().find("line 2"), std::string::npos) << line;
    }
    options.script.clear();
    options.userPath = file("path", "0 1 2 3 4 5\n0 1 2 3 4 5\n");
    EXPECT_NE(complaint().find("line 2"), std::string::npos);
    Options read;
    EXPECT_NE(simulator::readOptions({"--sim", "2022"}, read), "");
    EXPECT_EQ(simulator::readOptions({"--sim", "2024", "--alt", "-3.5", "--refuse", "a b"}, read), "");
    EXPECT_EQ(std::tuple(read.sim, read.alt, read.refuse), std::tuple(2024, -3.5, "a b"));
}

}  // namespace standin_test
