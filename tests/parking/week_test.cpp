// A week at one airport: a renewal every 20 minutes while live aircraft come and go. Whenever nothing is
// worked on, what stands has to make sense.
#include <array>
#include <map>
#include <random>
#include <set>

#include "airports/stand_neighbours.h"
#include "core/random.h"
#include "engine/conflicts.h"
#include "liveries/catalogue.h"
#include "liveries/reference_db.h"
#include "tests/parking/statics_world.h"

namespace skl::test {

namespace {

constexpr int32_t slotsOfDay = 48;
constexpr int renewalsOfADay = 72, days = 7;

class WeekTest : public StaticsTest {
  protected:
    void SetUp() override {
        StaticsTest::SetUp();
        wingspanHalfNm = {{"A320", 18 / metersPerNm},
                          {"B738", 18 / metersPerNm},
                          {"B744", 32 / metersPerNm},
                          {"C172", 5.5 / metersPerNm}};
        for (const char* airline : {"BAW", "KLM"})
            for (const char* type : {"A320", "B738", "B744", "C172"})
                titlesByAirlineType[0][airline][type] = {LiveryRef(type)};
    }

    int below(int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); }

    /// Stands of all sizes; those of the first row overlap their neighbours.
    void makeAirport() {
        stands.clear();
        const struct {
            int count;
            double spacing, radius;  ///< metres
        } rows[] = {{14, 28, 20}, {16, 90, 25}, {6, 90, 40}, {4, 40, 9}};
        int row = 0;
        for (const auto& it : rows) {
            for (int i = 0; i < it.count; ++i) {
                addStand(fmt::format("{}{}", 'A' + row - 'A', i + 1),
                         {schiphol.lat + 0.004 * row, schiphol.lon + it.spacing * i / 67000});
                stands.back().id = fmt::format("{}{}", static_cast<char>('A' + row), i + 1);
                stands.back().radius = it.radius / metersPerNm;
            }
            ++row;
        }
        lf_numberStands(stands);
        for (Stand& stand : stands) makeHistory(stand);
        lf_standsChanged();
    }

    /// One aircraft after the other, over midnight and from Sunday to Monday, too.
    void makeHistory(Stand& stand) {
        const bool small = stand.id[0] == 'D', large = stand.id[0] == 'C';
        for (int32_t slot = below(10); slot < days * slotsOfDay;) {
            const int32_t length = 1 + below(below(8) == 0 ? 70 : 20);
            StandOption option =
                this->option(fmt::format("R{}", below(10) == 0 ? below(20) : 1000 + below(9000)), 0);
            option.airl = below(2) ? "BAW" : "KLM";
            option.type = small ? "C172" : large && below(2) ? "B744" : below(2) ? "A320" : "B738";
            option.cs = fmt::format("{}{}", option.airl, below(9999));
            if (below(3) == 0) option.cs2 = fmt::format("{}{}", option.airl, below(9999));
            option.real = below(5) != 0;
            std::map<int32_t, uint64_t> hours;
            for (int32_t at = slot; at < slot + length; ++at)
                hours[at / slotsOfDay % days + 1] |= uint64_t{1} << at % slotsOfDay;
            for (const auto& [day, bits] : hours) {
                option.day = day;
                option.hours = bits;
                option.optionId = below(40) == 0 ? 0 : static_cast<int32_t>(stand.options.size() + 1);
                stand.options.push_back(option);
            }
            slot += length + below(6);
        }
    }

    void landOne() {
        Stand& stand = stands[static_cast<size_t>(below(std::ssize(stands)))];
        for (const LiveAc& other : liveAcs)
            if (other.standId == stand.sid) return;
        const uint32_t number = ++lastLive;
        LiveAc& live = active(0x500000 + number, fmt::format("LIV{}", number), 500000 + number, stand.pos());
        live.model = stand.id[0] == 'D' ? "C172" : "A320";
        live.halfSpanNm = gf_halfSpanNm(live.model);
        if (!stand.options.empty() && below(2))
            live.regcode = stand.options[static_cast<size_t>(below(std::ssize(stand.options)))].reg;
        for (const LiveAc& other : liveAcs)
            if (&other != &live && other.regcode == live.regcode) live.regcode.clear();
        live.onGround = true;
        live.stage = FlightStage::parked;
        live.standId = stand.sid;
        live.standPos = stand.pos();
        lf_staticForNewLive(live, true);
        lf_staticsMakeWay(live, stand);
    }

    void leaveOne() {
        for (LiveAc& live : liveAcs)
            if (live.simState == State::active && below(3) == 0) {
                removeAircraftFromSim(live);
                return;
            }
    }

