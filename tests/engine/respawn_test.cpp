// Changes of who an aircraft is, and the object that is replaced for them.
#include <functional>

#include "core/parameters.h"
#include "engine/engine.h"
#include "engine/engine_state.h"
#include "engine/spawning.h"
#include "liveries/catalogue.h"
#include "liveries/reference_db.h"
#include "parking/park_airport.h"
#include "tests/support/engine_world.h"

namespace skl {
namespace {

using test::anyHexid;
using test::EngineTest;
using Respawn = EngineTest;
using State = SimObjectState;

TEST_F(Respawn, TheStreamGoesOnFromThePresentPose) {
    engineTick = 500;
    LiveAc& it = active(anyHexid, "BAW12", 1001);
    it.simLat = 51.002;
    it.simAlt = 29000;
    it.simBank = 0.1;
    it.simHeading = 1.25;
    liveryRespawn(it);
    ASSERT_EQ(it.stream().size(), 3u);
    EXPECT_EQ(it.stream()[0].lat, 51.002);
    EXPECT_EQ(it.stream()[0].alt, 29000);
    EXPECT_EQ(it.stream()[0].roll, 0.1);
    EXPECT_EQ(it.stream()[0].time, 501);
    EXPECT_FALSE(it.stream()[1].stopped);
    EXPECT_EQ(it.respawnHeading, 1.25);
    EXPECT_EQ(removalQueue, (std::deque<uint32_t>{1001}));
    it.throttleIdx = it.flapsIdx = 1;
    lf_objectRemoved(1001);
    EXPECT_EQ(it.simState, State::buffer);
    EXPECT_EQ(it.throttleIdx, 5u);
    EXPECT_EQ(it.flapsIdx, 4u);
    EXPECT_EQ(it.objectId, 0u);
    lf_handleBuffer(it);
    EXPECT_EQ(it.simState, State::adding2sim);
    EXPECT_EQ(it.simHeading, 1.25);
    EXPECT_EQ(it.title, "A320 BAW");
}

TEST_F(Respawn, OnTheDateLineItStandsWhereItsPointIs) {
    LiveAc& it = active(anyHexid, "BAW12", 1001, {51, 180});
    it.simLon = -180;
    liveryRespawn(it);
    EXPECT_TRUE(it.stream()[1].stopped);
}

TEST_F(Respawn, AParkedAircraftComesBackAsItStood) {
    LiveAc& it = active(anyHexid, "BAW12", 1001);
    it.stage = FlightStage::parked;
    it.simHeading = pi / 2;
    it.stream() = {test::groundPoint({51, 1}, 0), test::groundPoint({51, 1}, 0),
                   test::groundPoint({51, 1}, 0)};
    liveryRespawn(it);
    ASSERT_EQ(it.stream().size(), 2u);
    for (const LivePos& point : it.stream()) {
        EXPECT_TRUE(point.stopped);
        EXPECT_EQ(point.track, 90);
    }
    lf_objectRemoved(1001);
    lf_handleBuffer(it);
    EXPECT_EQ(it.stage, FlightStage::parked);
    EXPECT_EQ(it.simHeading, pi / 2);
}

TEST_F(Respawn, AnEmptyStreamIsToldAndLeavesTheAircraft) {
    LiveAc& it = active(anyHexid, "BAW12", 1001);
    it.stream().clear();
    liveryRespawn(it);
    EXPECT_TRUE(test::logHas("liveryRespawn: "));
    EXPECT_TRUE(removalQueue.empty());
}

enum class End { stays, respawns, newLivery, refused };

struct Fields {
    std::string callsign = "BAW12", regcode, origin = "LHR", destination = "AMS", airline = "BAW",
                model = "A320";
};

// The database knows G-EUAA as an A320 of BAW, G-DOCA as a B738 of BAW, PH-BXA as a B738 of KLM, G-LEAS as an
// A320 that BAW flies for KLM, G-WETL as a B738 of KLM that BAW flies.
TEST_F(Respawn, IdentityByReport) {
    dbaseRecords["G-EUAA"] = {"BAW", "A320", "", false};
    dbaseRecords["G-DOCA"] = {"BAW", "B738", "", false};
    dbaseRecords["PH-BXA"] = {"KLM", "B738", "", false};
    dbaseRecords["G-LEAS"] = {"KLM", "A320", "BAW", false};
    dbaseRecords["G-WETL"] = {"KLM", "B738", "BAW", false};
    parkAirport.code = "EGLL";
    parkAirport.iata = "LHR";
    using Change = std::function<void(LiveAc&, TrafficUpdate&)>;
    const struct {
        const char* what;
        End end;
        Fields want;
        Change change;
    } cases[] = {
        {"nothing new", End::stays, {}, [](auto&, auto&) {}},
        {"no route in the report", End::stays, {}, [](auto&, auto& u) { u.origin = u.destination = ""; }},
        {"an end of the route is filled", End::respawns, {}, [](auto& r, auto&) { r.destination = ""; }},
        {"one end differs", End::stays, {}, [](auto&, auto& u) { u.destination = "CDG"; }},
        {"another route",
         End::respawns,
         {.origin = "MAN", .destination = "CDG"},
         [](auto&, auto& u) { u.origin = "MAN", u.destination = "CDG"; }},
        {"another route back to where it is",
         End::stays,
         {},
         [](auto&, auto& u) { u.origin = "CDG", u.destination = "LHR"; }},
        {"another route while it departs",
         End::stays,
         {},
         [](auto& r, auto& u) { u.origin = "MAN", u.destination = "CDG", r.departing = true; }},
        {"another route while it predicts",
         End::stays,
         {},
         [](auto& r, auto& u) { u.origin = "MAN", u.destination = "CDG", r.predictLeft = 1; }},
        {"first registration of the same kind",
         End::stays,
         {.regcode = "G-EUAA"},
         [](auto&, auto& u) { u.regcode = "G-EUAA"; }},
        {"first registration of another type",
         End::newLivery,
         {.regcode = "G-DOCA", .model = "B738"},
         [](auto&, auto& u) { u.regcode = "G-DOCA"; }},
        {"first registration after its callsign",
         End::newLivery,
         {.regcode = "PH-BXA", .airline = "KLM", .model = "B738"},
         [](auto& r, auto& u) { r.regcode = "BAW12", u.regcode = "PH-BXA"; }},
        {"first registration, flown for another",
         End::stays,
         {.regcode = "G-LEAS"},
         [](auto&, auto& u) { u.regcode = "G-LEAS"; }},
        {"first registration with a livery of its own",
         End::newLivery,
         {.regcode = "G-OWNL"},
         [](auto&, auto& u) { u.regcode = "G-OWNL"; }},
        {"other registration of another type",
         End::newLivery,
         {.regcode = "G-DOCA", .model = "B738"},
         [](auto& r, auto& u) { r.regcode = "G-EUAA", u.regcode = "G-DOCA"; }},
        {"other registration of an airline that does not fly",
         End::stays,
         {.regcode = "PH-BXA"},
         [](auto& r, auto& u) { r.regcode = "G-EUAA", u.regcode = "PH-BXA"; }},
        {"other registration of the same operator",
         End::stays,
         {.regcode = "G-WETL"},
         [](auto& r, auto& u) { r.regcode = "G-EUAA", u.regcode = "G-WETL"; }},
        {"other callsign", End::respawns, {.callsign = "BAW7"}, [](auto&, auto& u) { u.callsign = "BAW7"; }},
        {"the registration as callsign",
         End::stays,
         {.regcode = "GEUAA"},
         [](auto& r, auto& u) { r.regcode = "GEUAA", u.callsign = "GEUAA"; }},
        {"the ghost of one that is here",
         End::refused,
         {},
         [](auto&, auto& u) { u.callsign = "KLM4_", u.regcode = "G-DOCA"; }},
        {"other registration, respawns off",
         End::stays,
         {.regcode = "G-DOCA"},
         [](auto&, auto& u) { GUID_CHANGES.value = false, u.regcode = "G-DOCA"; }},
    };
    for (const auto& c : cases) {
        gf_resetEngine();
        GUID_CHANGES.value = true;
        regcodeToTitle["G-OWNL"] = "own livery";
        active(20002, "KLM4", 1002);
        LiveAc& it = active(anyHexid, "BAW12", 1001);
        it.origin = "LHR";
        it.destination = "AMS";
        liveryMemory[anyHexid] = it.title;
        TrafficUpdate update = test::firstReport();
        c.change(it, update);
        const Fields want = c.want;
        EXPECT_EQ(lf_refreshIdentity(it, update), c.end == End::stays) << c.what;
        const bool newLivery = c.end == End::newLivery, goes = newLivery || c.end == End::respawns;
        EXPECT_EQ(it.simState, goes ? State::liveryrespawn : State::active) << c.what;
        EXPECT_EQ(it.stage, newLivery ? FlightStage::birth : FlightStage::flying) << c.what;
        EXPECT_EQ(it.title, newLivery ? "" : "A320 BAW") << c.what;
        EXPECT_EQ(liveryMemory.contains(anyHexid), !newLivery) << c.what;
        EXPECT_EQ(it.callsign, want.callsign) << c.what;
        EXPECT_EQ(it.regcode, want.regcode) << c.what;
        EXPECT_EQ(it.origin + it.destination, want.origin + want.destination) << c.what;
        EXPECT_EQ(it.airline + it.model, want.airline + want.model) << c.what;
        EXPECT_EQ(lf_findLiveByCallsign(want.callsign), &it) << c.what;
    }
}

TEST_F(Respawn, InTheBufferAReportOverwrites) {
    LiveAc& it = buffered(anyHexid, "OLD1");
    it.origin = "XXX";
    TrafficUpdate update = test::firstReport();
    update.destination = "";
    EXPECT_TRUE(lf_refreshIdentity(it, update));
    EXPECT_EQ(it.callsign, "BAW12");
    EXPECT_EQ(it.origin, "LHR");
    EXPECT_EQ(lf_findLiveByCallsign("OLD1"), nullptr);
}

TEST_F(Respawn, AnotherFlightOnTheGroundTaxies) {
    LiveAc& it = active(anyHexid, "BAW12", 1001);
    it.onGround = true;
    it.simHeading = 2;
    it.origin = "AMS";
    it.destination = "LHR";
    TrafficUpdate update = test::firstReport();
    update.origin = "LHR";
    update.destination = "CDG";
    lf_refreshIdentity(it, update);
    EXPECT_EQ(it.stage, FlightStage::taxi);
    EXPECT_EQ(it.prevStage, FlightStage::flying);
    EXPECT_EQ(it.targetHeading, 2);
    EXPECT_TRUE(test::logHas("          BAW12             LHR->CDG respawns"));
}

}  // namespace
}  // namespace skl
