// The SimConnect messages as bytes: packet and message numbers, exceptions, a checked reader for what clients
// send and a builder for what the simulator sends. Numbers are little-endian, nothing is aligned; texts are
// one byte a character, filled with zero bytes to their width.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace simulator {

constexpr std::size_t kClientHeader = 16;
constexpr std::uint32_t kUnused = 0xFFFFFFFFU;

enum Packet : std::uint32_t {
    kOpen = 0x01,
    kMapClientEvent = 0x04,
    kTransmitEvent = 0x05,
    kAddToGroup = 0x07,
    kGroupPriority = 0x09,
    kAddToDefinition = 0x0C,
    kClearDefinition = 0x0D,
    kRequestData = 0x0E,
    kRequestDataByType = 0x0F,
    kSetData = 0x10,
    kSubscribe = 0x17,
    kUnsubscribe = 0x18,
    kCreateNonAtc = 0x29,
    kReleaseControl = 0x2B,
    kRemoveObject = 0x2C,
    kSetFlightPlan = 0x2D,
    kTransmitEventEx1 = 0x44,
    kCreateNonAtcEx1 = 0x59,
};

enum Received : std::uint32_t {
    kRecvException = 1,
    kRecvOpen = 2,
    kRecvQuit = 3,
    kRecvEvent = 4,
    kRecvObjectAddRemove = 5,
    kRecvFilename = 6,
    kRecvFrame = 7,
    kRecvData = 8,
    kRecvDataByType = 9,
    kRecvAssignedId = 12,
    kRecvEventEx1 = 27,
};

enum Exception : std::uint32_t {
    kNone = 0,
    kError = 1,
    kSizeMismatch = 2,
    kUnrecognizedId = 3,
    kUnopened = 4,
    kVersionMismatch = 5,
    kNameUnrecognized = 7,
    kEventIdDuplicate = 9,
    kTooManyObjects = 11,
    kInvalidDataType = 18,
    kInvalidDataSize = 19,
    kDataError = 20,
    kCreateFailed = 22,
    kLoadPlanFailed = 23,
    kInvalidForType = 24,
    kIllegalOperation = 25,
    kInvalidEnum = 27,
    kDatumId = 30,
    kOutOfBounds = 31,
};

enum DataType : std::uint32_t {
    kInt32 = 1,
    kInt64 = 2,
    kFloat32 = 3,
    kFloat64 = 4,
    kString8 = 5,
    kString260 = 10,
    kStringV = 11,
    kInitPosition = 12,
    kLatLonAlt = 15,
    kXyz = 16,
};

// Bytes of one value; 0 for the text without a width, for a type that does not exist and for those not
// served.
std::size_t sizeOfType(std::uint32_t type);

// Smallest whole message of a packet type; 0 for a type that is not known.
std::size_t sizeOfPacket(std::uint32_t type);

// Protocol version from which a packet type may be used.
std::uint32_t versionOfPacket(std::uint32_t type);

// Reads on from a position; what lies behind the end reads as 0 and clears ok().
class Reader {
  public:
    explicit Reader(std::string_view bytes, std::size_t at = 0) : bytes_(bytes), at_(at) {}
    std::uint32_t u32() { return static_cast<std::uint32_t>(number(4)); }
    std::uint64_t u64() { return number(8); }
    float f32();
    double f64();
    std::string text(std::size_t width);
    std::string_view rest() const { return at_ < bytes_.size() ? bytes_.substr(at_) : std::string_view{}; }
    void skip(std::size_t count) { take(count); }
    bool ok() const { return ok_; }

  private:
    std::uint64_t number(std::size_t bytes);
    std::string_view take(std::size_t count);

    std::string_view bytes_;
    std::size_t at_;
    bool ok_ = true;
};

// Bytes in the order of the calls. A message to a client begins with its header, whose size finish() fills
// in.
class Writer {
  public:
    Writer& u32(std::uint32_t value) { return number(value, 4); }
    Writer& u64(std::uint64_t value) { return number(value, 8); }
    Writer& f32(float value);
    Writer& f64(double value);
    Writer& text(std::string_view value, std::size_t width);
    Writer& bytes(std::string_view value);
    std::string take() { return std::move(bytes_); }
    std::string finish();

  private:
    Writer& number(std::uint64_t value, std::size_t count);
    std::string bytes_;
};

inline Writer message(std::uint32_t version, std::uint32_t id) {
    Writer writer;
    writer.u32(0).u32(version).u32(id);
    return writer;
}

}  // namespace simulator
