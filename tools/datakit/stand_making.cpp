// Stands out of apt.dat.
#include "tools/datakit/stand_making.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "airports/stand_reader.h"
#include "core/fnv.h"

namespace skl::datakit {

namespace {

constexpr double samePlaceMetres = 3;
constexpr size_t longestName = 24;  // bytes

/// A size for a stand whose row 1301 is missing or tells none.
char guessedSize(const AptStand& stand) {
    if (stand.users & heavies) return 'E';
    if (stand.users & jets || stand.kind == StandKind::gate) return 'C';
    if (stand.users & turboprops) return 'B';
    return stand.kind == StandKind::tieDown ? 'A' : 'B';
}

bool isForHelicopters(const AptStand& stand) {
    return stand.users == helicopters;
}

/// As the user's list of stands and the log can hold it: no commas, not endless.
std::string nameOf(const AptStand& stand, size_t number) {
    std::string name = stand.name;
    std::replace(name.begin(), name.end(), ',', ' ');
    if (name.size() > longestName) {
        size_t end = longestName;
        while (end > 0 && (static_cast<unsigned char>(name[end]) & 0xC0) == 0x80) --end;
        name.resize(end);
    }
    while (name.ends_with(' ')) name.pop_back();
    return name.empty() ? fmt::format("stand{}", number) : name;
}

class Maker {
  public:
    Maker(const AptAirport& airport, const Radii& radii, SourceFile& file)
        : airport_(airport), radii_(radii), file_(file) {
        list_.file.code = airport.code;
        list_.file.airportName = airport.name;
        list_.file.altitude = static_cast<int32_t>(std::lround(airport.elevation.value_or(0)));
        list_.place = file.at(airport.line);
    }

    void add(const AptStand& stand) {
        if (list_.file.stands.size() >= mostStands) {
            file_.findings().tell(
                "too many stands", file_.at(stand.line),
                fmt::format("{}: more than {} stands: left out", airport_.code, mostStands));
            return;
        }
        if (const Stand* there = standOnPlace(list_.file.stands, stand.place)) {
            file_.findings().tell("stands on one place", file_.at(stand.line),
                                  fmt::format("{}: stand '{}' lies on stand '{}': left out", airport_.code,
                                              stand.name, there->id));
            return;
        }
        Stand made;
        made.id = freeName(stand);
        made.lat = stand.place.lat;
        made.lon = stand.place.lon;
        made.heading = toRad(stand.heading);
        made.heli = isForHelicopters(stand);
        made.cargo = !made.heli && stand.operation == Operation::cargo;
        made.ramp = made.heli || made.cargo || stand.kind != StandKind::gate;
        made.radius = radiusOf(stand) / metersPerNm;
        list_.file.stands.push_back(std::move(made));
        list_.airlines.push_back(stand.airlines);
    }

    StandList take() { return std::move(list_); }

  private:
    double radiusOf(const AptStand& stand) const {
        if (isForHelicopters(stand) && !stand.size) return helicopterRadius;
        const char size = stand.size ? stand.size : guessedSize(stand);
        return radii_[static_cast<size_t>(size - 'A')];
    }

    std::string freeName(const AptStand& stand) {
        const std::string name = nameOf(stand, list_.file.stands.size() + 1);
        if (names_.insert(name).second) return name;
        for (int number = 2;; ++number) {
            std::string other = fmt::format("{} {}", name, number);
            if (!names_.insert(other).second) continue;
            file_.findings().tell(
                "doubled names of stands", file_.at(stand.line),
                fmt::format("{}: a second stand '{}': called '{}'", airport_.code, name, other));
            return other;
        }
    }

    const AptAirport& airport_;
    const Radii& radii_;
    SourceFile& file_;
    StandList list_;
    StringSet names_;
};

}  // namespace

const Stand* standOnPlace(const std::vector<Stand>& stands, LaLo place) {
    for (const Stand& other : stands) {
        if (std::abs(other.lat - place.lat) > 0.0001) continue;
        if (metresBetween(other.pos(), place) < samePlaceMetres) return &other;
    }
    return nullptr;
}

StandList standsOfApt(const AptAirport& airport, const Radii& radii, bool withHangars, SourceFile& file) {
    Maker maker(airport, radii, file);
    // Rows 15 are the older way to tell the same stands, and tell less.
    for (const bool old : {false, true})
        for (const AptStand& stand : airport.stands)
            if (stand.old == old && (withHangars || stand.kind != StandKind::hangar)) maker.add(stand);
    return maker.take();
}

}  // namespace skl::datakit
