// The simulation variables by name: what each gives and takes, for the user's aircraft and for the objects.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "standin/simulator/units.h"
#include "standin/simulator/world.h"

namespace simulator {

enum class ValueKind { Number, Text, Structure };

using NumberGetter = double (*)(const World&, const SimObject&, unsigned index);
using NumberSetter = void (*)(const World&, SimObject&, unsigned index, double value);
using TextGetter = std::string (*)(const SimObject&);

struct Variable {
    std::string_view name;  // upper case, without the index
    ValueKind kind;
    std::string_view unit;       // used when the client names none; tells the dimension
    NumberGetter get = nullptr;  // in the kept unit of the dimension
    NumberSetter set = nullptr;  // nullptr: cannot be written
    TextGetter text = nullptr;
    std::uint32_t structure = 0;  // data type of a structure
    bool place = false;           // writing it moves the object
};

// A variable as a client names it, in any case, with an index behind a colon; nullptr when there is none.
const Variable* findVariable(std::string_view name, unsigned& index);

}  // namespace simulator
