// Lines, stamps, kinds.
#include "standin/realtraffic/recording.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>

#include "standin/common/text.h"

namespace realtraffic {

namespace {

constexpr std::size_t kFields = 29;
constexpr std::size_t kAltitude = 4;
constexpr std::size_t kStamp = 14;
constexpr std::array<std::size_t, 6> kNumbers{1, 2, 3, kAltitude, 5, 8};
constexpr std::size_t kMostDigits = 12;
constexpr double kLongestGap = 3600;

struct Stamp {
    std::string_view digits;
    std::int64_t whole;
    double value;
};

std::optional<Stamp> stampOf(std::string_view field) {
    const auto digits = field.substr(0, std::min(field.find('.'), field.size()));
    const bool plain =
        std::all_of(field.begin(), field.end(), [](char c) { return c == '.' || (c >= '0' && c <= '9'); });
    const auto value = standin::numberOf(field);
    if (!plain || digits.empty() || digits.size() > kMostDigits || !value) {
        return std::nullopt;
    }
    std::int64_t whole = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), whole);
    return Stamp{digits, whole, *value};
}

Kind kindOfFields(const std::vector<std::string_view>& fields, bool stamped) {
    const bool whole = fields.size() >= kFields && stamped &&
                       std::all_of(kNumbers.begin(), kNumbers.end(), [&fields](auto number) {
                           return standin::numberOf(fields[number]).has_value();
                       });
    if (!whole) {
        return Kind::kBroken;
    }
    return standin::numberOf(fields[kAltitude]).value_or(0) > 0 ? Kind::kAir : Kind::kGround;
}

}  // namespace

std::string Recording::read(const std::string& file) {
    const auto complaint = standin::readLines(file, [this](const std::string& line) { add(line); });
    return complaint.empty() && lines_.empty() ? fmt::format("{} holds no line", file) : complaint;
}

void Recording::add(std::string_view text) {
    if (text.ends_with('\r')) {
        text.remove_suffix(1);
    }
    if (text.empty()) {
        return;
    }
    Line line;
    line.text = text;
    line.seconds = seconds();
    const auto fields = standin::split(line.text, ',');
    const auto stamp = fields.size() > kStamp ? stampOf(fields[kStamp]) : std::nullopt;
    if (stamp && start_ < 0) {
        start_ = stamp->value;
    }
    if (stamp && std::abs(stamp->value - start_ - line.seconds) <= kLongestGap) {
        line.seconds = std::max(line.seconds, stamp->value - start_);
        line.stampAt = static_cast<std::size_t>(stamp->digits.data() - line.text.data());
        line.stampLength = stamp->digits.size();
        line.stamp = stamp->whole;
    }
    line.kind = text.find(" VEH") != std::string_view::npos ? Kind::kVehicle
                                                            : kindOfFields(fields, line.stampLength > 0);
    lines_.push_back(std::move(line));
}

std::string Recording::text(std::size_t number, std::int64_t shift) const {
    const auto& line = lines_[number];
    auto text = line.text;
    if (line.stampLength > 0) {
        text.replace(line.stampAt, line.stampLength, std::to_string(line.stamp + shift));
    }
    return text;
}

}  // namespace realtraffic
