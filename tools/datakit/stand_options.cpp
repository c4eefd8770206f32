// What was seen on the stands: sightings become options.
#include <fmt/format.h>

#include <algorithm>
#include <limits>

#include "core/text.h"
#include "liveries/reference_db.h"
#include "tools/datakit/stand_making.h"

namespace skl::datakit {

namespace {

constexpr double overhangNm = 1.8 / metersPerNm;  // that a half span may exceed a radius
constexpr double otherAirlineNm = 100 / metersPerNm, otherKindNm = 1000 / metersPerNm;

/// "Gate A 12", "a12" and "A12" are one name to whoever wrote down what stood there.
std::string plainName(std::string_view name) {
    std::string plain;
    for (const char c : gf_upper(name))
        if (static_cast<unsigned char>(c) >= 0x80 || (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z'))
            plain += c;
    for (const std::string_view word : {"GATE", "STAND", "RAMP", "PARKING"})
        if (plain.starts_with(word) && plain.size() > word.size()) return plain.substr(word.size());
    return plain;
}

class Placer {
  public:
    Placer(StandList& list, bool databaseLoaded, Findings& findings)
        : list_(list), stands_(list.file.stands), databaseLoaded_(databaseLoaded), findings_(findings) {
        for (size_t i = 0; i < stands_.size(); ++i) {
            exact_.emplace(stands_[i].id, i);
            // A plain name that two stands share names neither.
            const auto [found, added] = plain_.try_emplace(plainName(stands_[i].id), i);
            if (!added) found->second = none;
        }
    }

    void place(const Sighting& sighting) {
        if (databaseLoaded_ && !gf_dbaseLookup(sighting.reg) && !gf_isAircraftType(sighting.type)) {
            tell(sighting,
                 fmt::format("type '{}' of {} is not in the database", sighting.type, sighting.reg));
            return;
        }
        const bool real = !sighting.stand.empty();
        const size_t stand = real ? find(sighting.stand) : fitting(sighting);
        if (stand != none) {
            merge(stands_[stand], sighting, real);
            list_.file.trafficWeek = std::max(list_.file.trafficWeek, sighting.week);
        } else if (real) {
            tell(sighting, fmt::format("{} has no stand '{}'", list_.file.code, sighting.stand));
        } else {
            tell(sighting, databaseLoaded_
                               ? fmt::format("{} has no free stand for {}", list_.file.code, sighting.type)
                               : "no stand told, and no --database to find one that fits");
        }
    }

  private:
    static constexpr size_t none = std::numeric_limits<size_t>::max();

    void tell(const Sighting& sighting, std::string_view what) {
        findings_.tell("sightings", sighting.place, fmt::format("{}: left out", what));
    }

    size_t find(const std::string& name) const {
        if (const auto found = exact_.find(name); found != exact_.end()) return found->second;
        const auto found = plain_.find(plainName(name));
        return found == plain_.end() ? none : found->second;
    }

    /// The stand of the right kind and the least room to spare, those of the airline first.
    size_t fitting(const Sighting& sighting) const {
        if (!databaseLoaded_) return none;
        const double halfSpan = gf_halfSpanNm(sighting.type);
        const auto category = gf_category(sighting.type);
        const auto record = gf_dbaseLookup(sighting.reg);
        const bool cargo = record && record->cargo, heli = category == AcCategory::Rotorcraft;
        const bool small = category == AcCategory::Light || category == AcCategory::Buzjets;
        size_t best = none;
        double least = std::numeric_limits<double>::max();
        for (size_t i = 0; i < stands_.size(); ++i) {
            const Stand& stand = stands_[i];
            if (stand.heli != heli || halfSpan - stand.radius > overhangNm || taken(stand, sighting))
                continue;
            double score = stand.radius;
            if (stand.cargo != cargo || (!heli && !cargo && stand.ramp != small)) score += otherKindNm;
            if (!wants(i, sighting.airl)) score += otherAirlineNm;
            if (score >= least) continue;
            least = score;
            best = i;
        }
        return best;
    }

    bool wants(size_t stand, const std::string& airline) const {
        if (stand >= list_.airlines.size()) return false;
        const auto& airlines = list_.airlines[stand];
        return std::find(airlines.begin(), airlines.end(), airline) != airlines.end();
    }

    static bool sameAircraft(const StandOption& option, const Sighting& sighting) {
        return option.reg == sighting.reg && option.airl == sighting.airl && option.type == sighting.type;
    }

    static bool taken(const Stand& stand, const Sighting& sighting) {
        return std::any_of(stand.options.begin(), stand.options.end(),
                           [&sighting](const StandOption& option) {
                               return option.day == sighting.day && (option.hours & sighting.hours) != 0 &&
                                      !sameAircraft(option, sighting);
                           });
    }

    /// One option for an aircraft, a weekday and its callsigns. A stay that ends under another callsign than
    /// it began with has both.
    static void merge(Stand& stand, const Sighting& sighting, bool real) {
        for (StandOption& option : stand.options) {
            if (option.day != sighting.day || option.real != real || !sameAircraft(option, sighting))
                continue;
            const bool sameFlights = option.cs == sighting.cs && option.cs2 == sighting.cs2;
            const bool oneStay = (option.hours & sighting.hours) != 0;
            if (!sameFlights && !oneStay) continue;
            option.hours |= sighting.hours;
            if (option.cs.empty())
                option.cs = sighting.cs;
            else if (option.cs2.empty() && sighting.cs != option.cs)
                option.cs2 = sighting.cs;
            return;
        }
        stand.options.push_back({.airl = sighting.airl,
                                 .type = sighting.type,
                                 .reg = sighting.reg,
                                 .cs = sighting.cs,
                                 .cs2 = sighting.cs2,
                                 .hours = sighting.hours,
                                 .optionId = static_cast<int32_t>(stand.options.size() + 1),
                                 .day = sighting.day,
                                 .fromArchive = true,
                                 .real = real});
    }

    StandList& list_;
    std::vector<Stand>& stands_;
    const bool databaseLoaded_;
    Findings& findings_;
    StringMap<size_t> exact_, plain_;
};

}  // namespace

void addSightings(StandList& list, const std::vector<Sighting>& sightings, bool databaseLoaded,
                  Findings& findings) {
    Placer placer(list, databaseLoaded, findings);
    // Those whose stand is known first: the others stand where room is left.
    for (const bool known : {true, false})
        for (const Sighting& sighting : sightings)
            if (sighting.stand.empty() != known) placer.place(sighting);
    const QualityFactors quality = gf_qualityFactors(list.file.stands);
    list.file.qfReal = quality.real;
    list.file.qfSoft = quality.soft;
}

}  // namespace skl::datakit
