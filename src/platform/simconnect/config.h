// Where the simulator is: on Windows behind its named pipe if there is one, unless a SimConnect.cfg says
// otherwise. That is an INI file; section [SimConnect.0], else [SimConnect]; keys Protocol (IPv4), Address,
// Port and DisableNagle. Looked for in the working folder, then in the user's home folder.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace skl {

struct SimConnectAddress {
    std::string pipe;  ///< tried first unless empty; where there is none, TCP to the host
    std::string host = "localhost";
    uint16_t port = 2048;
    bool noDelay =
        true;  ///< a frame's output is one write already, so holding back small packets gains nothing
};

/// False when the text is not a usable configuration: `trouble` then says what is wrong with it.
bool lf_parseSimConnectConfig(std::string_view text, SimConnectAddress& address, std::string& trouble);
/// The address in force: of the first file found, else this machine's: on Windows the simulator's pipe, and
/// TCP where there is none. False when that file is broken; the search does not go on behind it, and
/// `trouble` names it.
bool lf_findSimulator(SimConnectAddress& address, std::string& trouble);

}  // namespace skl
