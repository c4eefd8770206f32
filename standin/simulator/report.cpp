// The report at the end of a run.
#include <nlohmann/json.hpp>

#include "standin/simulator/simulator.h"

namespace simulator {

nlohmann::json Simulator::report() const {
    auto exceptions = nlohmann::json::object();
    for (const auto& [code, count] : counts_.exceptions) {
        exceptions[std::to_string(code)] = count;
    }
    const auto frames = static_cast<double>(counts_.frames);
    auto motion = motion_.report();
    motion["overlaps"] = overlaps_.report();
    return {
        {"seconds", now_},
        {"flightSeconds", flightTime()},
        {"clients", counts_.clients},
        {"created", counts_.created},
        {"removed", counts_.removed},
        {"removedWithClient", counts_.orphaned},
        {"refused", counts_.refused},
        {"alive", counts_.created - counts_.removed},
        {"posesReceived", counts_.poses},
        {"posesNotFrozen", counts_.posesNotFrozen},
        {"eventsReceived", counts_.events},
        {"plans", counts_.plans},
        {"frames", counts_.frames},
        {"calls", counts_.packets},
        {"unknownCalls", counts_.unknownPackets},
        {"callsPerFrame",
         {{"mean", frames > 0 ? static_cast<double>(counts_.packets) / frames : 0.0},
          {"max", counts_.mostInFrame}}},
        {"bytes", {{"received", server_.bytesReceived}, {"sent", server_.bytesSent}}},
        {"exceptions", exceptions},
        {"motion", motion},
    };
}

}  // namespace simulator
