// SimConnect.cfg in its good and bad forms, and where it is looked for.
#include <gtest/gtest.h>

#include "platform/simconnect/config.h"
#include "tests/support/temp_folder.h"

namespace skl::test {

namespace {

TEST(SimConnectConfig, Forms) {
    struct Case {
        const char* text;
        const char* host;  // nullptr: not usable
        int port;
        bool noDelay;
        const char* trouble;
    };
    const Case cases[] = {
        {"[SimConnect]\nProtocol=IPv4\nAddress=10.0.0.5\nPort=500\n", "10.0.0.5", 500, true, ""},
        {"[simconnect.0]\r\n protocol = ipv4 \r\n address = sim-pc \r\n port = 2048 \r\n", "sim-pc", 2048,
         true, ""},
        {"\xEF\xBB\xBF; note\n[SimConnect]\nProtocol=\nAddress=a\nPort=1\nDisableNagle=0", "a", 1, false, ""},
        // The numbered section wins wherever it stands.
        {"[SimConnect]\nProtocol=IPv4\nAddress=a\nPort=1\n[SimConnect.0]\nProtocol=IPv4\nAddress=b\nPort=2\n",
         "b", 2, true, ""},
        {"[SimConnect.1]\nProtocol=IPv4\nAddress=a\nPort=1\n", nullptr, 0, false,
         "section [SimConnect] is missing"},
        {"", nullptr, 0, false, "section [SimConnect] is missing"},
        {"Protocol=IPv4\nAddress=a\nPort=1\n", nullptr, 0, false, "section [SimConnect] is missing"},
        {"[SimConnect]\nAddress=a\nPort=1\n", nullptr, 0, false, "Protocol is missing"},
        {"[SimConnect]\nProtocol=IPv4\nPort=1\n", nullptr, 0, false, "Address is missing"},
        {"[SimConnect]\nProtocol=IPv4\nAddress=a\n", nullptr, 0, false, "Port is missing"},
        {"[SimConnect]\nProtocol=Pipe\nAddress=.\nPort=x\n", nullptr, 0, false,
         "Protocol 'Pipe' is not supported, IPv4 is"},
        {"[SimConnect]\nProtocol=IPv4\nAddress=\nPort=1\n", nullptr, 0, false, "Address is empty"},
        {"[SimConnect]\nProtocol=IPv4\nAddress=a\nPort=0\n", nullptr, 0, false,
         "Port '0' is not a port number"},
        {"[SimConnect]\nProtocol=IPv4\nAddress=a\nPort=65536\n", nullptr, 0, false,
         "Port '65536' is not a port number"},
        {"[SimConnect]\nProtocol=IPv4\nAddress=a\nPort=50x\n", nullptr, 0, false,
         "Port '50x' is not a port number"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        SimConnectAddress address;
        std::string trouble;
        EXPECT_EQ(lf_parseSimConnectConfig(c.text, address, trouble), c.host != nullptr);
        EXPECT_EQ(trouble, c.trouble);
        if (!c.host) continue;
        EXPECT_EQ(address.host, c.host);
        EXPECT_EQ(address.port, c.port);
        EXPECT_EQ(address.noDelay, c.noDelay);
    }
    SimConnectAddress address;
    std::string trouble;
    EXPECT_FALSE(lf_parseSimConnectConfig(std::string_view("[\0S\0", 4), address, trouble));
    EXPECT_EQ(trouble, "not a plain text file");
}

using SimConnectConfigFile = TempFolderTest;

TEST_F(SimConnectConfigFile, WorkingFolderThenHomeThenThisMachine) {
    SimConnectAddress address;
    std::string trouble;
    ASSERT_TRUE(lf_findSimulator(address, trouble));
#ifdef _WIN32
    EXPECT_EQ(address.pipe, R"(\\.\pipe\Microsoft Flight Simulator\SimConnect)");
#else
    EXPECT_EQ(address.pipe, "");
#endif
    EXPECT_EQ(address.host, "localhost");
    EXPECT_EQ(address.port, 2048);
    writeFile(root.parent_path() / "SimConnect.cfg", "[SimConnect]\nProtocol=IPv4\nAddress=home\nPort=1\n");
    ASSERT_TRUE(lf_findSimulator(address, trouble));
    EXPECT_EQ(address.host, "home");
    writeFile("SimConnect.cfg", "[SimConnect]\nProtocol=IPv4\nAddress=here\nPort=2\n");
    ASSERT_TRUE(lf_findSimulator(address, trouble));
    EXPECT_EQ(address.host, "here");
    EXPECT_EQ(address.pipe, "");
    // A broken file ends the search.
    writeFile("SimConnect.cfg", "[SimConnect]\nProtocol=IPv4\nAddress=here\n");
    EXPECT_FALSE(lf_findSimulator(address, trouble));
    EXPECT_EQ(trouble, (root / "SimConnect.cfg").string() + ": Port is missing");
}

}  // namespace

}  // namespace skl::test
