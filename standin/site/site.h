// The data site as the program sees it, by the clock that it was given. One thread calls step() again and
// again.
#pragma once

#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <nlohmann/json_fwd.hpp>
#include <string>

#include "standin/common/program.h"
#include "standin/common/script.h"
#include "standin/site/connection.h"
#include "standin/site/faults.h"
#include "standin/site/options.h"

namespace site {

class Site : public standin::StandIn {
  public:
    // `clock` gives seconds since any moment.
    Site(Options options, std::function<double()> clock);
    ~Site() override;

    std::string start() override;
    int port() const override { return port_; }
    void step(double longestWait) override;
    bool ended() const override { return false; }
    nlohmann::json report() const override;

  private:
    std::string listen();
    void wait(double longestWait);
    void accept();
    void serve(Connection& connection);
    Answer answerTo(const std::string& head);
    Answer fileAnswer(const std::string& path, bool bodyWanted, bool keepAlive);
    void count(const std::string& path, const std::string& outcome) { ++outcomes_[path][outcome]; }

    Options options_;
    std::function<double()> clock_;
    double startClock_ = 0;
    double now_ = 0;  // seconds since the start
    standin::Script script_;
    Faults faults_;
    int listener_ = -1;
    int port_ = 0;
    std::list<Connection> connections_;

    std::uint64_t accepted_ = 0, requests_ = 0, bytesSent_ = 0;
    std::map<std::string, std::map<std::string, std::uint64_t>> outcomes_;  // by path
};

}  // namespace site
