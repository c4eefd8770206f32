// The pressure comes as a number or as a text, in hectopascals or in hundredths of an inch of mercury.
// Anything else is a log line, and the last good value stands.
#include "feed/qnh_reader.h"

#include <fmt/format.h>

#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>

#include "core/log.h"
#include "core/text.h"
#include "feed/traffic_reader.h"
#include "panel/panel_state.h"

namespace skl {

namespace {

using nlohmann::json;

constexpr int32_t standardQnh = 1013;
constexpr int32_t lowestQnh = 930, highestQnh = 1080;
/// Hectopascals in a hundredth of an inch of mercury.
constexpr double hpaPerHundredthInch = 0.33865307;

int32_t narrowed(double value) {
    if (!(value >= std::numeric_limits<int32_t>::min() && value <= std::numeric_limits<int32_t>::max()))
        throw std::range_error("QNH does not fit a 32-bit number");
    return static_cast<int32_t>(value);
}

/// Whole hectopascals, or hundredths of an inch, as the record has them; nothing, with a log line, if it has
/// none.
std::optional<int32_t> readQnh(std::string_view datagram) {
    const json record = json::parse(datagram);
    const json missing;
    const json& value = record.is_object() && record.contains("QNH") ? record["QNH"] : missing;
    if (value.is_number()) return narrowed(std::round(value.get<double>()));
    if (!value.is_string()) {
        gf_log(fmt::format("no QNH {}", lf_printable(datagram)));
        return std::nullopt;
    }
    const auto& text = value.get_ref<const std::string&>();
    const auto number = gf_readInt(text);
    if (!number)
        gf_logError(
            fmt::format("QNH string parse error: {} in {}", lf_printable(text), lf_printable(datagram)));
    return number;
}

}  // namespace

QnhReader::QnhReader() : UdpReader("QNH Reader", {&g_panel.weatherState}, nullptr) {}

void QnhReader::processPacket() {
    processText(packet());
}

void QnhReader::onStopped() {
    gf_log("QNH Reader has stopped");
}

void QnhReader::processText(std::string_view datagram) {
    try {
        auto value = readQnh(datagram);
        if (!value) return;
        if (*value > highestQnh) value = narrowed(std::round(*value * hpaPerHundredthInch));
        if (*value < lowestQnh || *value > highestQnh) {
            gf_log(fmt::format("? Strange QNH {} found in {}", *value, lf_printable(datagram)));
            return;
        }
        acceptQnh(*value);
    } catch (const std::exception& error) {
        gf_log(fmt::format("Exception {}, in {}", lf_printable(error.what()), lf_printable(datagram)));
    }
}

void QnhReader::acceptQnh(int32_t value) {
    {
        const std::lock_guard guard(valuesLock_);
        if (value == lastQnh_ && value != standardQnh) return;
        lastQnh_ = value;
        lf_trafficReader().qnhCopy = value;
        qnh = value;
    }
    g_panel.qnh = value;
    int32_t stale = readerStale;
    g_panel.weatherState.compare_exchange_strong(stale, readerRunning);
    gf_invalidate(Band::status);
}

void QnhReader::resetValues() {
    const std::lock_guard guard(valuesLock_);
    lastQnh_ = standardQnh;
    lf_trafficReader().qnhCopy = standardQnh;
    qnh = standardQnh;
}

}  // namespace skl
