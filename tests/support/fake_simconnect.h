// A simulator for tests: notes each request as a line, hands out messages that the test has put together byte
// by byte, fails what it is told to fail. While one lives, every session is made by it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "simlink/simconnect.h"
#include "simlink/user_aircraft.h"

namespace skl::test {

/// A message of the simulator, field by field behind its header.
class SimMessage {
  public:
    explicit SimMessage(uint32_t id);
    SimMessage& u32(uint32_t value) { return put(&value, sizeof value); }
    SimMessage& f32(float value) { return put(&value, sizeof value); }
    SimMessage& i64(int64_t value) { return put(&value, sizeof value); }
    SimMessage& f64(double value) { return put(&value, sizeof value); }
    SimMessage& text(std::string_view value, size_t width);
    /// Takes bytes off the end.
    SimMessage& cut(size_t count);
    std::vector<std::byte> bytes() const;

  private:
    SimMessage& put(const void* data, size_t size);
    std::vector<std::byte> bytes_;
};

SimMessage openMessage(std::string_view name);
SimMessage quitMessage();
SimMessage eventMessage(uint32_t event, uint32_t data);
SimMessage objectMessage(uint32_t event, uint32_t objectId, uint32_t type = 2);
SimMessage filenameMessage();
SimMessage frameMessage(float rate = 30);
SimMessage exceptionMessage(uint32_t code, uint32_t sendId);
/// The head of a reply about one object; its values follow.
SimMessage replyMessage(uint32_t request, uint32_t definition, uint32_t objectId);
SimMessage userMessage(uint32_t objectId, const UserRecord& user);
SimMessage onGroundMessage(bool onGround);
SimMessage titleMessage(std::string_view title);
SimMessage modelMessage(std::string_view model);
/// A reply about one of the aircraft in range.
SimMessage rangeMessage(uint32_t objectId, double agl, double groundAltitude, int64_t onGround,
                        std::string_view atcId);

class FakeSimulator {
  public:
    FakeSimulator();
    ~FakeSimulator();
    FakeSimulator(const FakeSimulator&) = delete;
    FakeSimulator& operator=(const FakeSimulator&) = delete;

    struct SetData {
        uint32_t definition, object;
        std::vector<double> values;
    };
    struct State {
        std::mutex lock;
        bool listening = true;           ///< whether a session opens
        std::string name = "KittyHawk";  ///< of the OPEN that comes with it; empty: none comes
        std::string trouble;             ///< why none opens
        std::string failing;             ///< requests whose line begins so fail
        bool backlogged = false;
        SimConnect::Dispatch health = SimConnect::Dispatch::alive;
        bool closesWell = true;
        int opened = 0, closed = 0;
        uint32_t lastSendId = 0;
        std::vector<std::string> calls;  ///< but for the data sets
        std::vector<SetData> sets;
        std::deque<std::vector<std::byte>> messages;
    };
    State& state() { return *state_; }

    /// A session without its thread.
    void connect();
    void post(const SimMessage& message);
    /// What the thread of a session does: all messages to lf_dispatch.
    void deliver();
    void deliver(const SimMessage& message) {
        post(message);
        deliver();
    }
    /// The lines since the last call.
    std::vector<std::string> takeCalls();
    std::vector<SetData> takeSets();

  private:
    std::shared_ptr<State> state_;
};

}  // namespace skl::test
