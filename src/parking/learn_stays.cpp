// A stay becomes options of its stand: the arrival sets the first half hour, the departure fills in the rest.
#include <fmt/format.h>

#include <algorithm>

#include "core/log.h"
#include "parking/learning.h"
#include "parking/stands.h"
#include "parking/week_slots.h"

namespace skl {

namespace {

// From so many half hours on the time on the ground is not one stay, but two.
constexpr int32_t tooLongCargo = 12, tooLongHeavy = 8, tooLong = 6;

/// The name of the airframe, as far as one is known.
const std::string& keyOf(const LiveAc& record) {
    return record.regcode.empty() ? record.callsign : record.regcode;
}

/// A callsign without the mark of a ghost.
std::string flightOf(const std::string& callsign) {
    return callsign.ends_with('_') ? callsign.substr(0, callsign.size() - 1) : callsign;
}

uint64_t bitOf(int32_t halfHour) {
    return uint64_t{1} << halfHour;
}

/// Both ends count.
uint64_t bitsOf(int32_t from, int32_t to) {
    uint64_t bits = 0;
    for (int32_t halfHour = from; halfHour <= to; ++halfHour) bits |= bitOf(halfHour);
    return bits;
}

bool isOf(const StandOption& option, const std::string& key, WeekSlot slot, bool real) {
    return option.optionId != 0 && option.day == slot.day && option.real == real && option.reg == key;
}

/// nullptr when it has been spent meanwhile.
StandOption* findOption(Stand& stand, int32_t optionId) {
    const auto found = std::find_if(stand.options.begin(), stand.options.end(),
                                    [=](const StandOption& option) { return option.optionId == optionId; });
    return found == stand.options.end() ? nullptr : &*found;
}

int32_t tooLongFor(const LiveAc& record) {
    if (record.cargo) return tooLongCargo;
    return record.category == AcCategory::Heavy ? tooLongHeavy : tooLong;
}

/// The half hours of a stay and the flight that it belongs to: it may arrive as one and depart as another.
void extend(StandOption& option, int32_t from, int32_t to, const std::string& flight) {
    option.hours |= bitsOf(from, to);
    if (option.cs.empty())
        option.cs = flight;
    else if (flight != option.cs && option.cs2.empty())
        option.cs2 = flight;
}

/// One thing seen of an aircraft on a stand.
class Sight {
  public:
    Sight(Stand& stand, const LiveAc& record, WeekSlot slot, bool close, bool leaving, bool real)
        : stand_(stand),
          record_(record),
          stays_(real ? stand.realStays : stand.softStays),
          slot_(slot),
          close_(close),
          leaving_(leaving),
          real_(real) {}

    bool record() {
        if (archiveTellsOtherTimes()) return false;
        const auto stay = stays_.find(record_.hexid);
        const StandOption* known = learnedToday();
        // A stay over midnight has no option of today yet: yesterday's goes on.
        if (stay != stays_.end() && stay->second.day != slot_.day && (leaving_ || close_))
            fillIn(stay->second.optionId);
        else if (!known)
            begin();
        else if (!lf_holds(known->hours, slot_.halfHour))
            addTo(known->optionId);
        else if (leaving_)
            stays_.erase(record_.hexid);  // it goes within the half hour: all is written
        return true;
    }

  private:
    bool archiveTellsOtherTimes() const {
        const auto& options = stand_.options;
        return std::any_of(options.begin(), options.end(), [this](const StandOption& option) {
            return option.fromArchive && isOf(option, keyOf(record_), slot_, real_) &&
                   !lf_holds(option.hours, slot_.halfHour);
        });
    }

    const StandOption* learnedToday() const {
        const auto& options = stand_.options;
        const auto found = std::find_if(options.begin(), options.end(), [this](const StandOption& option) {
            return !option.fromArchive && isOf(option, keyOf(record_), slot_, real_);
        });
        return found == options.end() ? nullptr : &*found;
    }

    NewOption addOption() { return lf_newOption(stand_, record_, real_, slot_, record_.callsign); }

