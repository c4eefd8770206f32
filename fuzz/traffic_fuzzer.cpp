// Lines of the traffic stream: any text.
#include <cstdint>
#include <string_view>

#include "core/run_state.h"
#include "engine/engine_state.h"
#include "feed/feed.h"
#include "feed/traffic_reader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static skl::TrafficReader reader;
    skl::g_acceptTraffic = true;
    reader.setFilterPos({51.5, -0.5});
    reader.setGroundReference(skl::GroundReference{{51.5, -0.5}, 83});
    reader.processText({reinterpret_cast<const char*>(data), size});
    skl::trafficInbox.clear();
    return 0;
}
