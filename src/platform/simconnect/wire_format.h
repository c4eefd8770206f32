// The bytes of SimConnect's wire: little-endian numbers without gaps, texts of fixed width. Each message
// begins with its size; a client's header has 16 bytes, the simulator's 12.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <string_view>
#include <type_traits>
#include <vector>

namespace skl::wire {

static_assert(std::endian::native == std::endian::little, "numbers are copied as they lie in memory");

/// The version that the client speaks whatever simulator answers: newer ones serve it.
inline constexpr uint32_t protocolVersion = 5;
inline constexpr size_t smallestMessage = 12;
inline constexpr size_t largestMessage = 65536 * 16;

enum class Packet : uint32_t {
    open = 0x01,
    mapClientEvent = 0x04,
    transmitClientEvent = 0x05,
    addToNotificationGroup = 0x07,
    setGroupPriority = 0x09,
    addToDataDefinition = 0x0C,
    requestDataOnObject = 0x0E,
    requestDataOnObjectType = 0x0F,
    setDataOnObject = 0x10,
    subscribeToSystemEvent = 0x17,
    aiCreateNonAtc = 0x29,
    aiReleaseControl = 0x2B,
    aiRemoveObject = 0x2C,
    aiSetFlightPlan = 0x2D,
};

/// Appends one message to a buffer. The size in its header is set when the writer goes.
class MessageWriter {
  public:
    MessageWriter(std::vector<std::byte>& out, Packet packet, uint32_t sendId)
        : out_(out), start_(out.size()) {
        u32(0).u32(protocolVersion).u32(0xF0000000u | static_cast<uint32_t>(packet)).u32(sendId);
    }
    ~MessageWriter() {
        const auto size = static_cast<uint32_t>(out_.size() - start_);
        std::memcpy(out_.data() + start_, &size, sizeof size);
    }
    MessageWriter(const MessageWriter&) = delete;
    MessageWriter& operator=(const MessageWriter&) = delete;

    MessageWriter& u32(uint32_t value) { return put(value); }
    MessageWriter& f32(float value) { return put(value); }
    MessageWriter& f64(double value) { return put(value); }
    /// Byte for byte, cut so that at least one zero byte follows, which the readers on the other side need.
    MessageWriter& text(std::string_view value, size_t width) {
        value = value.substr(0, width - 1);
        bytes(std::as_bytes(std::span(value)));
        out_.resize(out_.size() + (width - value.size()));
        return *this;
    }
    MessageWriter& bytes(std::span<const std::byte> value) {
        out_.insert(out_.end(), value.begin(), value.end());
        return *this;
    }

  private:
    template <class T>
    MessageWriter& put(T value) {
        static_assert(std::is_trivially_copyable_v<T>);
        return bytes(std::as_bytes(std::span(&value, 1)));
    }
    std::vector<std::byte>& out_;
    size_t start_;
};

/// Collects what the stream brings and gives it out message by message.
class InputBuffer {
  public:
    void append(std::span<const std::byte> bytes);
    /// The first message that has arrived whole, left in place. Nothing while it is not; `broken` then tells
    /// whether it never can be.
    std::optional<std::span<const std::byte>> peek() const;
    /// The same, taken out. Its bytes stay valid until the next append.
    std::optional<std::span<const std::byte>> next();
    bool broken() const {
        return sizeKnown() && (nextSize() < smallestMessage || nextSize() > largestMessage);
    }
    /// The size that the next message gives of itself; 0 before it is there.
    uint32_t nextSize() const;

  private:
    bool sizeKnown() const { return bytes_.size() - start_ >= sizeof(uint32_t); }
    std::vector<std::byte> bytes_;
    size_t start_ = 0;
};

/// dwID of a message of the simulator.
uint32_t messageId(std::span<const std::byte> message);

}  // namespace skl::wire
