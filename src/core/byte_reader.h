// The one checked reader of foreign bytes (little-endian). A read behind the end throws std::out_of_range and
// moves nothing; a part is bounded by its parent.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <stdexcept>
#include <string>
#include <type_traits>

namespace skl {

class ByteReader {
  public:
    explicit ByteReader(std::span<const std::byte> bytes) : bytes_(bytes) {}

    size_t size() const { return bytes_.size(); }
    size_t position() const { return position_; }
    size_t left() const { return bytes_.size() - position_; }
    void seek(size_t position) {
        if (position > bytes_.size()) throw std::out_of_range("byte position outside its record");
        position_ = position;
    }
    void skip(size_t count) {
        need(count);
        position_ += count;
    }
    template <class T>
    T read() {
        static_assert(std::is_trivially_copyable_v<T>);
        need(sizeof(T));
        T value;
        std::memcpy(&value, bytes_.data() + position_, sizeof(T));
        position_ += sizeof(T);
        return value;
    }
    uint8_t u8() { return read<uint8_t>(); }
    uint16_t u16() { return read<uint16_t>(); }
    uint32_t u32() { return read<uint32_t>(); }
    int32_t i32() { return read<int32_t>(); }
    uint64_t u64() { return read<uint64_t>(); }
    float f32() { return read<float>(); }
    double f64() { return read<double>(); }
    /// A text of `width` bytes that ends at its first zero byte, or fills the width.
    std::string fixedText(size_t width) {
        need(width);
        const char* start = reinterpret_cast<const char*>(bytes_.data() + position_);
        position_ += width;
        const void* zero = std::memchr(start, 0, width);
        return {start, zero ? static_cast<size_t>(static_cast<const char*>(zero) - start) : width};
    }
    std::span<const std::byte> bytes(size_t count) {
        need(count);
        auto part = bytes_.subspan(position_, count);
        position_ += count;
        return part;
    }
    /// A reader of the next `count` bytes alone; this one moves behind them.
    ByteReader part(size_t count) { return ByteReader(bytes(count)); }

  private:
    void need(size_t count) const {
        if (count > bytes_.size() - position_) throw std::out_of_range("read behind the end of a record");
    }
    std::span<const std::byte> bytes_;
    size_t position_ = 0;
};

}  // namespace skl
