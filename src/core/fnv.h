// The hash of all hash maps with string keys: 64-bit FNV-1a over the key's bytes, usable with string views.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace skl {

struct FnvHash {
    using is_transparent = void;
    size_t operator()(std::string_view text) const noexcept {
        uint64_t hash = 0xcbf29ce484222325ULL;
        for (unsigned char c : text) hash = (hash ^ c) * 0x100000001b3ULL;
        return static_cast<size_t>(hash);
    }
};

template <class Value>
using StringMap = std::unordered_map<std::string, Value, FnvHash, std::equal_to<>>;
using StringSet = std::unordered_set<std::string, FnvHash, std::equal_to<>>;

}  // namespace skl
