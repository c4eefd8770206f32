#include "tests/support/fake_simconnect.h"

#include <fmt/format.h>

#include <cstring>
#include <utility>

#include "core/locks.h"
#include "simlink/dispatch.h"
#include "simlink/session.h"
#include "simlink/sim_ids.h"

namespace skl::test {

namespace {

class Session : public SimConnect {
  public:
    explicit Session(std::shared_ptr<FakeSimulator::State> state) : state_(std::move(state)) {}

    bool open(std::string_view application, const std::function<bool()>& stop) override {
        std::lock_guard guard(state_->lock);
        if (stop() || !state_->listening) return false;
        ++state_->opened;
        state_->calls.push_back(fmt::format("open {}", application));
        if (!state_->name.empty()) state_->messages.push_front(openMessage(state_->name).bytes());
        return true;
    }
    std::string openTrouble() const override { return state_->trouble; }
    bool close() override {
        ++state_->closed;
        return state_->closesWell;
    }
    Dispatch callDispatch(const std::function<void(const SimRecv&)>& handler) override {
        for (;;) {
            std::vector<std::byte> bytes;
            {
                std::lock_guard guard(state_->lock);
                if (state_->messages.empty()) return state_->health;
                bytes = std::move(state_->messages.front());
                state_->messages.pop_front();
            }
            uint32_t id = 0;
            std::memcpy(&id, bytes.data() + 8, sizeof id);
            handler({id, bytes});
        }
    }
    bool backlogged() override { return state_->backlogged; }

    bool subscribeToSystemEvent(uint32_t event, std::string_view name) override {
        return note("subscribe {} {}", event, name);
    }
    bool addToDataDefinition(uint32_t definition, std::string_view variable, std::string_view unit,
                             uint32_t type) override {
        return note("define {} {}|{}|{}", definition, variable, unit, type);
    }
    bool mapClientEventToSimEvent(uint32_t event, std::string_view name) override {
        return note("map {} {}", event, name);
    }
    bool addClientEventToNotificationGroup(uint32_t group, uint32_t event) override {
        return note("group {} {}", group, event);
    }
    bool setNotificationGroupPriority(uint32_t group, uint32_t priority) override {
        return note("priority {} {}", group, priority);
    }
    bool requestDataOnSimObject(uint32_t request, uint32_t definition, uint32_t object,
                                uint32_t period) override {
        return note("request {} {} {} {}", request, definition, object, period);
    }
    bool requestDataOnSimObjectType(uint32_t request, uint32_t definition, uint32_t radius,
                                    uint32_t type) override {
        return note("range {} {} {} {}", request, definition, radius, type);
    }
    bool setDataOnSimObject(uint32_t definition, uint32_t object, std::span<const std::byte> data) override {
        std::lock_guard guard(state_->lock);
        ++state_->lastSendId;
        if (!state_->failing.empty() && std::string_view("set").starts_with(state_->failing)) return false;
        std::vector<double> values(data.size() / sizeof(double));
        std::memcpy(values.data(), data.data(), values.size() * sizeof(double));
        state_->sets.push_back({definition, object, std::move(values)});
        return true;
    }
    bool transmitClientEvent(uint32_t object, uint32_t event, uint32_t data, uint32_t group) override {
        return note("event {} {} {} {}", object, event, data, group);
    }
    bool aiCreateNonAtcAircraft(std::string_view title, std::string_view tail, const SimInitPosition& at,
                                uint32_t request) override {
        return note("create {}|{}|{} {} {} {} {}|{}", title, tail, at.lat, at.lon, at.alt, at.heading,
                    at.onGround, request);
    }
    bool aiReleaseControl(uint32_t object, uint32_t request) override {
        return note("release {} {}", object, request);
    }
    bool aiRemoveObject(uint32_t object, uint32_t request) override {
        return note("remove {} {}", object, request);
    }
    bool aiSetAircraftFlightPlan(uint32_t object, std::string_view path, uint32_t request) override {
        return note("plan {} {} {}", object, path, request);
    }
    bool getLastSentPacketId(uint32_t& id) override {
        std::lock_guard guard(state_->lock);
        id = state_->lastSendId;
        return !(!state_->failing.empty() && std::string_view("packetid").starts_with(state_->failing));
    }

