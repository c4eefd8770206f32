// The site stand-in over real loopback sockets, with a clock of the test's own.
#include "standin/site/site.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/support/loopback_sockets.h"
#include "tests/support/temp_folder.h"

namespace {

using skl::test::writeFile;

class SiteTest : public skl::test::TempFolderTest {
  protected:
    void start(std::vector<std::string> more = {}) {
        writeFile("root/a b/x.xml", "0123456789");
        writeFile("secret.txt", "secret");
        more.insert(more.end(), {"--root", "root", "--port", "0"});
        site::Options options;
        ASSERT_EQ("", site::readOptions(more, options));
        site_ = std::make_unique<site::Site>(options, [this] { return time; });
        ASSERT_EQ("", site_->start());
    }
    std::string send(const std::string& request) {
        auto client = skl::test::LoopbackSocket::tcpTo(static_cast<std::uint16_t>(site_->port()));
        client.send(request);
        for (int i = 0; i < 10; ++i) {
            site_->step(0.002);
        }
        return client.receive();
    }
    static std::string get(const std::string& path, const std::string& more = "") {
        return "GET " + path + " HTTP/1.1\r\nHost: x\r\n" + more + "\r\n";
    }
    static std::string bodyOf(const std::string& answer) {
        return answer.substr(answer.find("\r\n\r\n") + 4);
    }

    double time = 100;
    std::unique_ptr<site::Site> site_;
};

TEST_F(SiteTest, AnswersByRequest) {
    start();
    const std::string file = "/a%20b/x.xml", digits = "0123456789";
    const std::vector<std::vector<std::string>> cases{
        {get(file), "200", digits},
        {get("http://host:80" + file + "?query"), "200", digits},
        {"HEAD " + file + " HTTP/1.1\r\nHost: x\r\n\r\n", "200", ""},
        {"GET " + file + " HTTP/1.0\r\n\r\n", "200", digits},
        {get("/none.xml"), "404", "404 Not Found\n"},
        {get("/a%20b/%2e%2e/../secret.txt"), "404", "404 Not Found\n"},
        {get("/%00"), "400", "400 Bad Request\n"},
        {"GET " + file + " HTTP/1.1\r\n\r\n", "400", "400 Bad Request\n"},  // no host
        {std::string(17000, 'x'), "400", "400 Bad Request\n"},
        {"POST " + file + " HTTP/1.1\r\nHost: x\r\n\r\n", "405", "405 Method Not Allowed\n"},
    };
    for (const auto& c : cases) {
        const auto answer = send(c[0]);
        EXPECT_EQ(c[1], answer.substr(9, 3)) << c[0].substr(0, 60);
        EXPECT_EQ(c[2], bodyOf(answer)) << c[0].substr(0, 60);
    }
    EXPECT_EQ(10, site_->report()["requests"]);
    EXPECT_EQ(4, site_->report()["paths"]["/a b/x.xml"]["200"]);
    const auto all = send(get("/none") + get(file, "Connection: close\r\n"));
    EXPECT_NE(std::string::npos, all.find("keep-alive\r\n\r\n404 Not Found\nHTTP/1.1 200 OK")) << all;
}

TEST_F(SiteTest, FaultsByTheLongestBeginning) {
    writeFile("script", "1 missing /\n2 serve /a\n3 cut /a 3\n4 hang /a 4\n");
    start({"--script", "script", "--cut", "/a"});
    for (const auto* body : {"01234", "01234", "0123456789", "012", "0123"}) {
        const auto answer = send(get("/a%20b/x.xml"));
        EXPECT_EQ(body, bodyOf(answer)) << time;
        EXPECT_NE(std::string::npos, answer.find("Content-Length: 10\r\n")) << time;
        time += 1;
        EXPECT_EQ("404 Not Found\n", bodyOf(send(get("/b"))));
    }
}

}  // namespace
