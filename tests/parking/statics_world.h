// An airport with stands in a row, aircraft that stand there and a plan for more.
#pragma once

#include "engine/engine.h"
#include "parking/statics.h"
#include "tests/parking/parking_world.h"

namespace skl::test {

using State = SimObjectState;
using Stage = FlightStage;

inline constexpr uint64_t allDay = (uint64_t{1} << 48) - 1;

class StaticsTest : public ParkingTest {
  protected:
    void SetUp() override {
        ParkingTest::SetUp();
        gf_resetStands();
        gf_resetAirportInSight();
        parkAirport = schiphol;
        g_apfLoaded = true;
        RANDOM.value = false;
        LOG.value = true;
        MAX_FIT.value = 0;
        MAX_PARK_SEL.value = 500;
        parking_percentage.value = 100;
        gf_storeNow({1, 20});
    }
    void TearDown() override {
        gf_resetStands();
        gf_resetParameters();
        ParkingTest::TearDown();
    }
    /// So many stands in a row, 100 m apart.
    static void row(int count) {
        for (int i = 0; i < count; ++i)
            addStand(fmt::format("S{}", i + 1), {schiphol.lat + i * 0.0009, schiphol.lon});
        for (Stand& stand : stands) stand.heading = 1;
    }
    static void neighbours() {
        stands[0].adjacent = {2};
        stands[1].adjacent = {1};
    }
    static StandOption option(const std::string& reg, uint64_t hours, int32_t day = 1) {
        return {"BAW", "A320", reg, reg + "1", "", hours, 1, day, false, true};
    }
    static Candidate planned(uint32_t sid, const std::string& cs, int32_t offset = 0) {
        return {.sid = sid, .offset = offset, .airl = "BAW", .type = "A320", .cs = cs, .reg = "G-" + cs};
    }
    static StaticAc standing(uint32_t sid, const std::string& cs, State state = State::active) {
        StaticAc record{{.airline = "BAW", .model = "A320", .callsign = cs + "*", .coupledIn = cs}};
        record.regcode = "G-" + cs;
        record.hexid = record.standId = sid;
        record.objectId = 100 + sid;
        record.standPos = stands[sid - 1].pos();
        record.parkedAt = gf_weekSlotNow();
        record.simState = state;
        return record;
    }
    static void parkLive(uint32_t sid, Stage stage = Stage::parked) {
        LiveAc& live = active(0x500000 + sid, fmt::format("KLM{}", sid), 5000 + sid, schiphol.pos());
        live.stage = stage;
        live.standId = sid;
    }
    /// At stand 1, with a plan that has gone back 5 half hours.
    static void seenSunday(int32_t halfHour) {
        stands[0].options = {option("G-A1", uint64_t{1} << halfHour, 7)};
        lastFitSoft = 5;
    }
    /// All that is planned stands or is dropped.
    void settle() {
        for (int i = 0; i < 600 && (i < 6 || !candidates.empty()); ++i) sim.run(50);
        sim.run(400);
    }
    static std::string shown() {
        std::string all;
        for (const StaticAc& record : staticAcs)
            all += fmt::format("{}:{}:{} ", record.callsign, record.objectId, gf_stateWord(record.simState));
        return all;
    }
    QueueSimulator sim;
};

}  // namespace skl::test
