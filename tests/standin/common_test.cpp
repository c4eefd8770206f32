// What the stand-ins share: scripts, options, texts.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "standin/common/options.h"
#include "standin/common/script.h"
#include "standin/common/text.h"
#include "tests/support/temp_folder.h"

namespace {

using standin::Argument;
using StandinCommonTest = skl::test::TempFolderTest;

constexpr standin::CommandForm kForms[] = {
    {"go"},
    {"place", 2, 2, Argument::kNumber},
    {"late", 1, 1, Argument::kNotNegative},
    {"wait", 0, 1, Argument::kPositive},
    {"raw", 1, 1, Argument::kBytes},
    {"name", 0, 1},
};

std::string readScript(const std::string& content, standin::Script& script) {
    std::ofstream("script") << content;
    return script.read("script", kForms);
}

TEST_F(StandinCommonTest, ScriptCommandsComeOnceInTheOrderOfTheirTimes) {
    standin::Script script;
    ASSERT_EQ("", readScript("# faults\r\n\n5 place -1 2.5\n2 wait\n 5\tname other\n2.5 late 0\n", script));
    EXPECT_EQ(2, script.nextSeconds());
    EXPECT_EQ(nullptr, script.due(1.9));
    std::vector<std::string> names;
    while (const auto* command = script.due(4.9)) {
        names.push_back(command->name);
    }
    EXPECT_EQ((std::vector<std::string>{"wait", "late"}), names);
    const auto* place = script.due(5);
    ASSERT_NE(nullptr, place);
    EXPECT_EQ(2.5, place->number(1, 0));
    EXPECT_EQ(7, place->number(2, 7));
    EXPECT_EQ("other", script.due(5)->arguments.at(0));
    EXPECT_EQ(nullptr, script.due(1e9));
}

TEST_F(StandinCommonTest, ScriptsWithLinesThatAreNoneAreRefusedByLine) {
    for (const char* line :
         {"x go", "-1 go", "nan go", "5", "5 goes", "5 go now", "5 place 1", "5 place 1 2 3", "5 place 1 b",
          "5 late -1", "5 late soon", "5 wait 0", "5 raw", "5 raw 0", "5 raw 0g", "5 name a b"}) {
        standin::Script script;
        EXPECT_TRUE(readScript(std::string("\n1 go\n") + line + "\n", script).starts_with("script, line 3:"))
            << line;
    }
    standin::Script script;
    EXPECT_EQ("cannot read none", script.read("none", kForms));
    std::filesystem::create_directory("folder");
    EXPECT_EQ("cannot read folder", script.read("folder", kForms));
}

TEST(StandinOptions, SetTheirTargetsWithinTheBounds) {
    int port = 1;
    double share = 0.5;
    std::optional<double> height;
    std::string name;
    bool ground = true;
    bool help = false;
    const std::map<std::string, standin::Setter> setters{{"--port", standin::whole(port, 0, 65535)},
                                                         {"--share", standin::number(share, 0, 1)},
                                                         {"--height", standin::number(height, -10, 10)},
                                                         {"--name", standin::text(name)},
                                                         {"--ground", standin::yesNo(ground)}};
    const std::vector<std::string> bad[] = {
        {"--port"},         {"--port", "65536"}, {"--port", "2x"},  {"--port", "1.5"},
        {"--share", "nan"}, {"--share", "-0.1"}, {"--name", ""},    {"--ground", "yes"},
        {"--fly", "1"},     {"--height", "11"},  {"port", "65535"},
    };
    for (const auto& arguments : bad) {
        EXPECT_NE("", standin::readOptions(arguments, setters, help)) << nlohmann::json(arguments);
    }
    EXPECT_EQ(1, port);
    EXPECT_FALSE(height);
    EXPECT_EQ("", standin::readOptions({"--port", "65535", "--share", "1e-1", "--height", "-3.5", "--name",
                                        "a b", "--ground", "0"},
                                       setters, help));
    EXPECT_EQ(std::tuple(65535, 0.1, -3.5, "a b", false), std::tuple(port, share, *height, name, ground));
    EXPECT_FALSE(help);
    EXPECT_EQ("", standin::readOptions({"--help", "--fly"}, setters, help));
    EXPECT_TRUE(help);
}

TEST(StandinText, EveryTextCanStandInJson) {
    const std::pair<std::string, std::string> cases[] = {
        {"Z\xC3\xBCrich", "Z\xC3\xBCrich"},
        {"Z\xFCrich", "Z\xC3\xBCrich"},
        {"\xED\xA0\x80", "\xC3\xAD\xC2\xA0\xC2\x80"},  // half of a pair
        {"\xC3", "\xC3\x83"},
    };
    for (const auto& [given, wanted] : cases) {
        EXPECT_EQ(wanted, standin::utf8Of(given));
        EXPECT_NO_THROW(static_cast<void>(nlohmann::json(standin::utf8Of(given)).dump()));
    }
}

}  // namespace
