// The user, three airports and a list of them, for the tests of the airport in sight.
#pragma once

#include <gtest/gtest.h>

#include "core/parameters.h"
#include "engine/engine_state.h"
#include "panel/panel_state.h"
#include "parking/airport_in_sight.h"
#include "parking/airport_list.h"
#include "parking/park_airport.h"
#include "parking/stands.h"
#include "parking/static_ac.h"
#include "simlink/user_aircraft.h"
#include "tests/support/airport_data.h"
#include "tests/support/engine_world.h"

namespace skl::test {

inline const std::string listFile = "airports/my_park_airports.txt";
inline const Airport schiphol{.code = "EHAM", .iata = "AMS", .lat = 52.3, .lon = 4.76, .alt = -11};
inline const Airport rotterdam{.code = "EHRD", .lat = 51.957, .lon = 4.437, .alt = -14};
inline const Airport kennedy{.code = "KJFK", .iata = "JFK", .lat = 40.64, .lon = -73.78, .alt = 13};

class ParkingTest : public EngineTest {
  protected:
    void SetUp() override {
        EngineTest::SetUp();
        useAirports({schiphol, kennedy, rotterdam});
        AIRP_RANGE.value = 20;
        AIRP_HEIGHT.value = 18000;
        userOnGroundKnown = true;
    }
    static void list(const std::string& lines) {
        writeFile(listFile, lines);
        lf_readMyParkAirports();
    }
    /// The codes of the list in its order, each with its stand.
    static std::string listed() {
        std::string all;
        for (const ParkAirportNode& node : parkAirports) all += node.code + ':' + node.stand + ' ';
        return all;
    }
    static void place(LaLo at, double altitude, bool onGround, double groundSpeed = 0) {
        engineUser = {.lat = at.lat, .lon = at.lon, .altitude = altitude, .groundSpeed = groundSpeed};
        simUser = engineUser;
        userOnGround = onGround;
    }
    static void addStand(const std::string& id, LaLo at) {
        stands.push_back(
            {.id = id, .lat = at.lat, .lon = at.lon, .sid = static_cast<uint32_t>(stands.size() + 1)});
    }
};

}  // namespace skl::test
