// What the panel asks of the worker, served at the next heartbeat.
#include "panel/requests.h"

#include "core/parameters.h"
#include "engine/engine_state.h"
#include "panel/traffic_range.h"
#include "parking/airport_list.h"
#include "parking/static_ac.h"
#include "simlink/sim_queues.h"
#include "simlink/user_aircraft.h"
#include "tests/support/airport_data.h"
#include "tests/support/engine_world.h"

namespace skl::test {

namespace {

class RequestsTest : public EngineTest {
  protected:
    void SetUp() override {
        EngineTest::SetUp();
        gf_resetRequests();
        gf_resetParkAirports();
    }
};

TEST_F(RequestsTest, LightsOfAllThatIsParked) {
    active(1, "BAW1", 501).stage = FlightStage::parked;
    active(2, "BAW2", 502);
    staticAcs.resize(2);
    staticAcs[0].objectId = 503;
    staticAcs[0].simState = SimObjectState::active;
    staticAcs[1].simState = SimObjectState::adding2sim;
    using Pairs = std::vector<std::pair<uint32_t, uint32_t>>;
    for (const uint32_t on : {0u, 1u}) {
        NAV_LIGHTS_WHILE_PARKED.value = on == 1;
        eventQueue.clear();
        g_navLightsChanged = true;
        lf_servePanelRequests();
        lf_servePanelRequests();
        Pairs switched;
        for (const SimEvent& event : eventQueue) switched.emplace_back(event.objectId, event.data);
        EXPECT_EQ(switched, (Pairs{{503, on}, {501, on}}));
    }
    staticAcs.clear();
}

TEST_F(RequestsTest, DestinationLimitAndRange) {
    useAirports({{.code = "EHAM", .lat = 52, .lon = 4}, {.code = "EGLL", .lat = 51, .lon = 0}});
    parkAirports.push_back({.code = "EGLL", .lat = 51, .lon = 0});
    DESTINATION.set("EHAM");
    g_destinationChanged = true;
    for (uint32_t i = 1; i <= 3; ++i) active(i, "BAW" + std::to_string(i), 500 + i);
    MAX_LIVE_SEL.value = 1;
    g_liveLimitChanged = true;
    AUTO_RANGE.value = true;
    userOnGround = true;
    g_autoRangeRequested = true;
    lf_servePanelRequests();
    EXPECT_EQ(parkAirports.front().code, "EHAM");
    EXPECT_EQ(parkAirports.size(), 2u);
    EXPECT_EQ(std::count_if(liveAcs.begin(), liveAcs.end(),
                            [](const LiveAc& record) { return record.simState == SimObjectState::active; }),
              1);
    EXPECT_EQ(rangeNm, 10);
    userOnGround = false;
    gf_clearAirports();
}

}  // namespace
}  // namespace skl::test
