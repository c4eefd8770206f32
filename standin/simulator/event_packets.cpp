// Client events, notification groups and system events.
#include <algorithm>
#include <array>

#include "standin/common/text.h"
#include "standin/simulator/sim_events.h"
#include "standin/simulator/simulator.h"

namespace simulator {

namespace {

constexpr std::uint32_t kHighestMaskable = 10000000;
constexpr double kFlightStartsAfter = 2;  // seconds behind the first subscription to "Sim"

constexpr auto kSystemEvents = std::to_array<std::string_view>({
    "1sec",
    "4sec",
    "6hz",
    "aircraftloaded",
    "crashed",
    "crashreset",
    "flightloaded",
    "flightsaved",
    "flightplanactivated",
    "flightplandeactivated",
    "frame",
    "objectadded",
    "objectremoved",
    "pause",
    "pause_ex1",
    "paused",
    "pauseframe",
    "positionchanged",
    "sim",
    "simstart",
    "simstop",
    "sound",
    "unpaused",
    "view",
    "weathermodechanged",
});

}  // namespace

Exception Simulator::mapEvent(Client& client, Reader& reader) {
    const auto id = reader.u32();
    const auto name = standin::upperCase(reader.text(256));
    if (!name.empty() && !isSimEvent(name)) {
        return kNameUnrecognized;
    }
    return client.subscriptions.contains(id) || !client.events.emplace(id, name).second ? kEventIdDuplicate
                                                                                        : kNone;
}

Exception Simulator::addToGroup(Client& client, Reader& reader) {
    const auto group = reader.u32();
    const auto event = reader.u32();
    if (!client.events.contains(event)) {
        return kUnrecognizedId;
    }
    client.groups[group].events[event] = reader.u32() != 0;
    return kNone;
}

Exception Simulator::setGroupPriority(Client& client, Reader& reader) {
    const auto group = client.groups.find(reader.u32());
    if (group == client.groups.end()) {
        return kUnrecognizedId;
    }
    group->second.priority = reader.u32();
    return kNone;
}

Exception Simulator::transmit(Client& client, Reader& reader, bool ex1) {
    const auto id = reader.u32();
    const auto event = reader.u32();
    if (ex1) {
        reader.skip(8);
    }
    const auto data = reader.u32();
    SimObject* object = world_.find(id);
    const auto mapped = client.events.find(event);
    if (object == nullptr || mapped == client.events.end()) {
        return kUnrecognizedId;
    }
    ++counts_.events;
    const auto name = mapped->second;
    applySimEvent(name, data, *object);
    trace_.event(flightTime(), world_.utc, *object, name, data);
    if (flightStarted_ && name.starts_with("PAUSE_")) {
        setRunning(name == "PAUSE_OFF" || (name == "PAUSE_SET" && data == 0) ||
                   (name == "PAUSE_TOGGLE" && !running_));
    }
    // Groups hear of what concerns the user's aircraft.
    if (object == &world_.user) {
        notifyGroups(&client, event, name, data, ex1);
    }
    return kNone;
}

void Simulator::notifyGroups(const Client* sender, std::uint32_t event, const std::string& name,
                             std::uint32_t data, bool ex1) {
    struct Listener {
        std::uint32_t priority, group, event;
        bool masks;
        int connection;
        std::uint32_t version;
    };
    std::vector<Listener> listeners;
    each([&](int connection, Client& client) {
        for (const auto& [groupId, group] : client.groups) {
            for (const auto& [listened, maskable] : group.events) {
                // A private event has no name: its id means something to its own client only.
                if (name.empty() ? &client == sender && listened == event : client.events[listened] == name) {
                    const bool masks = maskable && group.priority >= kHighestMaskable;
                    listeners.push_back(
                        {group.priority, groupId, listened, masks, connection, client.version});
                }
            }
        }
    });
    std::stable_sort(listeners.begin(), listeners.end(),
                     [](const Listener& a, const Listener& b) { return a.priority < b.priority; });
    for (const auto& listener : listeners) {
        auto event1 = message(listener.version, ex1 ? kRecvEventEx1 : kRecvEvent);
        event1.u32(listener.group).u32(listener.event).u32(data);
        if (ex1) {
            event1.u32(0).u32(0).u32(0).u32(0);
        }
        send(listener.connection, event1.finish());
        if (listener.masks) {
            break;
        }
    }
}

Exception Simulator::subscribe(int connection, Client& client, Reader& reader) {
    const auto event = reader.u32();
    const auto name = standin::lowerCase(reader.text(256));
    if (std::find(kSystemEvents.begin(), kSystemEvents.end(), name) == kSystemEvents.end()) {
        return kNameUnrecognized;
    }
    if (client.events.contains(event) || !client.subscriptions.emplace(event, name).second) {
        return kEventIdDuplicate;
    }
    if (name == "sim") {
        send(connection,
             message(client.version, kRecvEvent).u32(kUnused).u32(event).u32(running_ ? 1 : 0).finish());
        if (flightDue_ < 0) {
            flightDue_ = now_ + kFlightStartsAfter;
        }
    }
    return kNone;
}

void Simulator::systemEvent(std::string_view name, std::uint32_t data) {
    each([&](int connection, Client& client) {
        for (const auto& [event, subscribed] : client.subscriptions) {
            if (subscribed == name) {
                send(connection,
                     message(client.version, kRecvEvent).u32(kUnused).u32(event).u32(data).finish());
            }
        }
    });
}

void Simulator::objectEvent(std::string_view name, const SimObject& object) {
    each([&](int connection, Client& client) {
        for (const auto& [event, subscribed] : client.subscriptions) {
            if (subscribed == name) {
                send(connection, message(client.version, kRecvObjectAddRemove)
                                     .u32(kUnused)
                                     .u32(event)
                                     .u32(object.id)
                                     .u32(kAircraftType)
                                     .finish());
            }
        }
    });
}

}  // namespace simulator
