// The simulator: clients, world, frames, script and report. One thread calls step() again and again; time
// comes from the clock that it was given, so that a test can have its own.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "standin/common/program.h"
#include "standin/common/script.h"
#include "standin/simulator/client.h"
#include "standin/simulator/feed_path.h"
#include "standin/simulator/motion.h"
#include "standin/simulator/options.h"
#include "standin/simulator/overlaps.h"
#include "standin/simulator/server.h"
#include "standin/simulator/trace.h"
#include "standin/simulator/world.h"

namespace simulator {

class Simulator : public standin::StandIn {
  public:
    // `clock` gives seconds since any moment; `utcAtStart` is seconds since 1970 at the first look at it.
    Simulator(Options options, std::function<double()> clock, double utcAtStart);

    std::string start() override;
    int port() const override { return server_.port(); }
    void step(double longestWait) override;
    bool ended() const override { return ended_; }
    void quit() override;
    bool everyoneGone() const override { return server_.empty(); }
    nlohmann::json report() const override;

  private:
    // simulator.cpp
    double untilNext() const;
    void runDue();
    void frame();
    void setRunning(bool running);
    void runScript(const standin::ScriptCommand& command);
    double flightTime() const { return flightStarted_ ? now_ - flightStart_ : 0; }
    void each(const std::function<void(int, Client&)>& action);
    void disconnected(int connection);

    // packets.cpp
    void handle(int connection, std::string_view packet);
    Exception serve(int connection, Client& client, std::uint32_t type, std::string_view packet);
    Exception open(int connection, Client& client, std::uint32_t version);
    void send(int connection, const std::string& bytes) { server_.send(connection, bytes); }
    void reply(int connection, Client& client, std::string bytes);
    void except(int connection, Client& client, Exception exception);

    // event_packets.cpp
    Exception mapEvent(Client& client, Reader& reader);
    Exception addToGroup(Client& client, Reader& reader);
    Exception setGroupPriority(Client& client, Reader& reader);
    Exception transmit(Client& client, Reader& reader, bool ex1);
    void notifyGroups(const Client* sender, std::uint32_t event, const std::string& name, std::uint32_t data,
                      bool ex1);
    Exception subscribe(int connection, Client& client, Reader& reader);
    // To the subscribers of a system event (lower-case name).
    void systemEvent(std::string_view name, std::uint32_t data);
    void objectEvent(std::string_view name, const SimObject& object);

    // data_packets.cpp
    Exception addToDefinition(Client& client, Reader& reader);
    Exception requestData(int connection, Client& client, Reader& reader);
    Exception requestByType(int connection, Client& client, Reader& reader);
    Exception setData(Client& client, Reader& reader);
    Exception setValues(const Definition& definition, SimObject& object, std::uint32_t flags,
                        std::uint32_t count, std::uint32_t unitSize, std::string_view bytes);
    void serveRequests(int connection, Client& client, bool simFrame);
    bool answer(int connection, Client& client, DataRequest& request, const Definition& definition,
                const SimObject& object);

    // object_packets.cpp
    Exception create(int connection, Client& client, Reader& reader, bool ex1);
    Exception release(Reader& reader);
    Exception remove(int connection, Reader& reader);
    Exception setFlightPlan(Reader& reader);
    void removeObject(std::uint32_t id);
    void foreignObject();
    void posed(const SimObject& object);

    Options options_;
    std::function<double()> clock_;
    double startClock_ = 0;
    double utcAtStart_ = 0;
    double now_ = 0;  // seconds since the start
    World world_;
    Server server_;
    Server::Handlers handlers_;
    std::map<int, Client> clients_;
    standin::Script script_;
    Trace trace_;
    FeedPaths feed_;
    Motion motion_;
    Overlaps overlaps_;

    double nextFrame_ = 0;
    double nextSecond_ = 0;
    double flightDue_ = -1;  // when the flight starts; below 0 while nobody asked
    double flightStart_ = 0;
    bool flightStarted_ = false;
    bool running_ = false;
    bool ended_ = false;
    double readAgain_ = 0;    // clients are not read before
    double lateReplies_ = 0;  // seconds
    std::string applicationName_;

    struct Counts {
        std::uint64_t clients = 0, packets = 0, unknownPackets = 0, created = 0, removed = 0, refused = 0,
                      poses = 0;
        std::uint64_t posesNotFrozen = 0, orphaned = 0, events = 0, plans = 0, frames = 0, packetsInFrame = 0,
                      mostInFrame = 0;
        std::map<std::uint32_t, std::uint64_t> exceptions;
    } counts_;
};

}  // namespace simulator
