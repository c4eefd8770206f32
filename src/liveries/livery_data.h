// One livery as a scan finds it.
#pragma once

#include <cstdint>
#include <string>

namespace skl {

struct LiveryData {
    std::string airline;    ///< three-letter code
    std::string model;      ///< ICAO type
    std::string title;      ///< exactly as the simulator knows it; empty: no livery
    std::string regcode;    ///< may be empty
    uint32_t priority = 0;  ///< rank of the folder, from 1
    bool cargo = false;
};

}  // namespace skl
