// What the simulator remembers of one connected client.
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "standin/simulator/definition.h"

namespace simulator {

enum Period : std::uint32_t { kNever = 0, kOnce = 1, kVisualFrame = 2, kSimFrame = 3, kSecond = 4 };

constexpr std::uint32_t kOnlyChanged = 1;
constexpr std::uint32_t kTagged = 2;

struct DataRequest {
    std::uint32_t id = 0;
    std::uint32_t definition = 0;
    std::uint32_t object = 0;
    std::uint32_t period = kNever;
    std::uint32_t flags = 0;
    std::uint32_t skip = 0;      // periods still to let pass
    std::uint32_t interval = 0;  // periods between two replies
    std::uint32_t limit = 0;     // replies, 0 for no limit
    std::uint32_t sent = 0;
    double nextSecond = 0;
    std::vector<std::string> last;  // values of the last reply
};

struct NotificationGroup {
    std::uint32_t priority = 2000000000;
    std::map<std::uint32_t, bool> events;  // client event id, maskable
};

struct Client {
    bool opened = false;
    std::uint32_t version = 0;
    std::uint32_t sendId = 0;  // of the packet at work
    std::map<std::uint32_t, Definition> definitions;
    std::vector<DataRequest> requests;
    std::map<std::uint32_t, std::string> events;  // client event id, upper-case name, empty when private
    std::map<std::uint32_t, std::string> subscriptions;  // client event id, lower-case name
    std::map<std::uint32_t, NotificationGroup> groups;
    std::deque<std::pair<double, std::string>> late;  // replies with the time when they go
};

}  // namespace simulator
