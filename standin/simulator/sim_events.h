// The simulator's own events by name, and what each does to an aircraft.
#pragma once

#include <cstdint>
#include <string_view>

#include "standin/simulator/world.h"

namespace simulator {

// Upper-case name known? Names of input events ("#123") and of add-ons (with a point) always are.
bool isSimEvent(std::string_view name);

// Carries an event out; known events without an effect here do nothing.
void applySimEvent(std::string_view name, std::uint32_t data, SimObject& object);

}  // namespace simulator
