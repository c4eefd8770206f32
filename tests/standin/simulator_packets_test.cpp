// The packets of a client and what the simulator stand-in answers.
#include "tests/standin/simulator_fixture.h"

namespace standin_test {

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

}  // namespace standin_test
