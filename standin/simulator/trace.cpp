// Lines of the trace.
#include "standin/simulator/trace.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "standin/common/text.h"
#include "standin/simulator/geo.h"

namespace simulator {

namespace {

// Poses come with the frames, whose times tremble a little.
constexpr double kTremble = 0.005;

std::string jsonText(std::string_view text) {
    return nlohmann::json(standin::utf8Of(text)).dump();
}

std::string placeOf(const SimObject& object) {
    return fmt::format(R"(,"lat":{:.7f},"lon":{:.7f},"alt":{:.2f},"pitch":{:.3f},"bank":{:.3f},"hdg":{:.3f})",
                       object.lat, object.lon, object.alt, object.pitch, object.bank, object.heading);
}

}  // namespace

std::string Trace::open(const std::string& file) {
    file_.open(file, std::ios::trunc);
    return file_ ? std::string() : fmt::format("cannot write {}", file);
}

void Trace::line(double t, double utc, const char* op, const SimObject& object, const std::string& rest) {
    if (file_.is_open()) {
        file_ << fmt::format(R"({{"t":{:.3f},"utc":{:.3f},"op":"{}","oid":{},"tail":{}{}}})", t, utc, op,
                             object.id, jsonText(object.tail), rest)
              << '\n';
    }
}

void Trace::create(double t, double utc, const SimObject& object) {
    line(t, utc, "create", object, fmt::format(R"(,"title":{}{})", jsonText(object.title), placeOf(object)));
}

void Trace::remove(double t, double utc, const SimObject& object) {
    line(t, utc, "remove", object, "");
    lastPose_.erase(object.id);
}

void Trace::event(double t, double utc, const SimObject& object, std::string_view name, std::uint32_t data) {
    line(t, utc, "event", object, fmt::format(R"(,"event":{},"data":{})", jsonText(name), data));
}

void Trace::plan(double t, double utc, const SimObject& object, std::string_view path) {
    line(t, utc, "plan", object, fmt::format(R"(,"data":{})", jsonText(path)));
}

void Trace::pose(double t, double utc, const SimObject& object) {
    const auto last = lastPose_.find(object.id);
    if (last == lastPose_.end() || t - last->second >= interval_ - kTremble) {
        lastPose_[object.id] = t;
        line(t, utc, "pose", object, placeOf(object));
    }
}

void Trace::still(double t, double utc, const SimObject& object) {
    const auto last = lastPose_.find(object.id);
    if (last == lastPose_.end() || t - last->second >= 1.5 * interval_) {
        pose(t, utc, object);
    }
}

}  // namespace simulator
