// RealTraffic as the program sees it: link, records and pressure, by the clock that it was given, so that a
// test can have its own. One thread calls step() again and again.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "standin/common/program.h"
#include "standin/common/script.h"
#include "standin/realtraffic/link.h"
#include "standin/realtraffic/options.h"
#include "standin/realtraffic/position.h"
#include "standin/realtraffic/recording.h"

namespace realtraffic {

class Player : public standin::StandIn {
  public:
    // `clock` gives seconds since any moment; `utcAtStart` is seconds since 1970 at the first look at it.
    Player(Options options, std::function<double()> clock, double utcAtStart);

    std::string start() override;
    // It listens nowhere: this is the program's port for the link.
    int port() const override { return options_.tcpPort; }
    void step(double longestWait) override;
    bool ended() const override;
    nlohmann::json report() const override;

  private:
    double untilNext() const;
    void wait(double seconds) const;
    void runScript(const standin::ScriptCommand& command);
    void serveLink();
    void handle(std::string_view command);
    void answerVersion();
    void begin();
    void sendRecords();
    void sendPressure();
    void note(std::string event);
    bool silent() const { return now_ < silentUntil_; }
    bool playing() const { return begun_ >= 0; }
    // Seconds since the start when a second of the recording is due.
    double dueAt(double recordingSeconds) const { return begun_ + recordingSeconds / options_.speed; }

    Options options_;
    std::function<double()> clock_;
    double startClock_ = 0;
    double utcAtStart_ = 0;
    double now_ = 0;  // seconds since the start
    Recording recording_;
    standin::Script script_;

    Link link_;
    Datagrams traffic_;
    Datagrams weather_;
    bool linkWanted_ = true;
    bool halfReply_ = false;
    double silentUntil_ = 0;

    double begun_ = -1;  // below 0 before
    std::int64_t shift_ = 0;
    std::size_t nextLine_ = 0;
    double nextPressure_ = 0;

    struct Counts {
        std::uint64_t weather = 0, raw = 0, unsent = 0, lost = 0, versions = 0, positions = 0,
                      badPositions = 0;
        std::uint64_t times = 0, exits = 0, unknown = 0, events = 0;
        std::map<Kind, std::uint64_t> records;
        double latest = 0;  // seconds that a record went out late
    } counts_;
    std::optional<Position> lastPosition_;
    std::string lastTime_, firstUnknown_;
    std::vector<std::pair<double, std::string>> events_;
};

}  // namespace realtraffic
