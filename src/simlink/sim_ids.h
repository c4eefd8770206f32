// The ids that the program gives to everything it asks of the simulator, and the simulator's own numbers.
#pragma once

#include <cstddef>
#include <cstdint>

namespace skl {

namespace ev {
inline constexpr uint32_t sim = 201, objectAdded = 202, objectRemoved = 203, frame = 204, flightLoaded = 205;
inline constexpr uint32_t beaconLights = 206, navLights = 207, taxiLights = 208, strobes = 209,
                          landingLights = 210, cabinLights = 211, logoLights = 212, allLightsToggle = 213,
                          freezeLatLon = 214, freezeAltitude = 215, freezeAttitude = 216, flapsSet = 217,
                          spoilersSet = 218, gearSet = 219, engineAutoStart = 220, engineAutoShutdown = 221,
                          throttleSet = 222;
inline constexpr uint32_t group = 301;
}  // namespace ev

namespace def {
inline constexpr uint32_t throttleData = 401, aiPose = 402, userData = 403, objectData = 404,
                          staticData = 405, lightData = 406, titleData = 407, modelData = 408,
                          groundData = 409;
}

namespace req {
inline constexpr uint32_t aircraftInRange = 101, staticData = 102, releaseControl = 103, createAircraft = 104,
                          removeObject = 105, userTitle = 106, userModel = 107, userOnGround = 108,
                          userPosition = 109, flightPlan = 110;
}

namespace sc {
inline constexpr uint32_t recvException = 1, recvOpen = 2, recvQuit = 3, recvEvent = 4,
                          recvObjectAddRemove = 5, recvFilename = 6, recvFrame = 7, recvObjectData = 8,
                          recvObjectDataByType = 9, recvAssignedObjectId = 12, recvClientData = 16,
                          recvEventEx1 = 27;
inline constexpr uint32_t typeInt64 = 2, typeFloat64 = 4, typeString32 = 6, typeStringV = 11;
inline constexpr uint32_t periodOnce = 1, periodSecond = 4;
inline constexpr uint32_t objectTypeAircraft = 2;
inline constexpr uint32_t userObject = 0;
inline constexpr uint32_t highestPriority = 1;
inline constexpr double maxRadiusMeters = 200000;
inline constexpr size_t tailNumberBytes = 11;  ///< what a creation can give an object as tail number
}  // namespace sc

}  // namespace skl
