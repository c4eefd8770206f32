// Flight plan files in the user's folder, and what the simulator is told of them.
#include "engine/flight_plan.h"

#include <fmt/format.h>

#include "core/folders.h"
#include "engine/category_constants.h"
#include "engine/engine_state.h"
#include "tests/support/engine_world.h"
#include "tests/support/fake_simconnect.h"

namespace skl {
namespace {

class FlightPlan : public test::EngineTest {
  protected:
    void SetUp() override {
        EngineTest::SetUp();
        simulator.connect();
        folder = gf_programDataPath() / "orig_dest";
    }
    void TearDown() override {
        sim2020 = true;
        EngineTest::TearDown();
    }
    LiveAc& attached(const char* origin, const char* destination, const char* model = "A320") {
        gf_resetEngine();
        LiveAc& record = active(test::anyHexid, "BAW12", 1001);
        record.model = model;
        gf_fillTypeValues(record);
        record.origin = origin;
        record.destination = destination;
        record.hasFlightPlan = true;  // of the object before
        simulator.takeCalls();
        lf_attachFlightPlan(record);
        return record;
    }
    test::FakeSimulator simulator;
    fs::path folder;
};

TEST_F(FlightPlan, AnObjectWithARouteGetsItsFileUntilItGoes) {
    gf_createFlightPlanFolder();
    gf_createFlightPlanFolder();  // what an earlier run left is used
    const fs::path file = folder / "1001.pln";
    const struct {
        const char *model, *rules;
        bool for2020;
    } cases[] = {{"C172", "VFR", true},  {"F16", "VFR", true},  {"EC35", "VFR", false},
                 {"C25A", "IFR", false}, {"A320", "IFR", true}, {"B744", "IFR", false}};
    for (const auto& c : cases) {
        sim2020 = c.for2020;
        EXPECT_TRUE(attached("LHR", "AMS", c.model).hasFlightPlan);
        EXPECT_EQ(test::readFile(file), fmt::format(R"(<?xml version="1.0" encoding="UTF-8"?>
<SimBase.Document Type="AceXML" version="4,3">
<FlightPlan.FlightPlan>
<FPType>{}</FPType>
<DepartureID>LHR</DepartureID>
<DestinationID>AMS</DestinationID>
</FlightPlan.FlightPlan>
</SimBase.Document>)",
                                                    c.rules));
        const std::vector<std::string> told{fmt::format("plan 1001 {} 110", file.string())};
        EXPECT_EQ(simulator.takeCalls(), c.for2020 ? told : std::vector<std::string>{});
        lf_deleteFlightPlan(1001);
        EXPECT_FALSE(fs::exists(file));
    }
    sim2020 = true;
    EXPECT_FALSE(attached("LHR", "").hasFlightPlan);
    EXPECT_FALSE(attached("", "AMS").hasFlightPlan);
    EXPECT_TRUE(simulator.takeCalls().empty());
    EXPECT_TRUE(fs::is_empty(folder));
}

TEST_F(FlightPlan, ARouteAddsNothingToTheFile) {
    gf_createFlightPlanFolder();
    EXPECT_TRUE(attached("A&B", "</DestinationID><Waypoint/>").hasFlightPlan);
    const std::string text = test::readFile(folder / "1001.pln");
    EXPECT_NE(text.find("<DepartureID>A&amp;B</DepartureID>"), std::string::npos) << text;
    EXPECT_NE(text.find("<DestinationID>&lt;/DestinationID&gt;&lt;Waypoint/&gt;</DestinationID>"),
              std::string::npos)
        << text;
}

TEST_F(FlightPlan, AFailureIsToldAndLeavesNothing) {
    EXPECT_FALSE(attached("LHR", "AMS").hasFlightPlan);  // no folder
    EXPECT_TRUE(simulator.takeCalls().empty());
    gf_createFlightPlanFolder();
    simulator.state().failing = "plan";
    EXPECT_FALSE(attached("LHR", "AMS").hasFlightPlan);
    EXPECT_TRUE(fs::is_empty(folder));
    EXPECT_EQ(test::logCount("BAW A320 creating a flight plan failed"), 2);
}

TEST_F(FlightPlan, TheFolderGoesWithAllThatIsInIt) {
    gf_removeFlightPlanFolder();  // none there
    gf_createFlightPlanFolder();
    gf_removeFlightPlanFolder();
    EXPECT_FALSE(fs::exists(folder));
    test::writeFile(folder / "1001.pln", "x");
    test::writeFile(folder / "deep" / "er" / "2.pln", "x");
    gf_removeFlightPlanFolder();
    EXPECT_FALSE(fs::exists(folder));
    // A folder that cannot be looked at is no folder that is not there.
    fs::remove_all(gf_programDataPath());
    fs::create_symlink("Skylantern", gf_programDataPath());
    EXPECT_THROW(gf_createFlightPlanFolder(), fs::filesystem_error);
    EXPECT_THROW(gf_removeFlightPlanFolder(), fs::filesystem_error);
}

}  // namespace
}  // namespace skl
