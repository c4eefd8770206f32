// When an aircraft may teach, and what the end of a story without a stand teaches.
#include <algorithm>
#include <vector>

#include "core/parameters.h"
#include "parking/learning.h"
#include "parking/park_airport.h"
#include "parking/stands.h"

namespace skl {

bool learningAllowed = true;

namespace {

constexpr double airportNm = 5.0;
constexpr double highestAgl = 2500.0;  // feet
constexpr int32_t halfHoursOfDay = 48;
constexpr int32_t restHalfHours = 3;  // between two soft facts of one aircraft

struct LearnedSlot {
    uint32_t hexid = 0;
    int32_t halfHour = 0;
};
/// When each aircraft of this flight was last taken up.
std::vector<LearnedSlot> learnedSlots;

std::vector<LearnedSlot>::iterator findSlot(uint32_t hexid) {
    return std::find_if(learnedSlots.begin(), learnedSlots.end(),
                        [hexid](const LearnedSlot& slot) { return slot.hexid == hexid; });
}

void noteSlot(uint32_t hexid, WeekSlot now) {
    const auto known = findSlot(hexid);
    if (known == learnedSlots.end())
        learnedSlots.push_back({hexid, now.halfHour});
    else
        known->halfHour = now.halfHour;
}

void forgetSlot(uint32_t hexid) {
    if (const auto known = findSlot(hexid); known != learnedSlots.end()) learnedSlots.erase(known);
}

int32_t forward(int32_t from, int32_t to) {
    return (to - from + halfHoursOfDay) % halfHoursOfDay;
}

bool nearInTime(const StandOption& option, WeekSlot now) {
    for (const int32_t offset : {-1, 0, 1}) {
        const int32_t halfHour = (now.halfHour + offset + halfHoursOfDay) % halfHoursOfDay;
        if (option.hours >> halfHour & 1) return true;
    }
    return false;
}

/// The airframe is known, for certain, to stand somewhere about this time.
bool reallyStands(const std::string& regcode, WeekSlot now) {
    const auto tells = [&](const StandOption& option) {
        return option.real && option.optionId != 0 && option.day == now.day && option.reg == regcode &&
               nearInTime(option, now);
    };
    return std::any_of(stands.begin(), stands.end(), [&](const Stand& stand) {
        return std::any_of(stand.options.begin(), stand.options.end(), tells);
    });
}

bool endsHere(const LiveAc& record, bool onGround) {
    if (!LEARN_SOFT.value || !learningAllowed || !gf_airportInSight()) return false;
    if (gf_distanceNm(record.simPos(), parkAirport.pos()) > airportNm) return false;
    return (onGround || record.agl < highestAgl) && record.standId == 0;
}

}  // namespace

void lf_learnStay(const LiveAc& record, WeekSlot slot, bool leaving) {
    if (lt_addStandOption(record.standId, record, false, slot, leaving, true)) noteSlot(record.hexid, slot);
}

void lf_learnSoft(const LiveAc& record, bool onGround) {
    if (!endsHere(record, onGround)) return;
    const WeekSlot now = gf_weekSlotNow();
    if (lf_closeSoftStay(record, now, onGround) || !lf_rateOk(now, record.hexid)) return;
    if (reallyStands(record.regcode, now)) return;
    const uint32_t standId = lf_softStand(now, record, true);
    if (standId == 0) return;
    if (!lt_addStandOption(standId, record, false, now, !onGround, false)) forgetSlot(record.hexid);
}

bool lf_closeSoftStay(const LiveAc& record, WeekSlot now, bool onGround) {
    const auto found = std::find_if(stands.begin(), stands.end(), [&](const Stand& stand) {
        const auto stay = stand.softStays.find(record.hexid);
        return stay != stand.softStays.end() && WeekSlot{stay->second.day, stay->second.halfHour} != now;
    });
    if (found == stands.end() || !lt_addStandOption(found->sid, record, true, now, !onGround, false))
        return false;
    noteSlot(record.hexid, now);
    return true;
}

bool lf_rateOk(WeekSlot now, uint32_t hexid) {
    const auto known = findSlot(hexid);
    if (known != learnedSlots.end()) return forward(known->halfHour, now.halfHour) >= restHalfHours;
    learnedSlots.push_back({hexid, now.halfHour});
    return true;
}

void gf_resetLearning() {
    learnedSlots.clear();
    learningAllowed = true;
}

}  // namespace skl
