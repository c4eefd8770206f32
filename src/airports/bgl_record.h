// Words of a BGL file, and one record of it, with the record's end as the bound of everything inside.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <stdexcept>
#include <vector>

namespace skl {

/// A word; std::out_of_range behind the end.
inline uint32_t lf_bglWord(const std::vector<uint32_t>& words, uint64_t index) {
    return words.at(index);
}

/// Record id in the low half of the first word; the size in bytes begins in its high half.
class BglRecord {
  public:
    /// The record whose head is at `index`. It ends at its own size, or before that at `parentEnd`.
    BglRecord(const std::vector<uint32_t>& words, uint64_t index, uint64_t parentEnd)
        : words_(words), begin_(index) {
        const uint32_t first = lf_bglWord(words, index), second = lf_bglWord(words, index + 1);
        id_ = first & 0xFFFF;
        const uint32_t size = (first >> 16) | (second & 0xFFFF) << 16;
        next_ = index + size / 4;
        end_ = std::min<uint64_t>({next_, parentEnd, words.size()});
    }
    uint32_t id() const { return id_; }
    uint64_t begin() const { return begin_; }
    uint64_t end() const { return end_; }    ///< index behind its last word
    uint64_t next() const { return next_; }  ///< where the record behind it begins
    bool advances() const { return next_ > begin_; }
    /// The word `offset` words behind the head. Throws behind the record's end.
    uint32_t at(uint64_t offset) const {
        if (begin_ + offset >= end_) throw std::out_of_range("a record ends before its fields");
        return words_[begin_ + offset];
    }
    float real(uint64_t offset) const { return std::bit_cast<float>(at(offset)); }
    bool holds(uint64_t offset) const { return begin_ + offset < end_; }

  private:
    const std::vector<uint32_t>& words_;
    uint64_t begin_, next_ = 0, end_ = 0;
    uint32_t id_ = 0;
};

}  // namespace skl
