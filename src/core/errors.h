// What a user can act on. Ends the run; its text stays on the panel.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace skl {

class UserErrorException : public std::runtime_error {
  public:
    /// what() gives "code: text", for code 99 the bare text.
    UserErrorException(uint32_t code, std::string_view text);
    uint32_t code() const { return code_; }

  private:
    uint32_t code_;
};

}  // namespace skl
