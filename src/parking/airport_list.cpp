// The list in memory: reading, order, destination.
#include "parking/airport_list.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <optional>
#include <set>
#include <system_error>

#include "airports/airport_index.h"
#include "core/folders.h"
#include "core/log.h"
#include "core/messages.h"
#include "core/parameters.h"
#include "core/text.h"

namespace skl {

std::list<ParkAirportNode> parkAirports;

namespace {

constexpr size_t manyAirports = 3000;
constexpr double samePlace = 1e-8;  // degrees

/// Where the user was when the list was sorted last; nothing while its order is another one.
std::optional<LaLo> lastListPos;

std::string listName() {
    return gf_pathText(paths::myParkAirports.filename());
}

std::list<ParkAirportNode>::iterator findNode(std::string_view code) {
    return std::find_if(parkAirports.begin(), parkAirports.end(),
                        [code](const ParkAirportNode& node) { return node.code == code; });
}

ParkAirportNode makeNode(const std::string& code, const std::string& stand, LaLo position) {
    return {.code = code, .stand = stand, .lat = position.lat, .lon = position.lon};
}

/// Takes one line of the file; false when its airport is unknown.
bool takeLine(const std::string& line, StringSet& met) {
    const std::vector<std::string> fields = gf_splitComma(line);
    if (fields.empty()) return true;
    if (fields.size() > 2) {
        gf_logError(fmt::format("{}:{} wrong syntax, skipped", listName(), line));
        return true;
    }
    const std::string code = gf_trim(fields[0]);
    if (!met.insert(code).second) {
        gf_logError(fmt::format("{}:{} double, skipped", listName(), line));
        return true;
    }
    const Airport* airport = gf_findAirport(code);
    if (!airport) {
        gf_showMessage(fmt::format("airport {} is unknown", code), true);
        return false;
    }
    const std::string stand = fields.size() == 2 ? gf_trim(fields[1]) : std::string();
    parkAirports.push_back(makeNode(code, stand, airport->pos()));
    return true;
}

/// False when a line names an unknown airport.
bool readList() {
    const auto lines = lf_parkAirportLines();
    if (!lines) {
        gf_log(fmt::format("{} not found", gf_pathText(paths::myParkAirports)));
        return true;
    }
    bool known = true;
    StringSet met;
    for (const std::string& line : *lines) known = takeLine(line, met) && known;
    if (parkAirports.empty()) return known;
    gf_log(fmt::format("{} park airport{} read from '{}'", parkAirports.size(),
                       gf_plural(parkAirports.size()), gf_pathText(paths::myParkAirports)));
    if (parkAirports.size() > manyAirports)
        gf_showMessage(fmt::format("Warning: There are a lot of airports ({}), that will cost SKLT much cpu "
                                   "time and may cause stutters",
                                   parkAirports.size()),
                       true);
    return known;
}

}  // namespace

bool lf_readMyParkAirports() {
    bool known = true;
    try {
        gf_resetParkAirports();
        known = readList();
        lf_addThirdPartyAirports();
    } catch (const std::exception& error) {
        gf_log(fmt::format("{}: {}", "lf_readMyParkAirports", error.what()));
    }
    return known;
}

void lf_addThirdPartyAirports() {
    // Sorted, since a folder gives its files in any order.
    std::set<std::string> codes;
    std::error_code error;
    for (fs::directory_iterator entry(paths::myThirdparty, error), end; !error && entry != end;
         entry.increment(error)) {
        std::error_code gone;
        if (entry->is_regular_file(gone)) codes.insert(gf_pathText(entry->path().stem()));
    }
    StringSet listed;
    for (const ParkAirportNode& node : parkAirports) listed.insert(node.code);
    size_t added = 0;
    for (const std::string& code : codes) {
        const Airport* airport = gf_findAirport(code);
        if (!airport || listed.contains(code)) continue;
        parkAirports.push_back(makeNode(code, {}, airport->pos()));
        ++added;
    }
    if (added > 0)
        gf_log(fmt::format("{} park airport{} added from my_thirdparty folder(-s)", added, gf_plural(added)));
}

void lf_setDestination(const std::string& code, LaLo position) {
    const auto node = findNode(code);
    if (node != parkAirports.end()) {
        parkAirports.splice(parkAirports.begin(), parkAirports, node);
        return;
    }
    parkAirports.push_front(makeNode(code, {}, position));
    lf_storeParkAirport(code);
}

ParkAirportNode* lf_parkAirportNode(const std::string& code) {
    const auto node = findNode(code);
    return node == parkAirports.end() ? nullptr : &*node;
}

void lf_promoteParkAirport(const std::string& code, const std::string& stand, LaLo position) {
    auto node = findNode(code);
    if (node == parkAirports.end()) node = parkAirports.insert(node, makeNode(code, {}, position));
    if (!stand.empty()) node->stand = stand;
    auto place = parkAirports.begin();
    if (place == node) return;
    if (DESTINATION == place->code) ++place;
    if (place != node) parkAirports.splice(place, parkAirports, node);
}

void lf_sortParkAirports(LaLo user) {
    if (parkAirports.empty()) return;
    if (!DESTINATION.empty()) {
        // The destination stays in front; without it the list is to be sorted, moved or not.
        lastListPos.reset();
        return;
    }
    if (lastListPos && std::abs(user.lat - lastListPos->lat) < samePlace &&
        std::abs(user.lon - lastListPos->lon) < samePlace) {
        parkAirports.front().dist = gf_distanceNm(user, parkAirports.front().pos());
        return;
    }
    lastListPos = user;
    for (ParkAirportNode& node : parkAirports) node.dist = gf_distanceNm(user, node.pos());
    parkAirports.sort([](const ParkAirportNode& a, const ParkAirportNode& b) { return a.dist < b.dist; });
}

void gf_resetParkAirports() {
    parkAirports.clear();
    lastListPos.reset();
}

}  // namespace skl
