#include "core/errors.h"

#include <fmt/format.h>

namespace skl {

namespace {

constexpr uint32_t bareText = 99;

}  // namespace

UserErrorException::UserErrorException(uint32_t code, std::string_view text)
    : std::runtime_error(code == bareText ? std::string(text) : fmt::format("{}: {}", code, text)),
      code_(code) {}

}  // namespace skl