  private:
    template <class... Args>
    bool note(fmt::format_string<Args...> format, Args&&... args) {
        std::string line = fmt::format(format, std::forward<Args>(args)...);
        std::lock_guard guard(state_->lock);
        ++state_->lastSendId;
        const bool fails = !state_->failing.empty() && line.starts_with(state_->failing);
        state_->calls.push_back(std::move(line));
        return !fails;
    }
    std::shared_ptr<FakeSimulator::State> state_;
};

}  // namespace

SimMessage::SimMessage(uint32_t id) {
    u32(0).u32(5).u32(id);
}

SimMessage& SimMessage::put(const void* data, size_t size) {
    const auto* start = static_cast<const std::byte*>(data);
    bytes_.insert(bytes_.end(), start, start + size);
    return *this;
}

SimMessage& SimMessage::text(std::string_view value, size_t width) {
    put(value.data(), value.size());
    bytes_.resize(bytes_.size() + (width - value.size()));
    return *this;
}

SimMessage& SimMessage::cut(size_t count) {
    bytes_.resize(bytes_.size() - count);
    return *this;
}

std::vector<std::byte> SimMessage::bytes() const {
    auto bytes = bytes_;
    const auto size = static_cast<uint32_t>(bytes.size());
    std::memcpy(bytes.data(), &size, sizeof size);
    return bytes;
}

SimMessage openMessage(std::string_view name) {
    return SimMessage(sc::recvOpen)
        .text(name, 256)
        .u32(11)
        .u32(0)
        .u32(282174)
        .u32(999)
        .u32(11)
        .u32(0)
        .u32(62651)
        .u32(3)
        .u32(0)
        .u32(0);
}

SimMessage quitMessage() {
    return SimMessage(sc::recvQuit);
}

SimMessage eventMessage(uint32_t event, uint32_t data) {
    return SimMessage(sc::recvEvent).u32(0xFFFFFFFF).u32(event).u32(data);
}

SimMessage objectMessage(uint32_t event, uint32_t objectId, uint32_t type) {
    return SimMessage(sc::recvObjectAddRemove).u32(0xFFFFFFFF).u32(event).u32(objectId).u32(type);
}

SimMessage filenameMessage() {
    return SimMessage(sc::recvFilename)
        .u32(0xFFFFFFFF)
        .u32(ev::flightLoaded)
        .u32(0)
        .text("flights\\other.FLT", 260)
        .u32(0);
}

SimMessage frameMessage(float rate) {
    return SimMessage(sc::recvFrame).u32(0xFFFFFFFF).u32(ev::frame).u32(0).f32(rate).f32(1);
}

SimMessage exceptionMessage(uint32_t code, uint32_t sendId) {
    return SimMessage(sc::recvException).u32(code).u32(sendId).u32(0xFFFFFFFF);
}

SimMessage replyMessage(uint32_t request, uint32_t definition, uint32_t objectId) {
    return SimMessage(request == req::aircraftInRange ? sc::recvObjectDataByType : sc::recvObjectData)
        .u32(request)
        .u32(objectId)
        .u32(definition)
        .u32(0)
        .u32(1)
        .u32(1)
        .u32(1);
}

SimMessage userMessage(uint32_t objectId, const UserRecord& user) {
    return replyMessage(req::userPosition, def::userData, objectId)
        .f64(user.lat)
        .f64(user.lon)
        .f64(user.pitch)
        .f64(user.bank)
        .f64(user.heading)
        .f64(user.altitude)
        .f64(user.agl)
        .f64(user.groundSpeed)
        .i64(user.zuluSeconds)
        .i64(user.zuluDayOfYear)
        .i64(user.zuluYear)
        .i64(user.lightStates);
}

SimMessage onGroundMessage(bool onGround) {
    return replyMessage(req::userOnGround, def::groundData, 1).i64(onGround ? 1 : 0);
}

SimMessage titleMessage(std::string_view title) {
    return replyMessage(req::userTitle, def::titleData, 1).text(title, title.size() + 4 - title.size() % 4);
}

SimMessage modelMessage(std::string_view model) {
    return replyMessage(req::userModel, def::modelData, 1).text(model, 32);
}

SimMessage rangeMessage(uint32_t objectId, double agl, double groundAltitude, int64_t onGround,
                        std::string_view atcId) {
    return replyMessage(req::aircraftInRange, def::objectData, objectId)
        .f64(agl)
        .f64(groundAltitude)
        .i64(onGround)
        .text(atcId, 32);
}

FakeSimulator::FakeSimulator() : state_(std::make_shared<State>()) {
    gf_setSimConnectMaker([state = state_] { return std::make_unique<Session>(state); });
}

FakeSimulator::~FakeSimulator() {
    gf_setSimConnectMaker({});
}

void FakeSimulator::connect() {
    LockGuard guard(g_simLock);
    simHandle = gf_makeSimConnect();
}

void FakeSimulator::post(const SimMessage& message) {
    std::lock_guard guard(state_->lock);
    state_->messages.push_back(message.bytes());
}

void FakeSimulator::deliver() {
    simHandle->callDispatch(lf_dispatch);
}

std::vector<std::string> FakeSimulator::takeCalls() {
    std::lock_guard guard(state_->lock);
    return std::exchange(state_->calls, {});
}

std::vector<FakeSimulator::SetData> FakeSimulator::takeSets() {
    std::lock_guard guard(state_->lock);
    return std::exchange(state_->sets, {});
}

}  // namespace skl::test