    void begin() {
        const NewOption option = addOption();
        if (!option.added) return;
        stays_[record_.hexid] = {record_.hexid, slot_.day, slot_.halfHour, option.optionId};
    }

    void addTo(int32_t optionId) {
        if (leaving_ || close_)
            fillIn(optionId);
        else
            findOption(stand_, optionId)->hours |= bitOf(slot_.halfHour);
    }

    /// From the start of the open stay to now; without one, now alone.
    void fillIn(int32_t optionId) {
        const auto stay = stays_.find(record_.hexid);
        const bool softAndStays = !real_ && !leaving_;
        if (stay == stays_.end() && softAndStays) {
            begin();
            return;
        }
        if (stay == stays_.end()) {
            addOption();
        } else if (!extendStay(stay->second, optionId)) {
            if (softAndStays) return;
            addOption();
        }
        if (!softAndStays) stays_.erase(record_.hexid);
    }

    bool extendStay(OpenStay& stay, int32_t optionId) {
        WeekSlot start{stay.day, stay.halfHour};
        if (!updateOptions(slot_, stand_, optionId, start, record_, record_.callsign, real_)) return false;
        if (start.day != stay.day) stay.optionId = stand_.options.back().optionId;
        stay.day = start.day;
        stay.halfHour = start.halfHour;
        return true;
    }

    Stand& stand_;
    const LiveAc& record_;
    std::unordered_map<uint32_t, OpenStay>& stays_;
    WeekSlot slot_;
    bool close_, leaving_, real_;
};

}  // namespace

bool lt_addStandOption(uint32_t standId, const LiveAc& record, bool close, WeekSlot slot, bool leaving,
                       bool real) {
    try {
        Stand* stand = keyOf(record).empty() ? nullptr : lf_findStand(standId);
        if (!stand || !Sight(*stand, record, slot, close, leaving, real).record()) return false;
        lf_countUpdate();
        return true;
    } catch (const std::exception& error) {
        gf_logError(fmt::format("{}: hh_now: {}, {}", "lt_addStandOption", slot.halfHour, error.what()));
        return false;
    }
}

NewOption lf_newOption(Stand& stand, const LiveAc& record, bool real, WeekSlot slot, const std::string& cs) {
    const std::string& key = keyOf(record);
    if (key.empty()) return {};
    StandOption option;
    option.cs = flightOf(cs);
    option.hours = bitOf(slot.halfHour);
    const bool isThere =
        std::any_of(stand.options.begin(), stand.options.end(), [&](const StandOption& other) {
            return other.optionId != 0 && other.reg == key && other.day == slot.day &&
                   other.cs == option.cs && other.hours == option.hours;
        });
    if (isThere) return {};
    // Not the last one's plus 1: that one may be spent.
    option.optionId = static_cast<int32_t>(stand.options.size()) + 1;
    const auto known = gf_dbaseLookup(key);
    option.airl = known ? known->airl : record.airline;
    option.type = known ? known->type : record.model;
    option.reg = key;
    option.day = slot.day;
    option.real = real;
    stand.options.push_back(std::move(option));
    return {stand.options.back().optionId, true};
}

bool updateOptions(WeekSlot now, Stand& stand, int32_t optionId, WeekSlot& start, const LiveAc& record,
                   const std::string& cs, bool real) {
    if (optionId == 0 || now == start) return true;
    const int32_t span = lf_slotAge(start, now);
    if (span < 1 || span >= tooLongFor(record)) return false;
    StandOption* option = findOption(stand, optionId);
    if (!option) return false;
    const std::string flight = flightOf(cs);
    if (now.day == start.day) {
        extend(*option, start.halfHour, now.halfHour, flight);
    } else {
        const NewOption next = lf_newOption(stand, record, real, now, cs);
        if (!next.added) return false;
        extend(*findOption(stand, optionId), start.halfHour, lastHalfHour, flight);
        extend(stand.options.back(), 0, now.halfHour, flight);
    }
    start = now;
    return true;
}

}  // namespace skl