    /// What every moment without work has to hold; empty if it does.
    std::string fault(bool limited) const {
        std::map<uint32_t, std::pair<std::string, double>> on;  // who stands on a stand, half span
        std::set<std::string> airframes;
        int64_t count = 0;
        const auto take = [&](const AcBase& record) -> std::string {
            ++count;
            if (!on.emplace(record.standId, std::pair(record.callsign, gf_halfSpanNm(record.model))).second)
                return "two on stand " + lf_standName(record.standId);
            if (!record.regcode.empty() && !airframes.insert(record.regcode).second)
                return "twice " + record.regcode;
            return {};
        };
        for (const StaticAc& record : staticAcs)
            if (std::string text = take(record); !text.empty()) return text;
        for (const LiveAc& record : liveAcs)
            if (record.simState == State::active)
                if (std::string text = take(record); !text.empty()) return text;
        for (const Stand& stand : stands) {
            const auto here = on.find(stand.sid);
            if (here == on.end()) continue;
            for (const uint32_t beside : stand.adjacent) {
                const auto there = on.find(beside);
                if (there != on.end() && !isLive(here->second.first + there->second.first) &&
                    here->second.second + there->second.second >
                        gf_distanceNm(stand.pos(), lf_findStand(beside)->pos()))
                    return "overlap of " + stand.id + " and " + lf_standName(beside);
            }
        }
        const int64_t wanted = lf_wantedStatics();
        if (limited && wanted >= 1 && count > wanted) return fmt::format("{} of {}", count, wanted);
        return {};
    }
    /// Two live ones may stand as close as they really do.
    static bool isLive(const std::string& callsigns) {
        return callsigns.rfind("LIV") > callsigns.find("LIV");
    }

    std::map<std::string, uint32_t> objects() const {
        std::map<std::string, uint32_t> all;
        for (const StaticAc& record : staticAcs)
            if (record.simState == State::active)
                all[fmt::format("{} {}", record.standId, record.callsign)] = record.objectId;
        return all;
    }

    /// Runs the week; gives what stood at each renewal.
    std::string liveThrough(unsigned seed) {
        random.seed(seed);
        gf_seedRandom(seed);
        gf_resetEngine();
        gf_resetStatics();
        gf_resetStandFit();
        sim = {};
        lastLive = 0;
        makeAirport();
        std::string history;
        size_t most = 0;
        for (int renewal = 0; renewal < days * renewalsOfADay; ++renewal) {
            const int32_t slot = renewal * 20 / 30;
            gf_storeNow({slot / slotsOfDay + 1, slot % slotsOfDay});
            const int day = renewal / renewalsOfADay;
            MAX_FIT.value = day % 2 ? 47 : 0;
            parking_percentage.value = std::array{60, 100, 10}[static_cast<size_t>(day) % 3];
            if (below(3) == 0) landOne();
            if (below(4) == 0) leaveOne();
            settleQuickly();
            const std::string landed = fault(false);
            const auto before = objects();
            lf_renewParking();
            settleQuickly();
            if (const std::string text = landed.empty() ? fault(true) : landed; !text.empty())
                return fmt::format("seed {}, day {}, half hour {}: {}", seed, slot / slotsOfDay + 1,
                                   slot % slotsOfDay, text);
            for (const auto& [who, object] : objects())
                if (const auto same = before.find(who); same != before.end() && same->second != object)
                    return fmt::format("seed {}, renewal {}: {} came anew", seed, renewal, who);
            history += shown();
            most = std::max(most, staticAcs.size());
        }
        if (most < 10) return fmt::format("seed {}: only {} stood at most", seed, most);
        return history;
    }

    /// Until every queue is empty.
    void settleQuickly() {
        for (int i = 0; i < 400; ++i) {
            sim.run(50);
            const bool onTheWay = std::any_of(staticAcs.begin(), staticAcs.end(), [](const StaticAc& record) {
                return record.simState != State::active;
            });
            if (candidates.empty() && !onTheWay && removalQueue.empty()) return;
        }
    }

    std::mt19937 random;
    uint32_t lastLive = 0;
};

TEST_F(WeekTest, WhatStandsMakesSenseUnderTenSeeds) {
    for (unsigned seed = 1; seed <= 10; ++seed) {
        RANDOM.value = true;
        const std::string history = liveThrough(seed);
        EXPECT_FALSE(history.starts_with("seed")) << history;
    }
}

TEST_F(WeekTest, WithoutChanceTwoWeeksAreTheSame) {
    RANDOM.value = false;
    const std::string history = liveThrough(11);
    EXPECT_FALSE(history.starts_with("seed")) << history;
    EXPECT_EQ(liveThrough(11), history);
}

}  // namespace

}  // namespace skl::test
