// Data definitions of a client, and the bytes of their values: reading them from an object and writing them
// to it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "standin/simulator/variables.h"
#include "standin/simulator/wire.h"

namespace simulator {

struct Datum {
    const Variable* variable = nullptr;
    unsigned index = 0;
    const Unit* unit = nullptr;  // nullptr: the values as kept
    std::uint32_t type = kFloat64;
    float epsilon = 0;
    std::uint32_t id = kUnused;
};

using Definition = std::vector<Datum>;

// A variable of a definition out of the names on the wire. The exception to answer, or kNone.
Exception makeDatum(std::string_view variable, std::string_view unit, std::uint32_t type, Datum& datum);

// Bytes of all values; 0 when one of them has no fixed size.
std::size_t sizeOf(const Definition& definition);

// The value of an object as the client wants it.
std::string readDatum(const Datum& datum, const World& world, const SimObject& object);

// Whether two values differ by more than the datum's epsilon.
bool differs(const Datum& datum, std::string_view before, std::string_view after);

struct WriteResult {
    Exception exception = kNone;
    bool moved = false;  // the object's place, height or attitude was written
};

// Writes one element of a definition, or with `tagged` id and value pairs. Nothing is written when the bytes
// do not fit the definition or hold a number that is not finite; values that cannot be written are passed
// over.
WriteResult writeData(const Definition& definition, std::string_view bytes, bool tagged, const World& world,
                      SimObject& object);

}  // namespace simulator
