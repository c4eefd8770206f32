// See the header.
#include "bench/big_airport.h"

#include <fmt/format.h>

namespace skl::bench {

namespace {

constexpr int fleet = 3000;  // the aircraft that visit the airport within a week
constexpr int standsARow = 20;
constexpr double rowDegrees = 0.002, columnDegrees = 0.0006;  // neighbours in a row overlap

std::vector<Visitor> makeFleet(Choice& choice) {
    std::vector<Visitor> visitors;
    for (int i = 0; i < fleet; ++i)
        visitors.push_back({choice.airline(), choice.type(),
                            choice.chance(0.8) ? choice.registration() : fmt::format("REG{}", i)});
    return visitors;
}

}  // namespace

Sightings::Sightings(uint32_t seed) : choice_(seed), visitors_(makeFleet(choice_)) {}

StandOption Sightings::next() {
    ++number_;
    const Visitor& visitor = visitors_[number_ * 7919 % visitors_.size()];
    StandOption option{.airl = visitor.airl, .type = visitor.type, .reg = visitor.reg};
    option.cs = fmt::format("{}{}", visitor.airl, number_ % 9000);
    if (choice_.chance(0.5)) option.cs2 = option.cs + "B";
    option.hours = uint64_t{0x3f} << number_ % 40;
    option.optionId = 1;
    option.day = static_cast<int32_t>(number_ % 7) + 1;
    option.real = choice_.chance(0.5);
    return option;
}

AirportFile makeAirport(Sightings& sightings) {
    AirportFile file{.code = "EHAM", .airportName = "Schiphol", .publisher = "Zeta"};
    file.handmade = true;  // so that stands and options are written in full
    for (int i = 0; i < standCount; ++i) {
        Stand& stand = file.stands.emplace_back();
        stand.id = fmt::format("GATE A {}", i);
        stand.lat = 52.3 + i / standsARow * rowDegrees;
        stand.lon = 4.76 + i % standsARow * columnDegrees;
        stand.radius = 25 / metersPerNm;
        for (int j = 0; j < optionsAStand; ++j) stand.options.push_back(sightings.next());
    }
    return file;
}

}  // namespace skl::bench
