// The tables of everything that is declared, each row in its place.
#include "simlink/setup.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "simlink/sim_ids.h"

namespace skl {

namespace {

struct Named {
    uint32_t id;
    const char* name;
};

struct Datum {
    uint32_t definition;
    const char* variable;
    const char* unit;
    uint32_t type;
};

constexpr Named systemEvents[] = {
    {ev::sim, "Sim"},
    {ev::objectAdded, "ObjectAdded"},
    {ev::objectRemoved, "ObjectRemoved"},
    {ev::flightLoaded, "FlightLoaded"},
    {ev::frame, "Frame"},
};

// The order inside a definition is the order of the values in its replies and writes.
constexpr Datum dataDefinitions[] = {
    {def::titleData, "TITLE", "", sc::typeStringV},
    {def::modelData, "ATC MODEL", "", sc::typeString32},
    {def::groundData, "SIM ON GROUND", "Bool", sc::typeInt64},
    {def::aiPose, "Plane Latitude", "degree", sc::typeFloat64},
    {def::aiPose, "Plane Longitude", "degree", sc::typeFloat64},
    {def::aiPose, "Plane Pitch degrees", "radians", sc::typeFloat64},
    {def::aiPose, "Plane Bank degrees", "radians", sc::typeFloat64},
    {def::aiPose, "Plane Heading degrees true", "radians", sc::typeFloat64},
    {def::aiPose, "Plane Altitude", "feet", sc::typeFloat64},
    {def::aiPose, "Vertical Speed", "feet per second", sc::typeFloat64},
    {def::aiPose, "Airspeed True", "knots", sc::typeFloat64},
    {def::userData, "Plane Latitude", "degree", sc::typeFloat64},
    {def::userData, "Plane Longitude", "degree", sc::typeFloat64},
    {def::userData, "Plane Pitch degrees", "radians", sc::typeFloat64},
    {def::userData, "Plane Bank degrees", "radians", sc::typeFloat64},
    {def::userData, "Plane Heading degrees true", "radians", sc::typeFloat64},
    {def::userData, "Plane Altitude", "feet", sc::typeFloat64},
    {def::userData, "Plane Alt Above Ground", "feet", sc::typeFloat64},
    {def::userData, "Ground Velocity", "knots", sc::typeFloat64},
    {def::userData, "ZULU TIME", "Seconds", sc::typeInt64},
    {def::userData, "ZULU DAY OF YEAR", "Number", sc::typeInt64},
    {def::userData, "ZULU YEAR", "Number", sc::typeInt64},
    {def::userData, "LIGHT STATES", "Mask", sc::typeInt64},
    {def::staticData, "Static CG to Ground", "feet", sc::typeFloat64},
    {def::staticData, "Static Pitch", "radians", sc::typeFloat64},
    {def::lightData, "Light On States", "Mask", sc::typeInt64},
    {def::objectData, "Plane Alt Above Ground", "feet", sc::typeFloat64},
    {def::objectData, "Ground Altitude", "feet", sc::typeFloat64},
    {def::objectData, "SIM ON GROUND", "Bool", sc::typeInt64},
    {def::objectData, "ATC ID", "", sc::typeString32},
    {def::throttleData, "SPOILERS HANDLE POSITION", "percent", sc::typeFloat64},
    {def::throttleData, "GENERAL ENG THROTTLE LEVER POSITION:1", "percent", sc::typeFloat64},
    {def::throttleData, "GENERAL ENG THROTTLE LEVER POSITION:2", "percent", sc::typeFloat64},
};

constexpr Named clientEvents[] = {
    {ev::gearSet, "GEAR_SET"},
    {ev::engineAutoStart, "ENGINE_AUTO_START"},
    {ev::engineAutoShutdown, "ENGINE_AUTO_SHUTDOWN"},
    {ev::throttleSet, "THROTTLE_SET"},
    {ev::flapsSet, "FLAPS_SET"},
    {ev::spoilersSet, "SPOILERS_SET"},
    {ev::navLights, "NAV_LIGHTS_SET"},
    {ev::beaconLights, "BEACON_LIGHTS_SET"},
    {ev::landingLights, "LANDING_LIGHTS_SET"},
    {ev::taxiLights, "TAXI_LIGHTS_SET"},
    {ev::strobes, "STROBES_SET"},
    {ev::logoLights, "LOGO_LIGHTS_SET"},
    {ev::cabinLights, "CABIN_LIGHTS_SET"},
    {ev::allLightsToggle, "ALL_LIGHTS_TOGGLE"},
    {ev::freezeLatLon, "FREEZE_LATITUDE_LONGITUDE_SET"},
    {ev::freezeAltitude, "FREEZE_ALTITUDE_SET"},
    {ev::freezeAttitude, "FREEZE_ATTITUDE_SET"},
};

// All but the start of the engines.
constexpr uint32_t groupedEvents[] = {
    ev::navLights,   ev::beaconLights, ev::landingLights,  ev::taxiLights,
    ev::strobes,     ev::logoLights,   ev::cabinLights,    ev::allLightsToggle,
    ev::flapsSet,    ev::spoilersSet,  ev::gearSet,        ev::engineAutoShutdown,
    ev::throttleSet, ev::freezeLatLon, ev::freezeAltitude, ev::freezeAttitude,
};

}  // namespace

bool lf_setUpSession(SimConnect& sim) {
    const auto all = [](const auto& table, auto request) {
        return std::all_of(std::begin(table), std::end(table), request);
    };
    return all(systemEvents, [&](const Named& e) { return sim.subscribeToSystemEvent(e.id, e.name); }) &&
           all(dataDefinitions,
               [&](const Datum& d) {
                   return sim.addToDataDefinition(d.definition, d.variable, d.unit, d.type);
               }) &&
           all(clientEvents, [&](const Named& e) { return sim.mapClientEventToSimEvent(e.id, e.name); }) &&
           all(groupedEvents,
               [&](uint32_t e) { return sim.addClientEventToNotificationGroup(ev::group, e); }) &&
           sim.setNotificationGroupPriority(ev::group, sc::highestPriority);
}

}  // namespace skl
