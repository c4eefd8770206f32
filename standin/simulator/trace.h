// The trace file: one JSON object a line, with `t` (seconds since the flight started), `utc` (seconds since
// 1970), `op`
// ("create", "remove", "pose", "event", "plan"), `oid`, `tail` and what belongs to the operation.
#pragma once

#include <cstdint>
#include <fstream>
#include <string>
#include <string_view>
#include <unordered_map>

#include "standin/simulator/world.h"

namespace simulator {

class Trace {
  public:
    explicit Trace(double posesPerSecond) : interval_(1 / posesPerSecond) {}

    // Gives the complaint for the user, or nothing.
    std::string open(const std::string& file);

    void create(double t, double utc, const SimObject& object);
    void remove(double t, double utc, const SimObject& object);
    void event(double t, double utc, const SimObject& object, std::string_view name, std::uint32_t data);
    void plan(double t, double utc, const SimObject& object, std::string_view path);
    // Written when the object's last one is long enough ago.
    void pose(double t, double utc, const SimObject& object);
    // The same for an object that got none for a while.
    void still(double t, double utc, const SimObject& object);
    void flush() { file_.flush(); }

  private:
    void line(double t, double utc, const char* op, const SimObject& object, const std::string& rest);

    double interval_;
    std::ofstream file_;
    std::unordered_map<std::uint32_t, double> lastPose_;
};

}  // namespace simulator
