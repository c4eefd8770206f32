// Cutting what the stream brings into messages by the size at the front of each.
#include "platform/simconnect/wire_format.h"

namespace skl::wire {

namespace {

uint32_t readU32(const std::byte* at) {
    uint32_t value;
    std::memcpy(&value, at, sizeof value);
    return value;
}

}  // namespace

void InputBuffer::append(std::span<const std::byte> bytes) {
    if (start_ > 0) {
        bytes_.erase(bytes_.begin(), bytes_.begin() + static_cast<std::ptrdiff_t>(start_));
        start_ = 0;
    }
    bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
}

uint32_t InputBuffer::nextSize() const {
    return sizeKnown() ? readU32(bytes_.data() + start_) : 0;
}

std::optional<std::span<const std::byte>> InputBuffer::peek() const {
    if (!sizeKnown() || broken() || bytes_.size() - start_ < nextSize()) return std::nullopt;
    return std::span(bytes_).subspan(start_, nextSize());
}

std::optional<std::span<const std::byte>> InputBuffer::next() {
    const auto message = peek();
    if (message) start_ += message->size();
    return message;
}

uint32_t messageId(std::span<const std::byte> message) {
    return readU32(message.data() + 8);
}

}  // namespace skl::wire
