// Conversion between the kept values and what a definition names.
#include "standin/simulator/definition.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace simulator {

namespace {

bool isTextType(std::uint32_t type) {
    return type >= kString8 && type <= kStringV;
}

bool isNumberType(std::uint32_t type) {
    return type >= kInt32 && type <= kFloat64;
}

std::string encodeNumber(std::uint32_t type, double value) {
    const double whole = std::clamp(std::round(value), -9.2e18, 9.2e18);
    switch (type) {
        case kInt32:
            return Writer().u32(static_cast<std::uint32_t>(static_cast<std::int64_t>(whole))).take();
        case kInt64:
            return Writer().u64(static_cast<std::uint64_t>(static_cast<std::int64_t>(whole))).take();
        case kFloat32:
            return Writer().f32(static_cast<float>(value)).take();
        default:
            return Writer().f64(value).take();
    }
}

double decodeNumber(std::uint32_t type, std::string_view bytes) {
    Reader reader(bytes);
    switch (type) {
        case kInt32:
            return static_cast<std::int32_t>(reader.u32());
        case kInt64:
            return static_cast<double>(static_cast<std::int64_t>(reader.u64()));
        case kFloat32:
            return reader.f32();
        default:
            return reader.f64();
    }
}

std::string encodeStructure(std::uint32_t type, const World& world, const SimObject& object) {
    Writer writer;
    writer.f64(object.lat).f64(object.lon).f64(object.alt);
    if (type == kInitPosition) {
        writer.f64(object.pitch).f64(object.bank).f64(object.heading);
        writer.u32(world.onGround(object) ? 1 : 0).u32(static_cast<std::uint32_t>(object.airspeed));
    }
    return writer.take();
}

void decodeInitPosition(std::string_view bytes, const World& world, SimObject& object) {
    Reader reader(bytes);
    object.lat = std::clamp(reader.f64(), -90.0, 90.0);
    object.lon = std::remainder(reader.f64(), 360.0);
    object.alt = reader.f64();
    object.pitch = reader.f64();
    object.bank = reader.f64();
    object.heading = std::remainder(reader.f64(), 360.0);
    if (reader.u32() != 0) {
        object.alt = world.ground(object.lat, object.lon) + object.staticHeight;
    }
    const auto speed = static_cast<std::int32_t>(reader.u32());
    object.airspeed = speed >= 0 ? speed : object.airspeed;
}

// Bytes of the value that stands at the front, by its type; nothing when it does not fit.
std::optional<std::size_t> valueLength(const Datum& datum, std::string_view bytes) {
    if (datum.type != kStringV) {
        const auto size = sizeOfType(datum.type);
        return size <= bytes.size() ? std::optional(size) : std::nullopt;
    }
    const auto zero = bytes.find('\0');
    if (zero == std::string_view::npos) {
        return bytes.size();
    }
    return std::min(bytes.find_first_not_of('\0', zero), bytes.size());
}

bool isFinite(const Datum& datum, std::string_view bytes) {
    if (isNumberType(datum.type)) {
        return std::isfinite(decodeNumber(datum.type, bytes));
    }
    if (datum.type != kInitPosition) {
        return true;
    }
    Reader reader(bytes);
    bool finite = true;
    for (int i = 0; i < 6; ++i) {
        finite = std::isfinite(reader.f64()) && finite;
    }
    return finite;
}

}  // namespace

Exception makeDatum(std::string_view variable, std::string_view unit, std::uint32_t type, Datum& datum) {
    datum.variable = findVariable(variable, datum.index);
    if (datum.variable == nullptr) {
        return kNameUnrecognized;
    }
    datum.type = type;
    switch (datum.variable->kind) {
        case ValueKind::Text:
            return isTextType(type) ? kNone : kInvalidDataType;
        case ValueKind::Structure:
            return type == datum.variable->structure ? kNone : kInvalidDataType;
        case ValueKind::Number:
            break;
    }
    if (!isNumberType(type)) {
        return kInvalidDataType;
    }
    const Unit* own = findUnit(datum.variable->unit);
    const Unit* wanted = unit.empty() ? own : findUnit(unit);
    if (wanted == nullptr) {
        return kDataError;
    }
    if (wanted->dimension != own->dimension) {
        // A plain number or flag of a quantity is its value in the variable's own unit.
        if (wanted->dimension != Dimension::Number) {
            return kDataError;
        }
        wanted = own;
    }
    datum.unit = wanted;
    return kNone;
}

std::size_t sizeOf(const Definition& definition) {
    std::size_t sum = 0;
    for (const auto& datum : definition) {
        const auto size = sizeOfType(datum.type);
        if (size == 0) {
            return 0;
        }
        sum += size;
    }
    return sum;
}

std::string readDatum(const Datum& datum, const World& world, const SimObject& object) {
    const auto& variable = *datum.variable;
    if (variable.kind == ValueKind::Structure) {
        return encodeStructure(datum.type, world, object);
    }
    if (variable.kind == ValueKind::Number) {
        return encodeNumber(datum.type, datum.unit->fromKept(variable.get(world, object, datum.index)));
    }
    const auto text = variable.text(object);
    const auto width = datum.type == kStringV ? (text.size() / 4 + 1) * 4 : sizeOfType(datum.type);
    return Writer().text(text, width).take();
}

bool differs(const Datum& datum, std::string_view before, std::string_view after) {
    if (before.size() == after.size() && isNumberType(datum.type)) {
        return std::abs(decodeNumber(datum.type, before) - decodeNumber(datum.type, after)) >
               static_cast<double>(datum.epsilon);
    }
    return before != after;
}

WriteResult writeData(const Definition& definition, std::string_view bytes, bool tagged, const World& world,
                      SimObject& object) {
    std::vector<std::pair<const Datum*, std::string_view>> values;
    std::size_t next = 0;
    while (tagged ? !bytes.empty() : next < definition.size()) {
        const Datum* datum = tagged ? nullptr : &definition[next++];
        if (tagged) {
            Reader reader(bytes);
            const auto id = reader.u32();
            bytes = reader.rest();
            const auto found = std::find_if(definition.begin(), definition.end(),
                                            [id](const Datum& candidate) { return candidate.id == id; });
            if (!reader.ok() || found == definition.end()) {
                return {reader.ok() ? kDatumId : kInvalidDataSize};
            }
            datum = &*found;
        }
        const auto length = valueLength(*datum, bytes);
        if (!length) {
            return {kInvalidDataSize};
        }
        values.emplace_back(datum, bytes.substr(0, *length));
        bytes.remove_prefix(*length);
        if (!isFinite(*datum, values.back().second)) {
            return {kDataError};
        }
    }
    WriteResult result;
    for (const auto& [datum, value] : values) {
        const auto& variable = *datum->variable;
        if (variable.structure == kInitPosition) {
            decodeInitPosition(value, world, object);
        } else if (variable.set != nullptr) {
            variable.set(world, object, datum->index, datum->unit->toKept(decodeNumber(datum->type, value)));
        } else {
            result.exception = kDataError;
            continue;
        }
        result.moved = result.moved || variable.place;
    }
    return result;
}

}  // namespace simulator
