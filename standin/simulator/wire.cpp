// Sizes of packets and values, and the byte order.
#include "standin/simulator/wire.h"

#include <array>
#include <bit>
#include <utility>

namespace simulator {

namespace {

struct PacketSize {
    std::uint32_t type;
    std::size_t size;
};

constexpr std::array<PacketSize, 18> kPacketSizes{{
    {kOpen, 296},
    {kMapClientEvent, 276},
    {kTransmitEvent, 36},
    {kAddToGroup, 28},
    {kGroupPriority, 24},
    {kAddToDefinition, 544},
    {kClearDefinition, 20},
    {kRequestData, 48},
    {kRequestDataByType, 32},
    {kSetData, 36},
    {kSubscribe, 276},
    {kUnsubscribe, 20},
    {kCreateNonAtc, 344},
    {kReleaseControl, 24},
    {kRemoveObject, 24},
    {kSetFlightPlan, 284},
    {kTransmitEventEx1, 52},
    {kCreateNonAtcEx1, 600},
}};

}  // namespace

std::size_t sizeOfType(std::uint32_t type) {
    constexpr std::array<std::size_t, 17> sizes{0, 4, 8, 4, 8, 8, 32, 64, 128, 256, 260, 0, 56, 0, 0, 24, 24};
    return type < sizes.size() ? sizes[type] : 0;
}

std::size_t sizeOfPacket(std::uint32_t type) {
    for (const auto& packet : kPacketSizes) {
        if (packet.type == type) {
            return packet.size;
        }
    }
    return 0;
}

std::uint32_t versionOfPacket(std::uint32_t type) {
    if (type >= 0x57) {
        return 6;
    }
    if (type >= 0x45) {
        return type == 0x48 ? 3 : 5;
    }
    return type == 0x39 || type == 0x3B || type >= 0x40 ? 3 : 2;
}

std::string_view Reader::take(std::size_t count) {
    if (!ok_ || at_ > bytes_.size() || bytes_.size() - at_ < count) {
        ok_ = false;
        return {};
    }
    const auto part = bytes_.substr(at_, count);
    at_ += count;
    return part;
}

std::uint64_t Reader::number(std::size_t bytes) {
    std::uint64_t value = 0;
    int shift = 0;
    for (const char c : take(bytes)) {
        value |= static_cast<std::uint64_t>(static_cast<unsigned char>(c)) << shift;
        shift += 8;
    }
    return value;
}

float Reader::f32() {
    return std::bit_cast<float>(u32());
}

double Reader::f64() {
    return std::bit_cast<double>(u64());
}

std::string Reader::text(std::size_t width) {
    const auto part = take(width);
    return std::string(part.substr(0, part.find('\0')));
}

Writer& Writer::number(std::uint64_t value, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        bytes_.push_back(static_cast<char>(value >> (8 * i) & 0xFF));
    }
    return *this;
}

Writer& Writer::f32(float value) {
    return u32(std::bit_cast<std::uint32_t>(value));
}

Writer& Writer::f64(double value) {
    return u64(std::bit_cast<std::uint64_t>(value));
}

Writer& Writer::text(std::string_view value, std::size_t width) {
    const auto kept = value.substr(0, width - 1);
    bytes_.append(kept);
    bytes_.append(width - kept.size(), '\0');
    return *this;
}

Writer& Writer::bytes(std::string_view value) {
    bytes_.append(value);
    return *this;
}

std::string Writer::finish() {
    const auto size = bytes_.size();
    for (std::size_t i = 0; i < 4; ++i) {
        bytes_[i] = static_cast<char>(size >> (8 * i) & 0xFF);
    }
    return take();
}

}  // namespace simulator
