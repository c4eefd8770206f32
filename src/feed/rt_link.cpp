// The TCP link to RealTraffic: it connects, we listen. Short text commands, each ended by carriage return and
// line feed: "Qs999=version" is answered by a JSON object, "Qs121=" reports the user's position once a
// second, "Qs123=" the simulator's time in milliseconds, "exit" says that we leave. The worker thread alone
// uses it.
#include "feed/rt_link.h"

#include <fmt/format.h>

#include <array>
#include <memory>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "core/clock.h"
#include "core/locks.h"
#include "core/log.h"
#include "core/messages.h"
#include "core/parameters.h"
#include "core/run_state.h"
#include "core/time_text.h"
#include "engine/engine.h"
#include "engine/engine_state.h"
#include "feed/feed.h"
#include "feed/winsock_text.h"
#include "panel/panel_state.h"
#include "panel/requests.h"
#include "platform/net.h"
#include "simlink/user_aircraft.h"

namespace skl {

namespace {

constexpr size_t replyLimit = 16384;
constexpr Nanos replyPatience = std::chrono::seconds(5);
/// A send may hold up the cycle no longer than this; a peer that has not read for so long is as good as gone.
constexpr net::Millis sendPatience(100);

std::unique_ptr<net::TcpListener> listener;
std::unique_ptr<net::TcpConnection> client;
/// The lamp shows a client; stays set after a failed send until the loss has been acted on.
bool linkShown = false;

enum class Look { nobody, taken, failed };

Look lookForClient() {
    if (rtConnected || !listener) return Look::failed;
    auto arrived = listener->accept(net::Millis(0));
    if (!arrived) return listener->lastError() == 0 ? Look::nobody : Look::failed;
    if (!arrived->setNoDelay()) {
        const std::string text = fmt::format("{} setsockopt failed with error {}", gf_timeOfDay(),
                                             gf_wsaText(arrived->lastError()));
        gf_log(fmt::format("waitForClient interrupted: {}", text));
        return Look::failed;
    }
    client = std::move(arrived);
    rtConnected = true;
    return Look::taken;
}

void lightLamp() {
    linkShown = true;
    g_panel.feedConnected = true;
    gf_invalidate(Band::status);
    g_waitingForFeed = false;
}

void closeClient() {
    rtConnected = false;
    client.reset();
}

/// Reads and drops what RealTraffic says outside the handshake, so that its sends never stall.
void drainClient() {
    std::array<char, 4096> dropped;
    for (int i = 0; i < 64 && client->waitReadable(net::Millis(0)) > 0; ++i)
        if (client->receive(dropped) <= 0) return;
}

void setAcceptTraffic(bool accept) {
    const LockGuard guard(g_trafficLock);
    g_acceptTraffic = accept;
    if (!accept) trafficInbox.clear();
}

void linkRegained() {
    lightLamp();
    gf_showMessage(fmt::format("{} RealTraffic re-connected", gf_timeOfDay()), true);
    gf_clearMessage();
    // Outside a running flight the cycle does this when the flight runs.
    if (g_cycleRunning && g_flightRunning && !g_flightPaused) setAcceptTraffic(true);
}

void linkLost() {
    linkShown = false;
    g_panel.feedConnected = false;
    gf_invalidate(Band::status);
    setAcceptTraffic(false);
    if (!g_userClosing) gf_clearSky();
    gf_resetFeed();
    gf_showMessage(fmt::format("{} RealTraffic gone? Wait for RealTraffic to re-connect ...", gf_timeOfDay()),
                   true);
}

std::string positionReport() {
    return fmt::format("Qs121={:.0f};{:.0f};{:.6f};{:.0f};{};{:.6f};{:.6f}\r\n", engineUser.pitch * 100000,
                       engineUser.bank * 100000, engineUser.heading, engineUser.altitude * 1000,
                       engineUser.groundSpeed * 1000, toRad(engineUser.lat), toRad(engineUser.lon));
}

std::string listenErrorText(const net::NetError& error, const std::string& port) {
    if (error.step == "startup") return fmt::format("WSAStartup failed with error {}", error.code);
    if (error.step == "getaddrinfo") return fmt::format("getaddrinfo failed with error {}", error.code);
    if (error.step == "setsockopt") return "setsockopt(SO_REUSEADDR) failed";
    if (error.step == "bind")
        return fmt::format("Bind failed at port {} with error {}", port, gf_wsaText(error.code));
    return fmt::format("{} failed with error {}", error.step, gf_wsaText(error.code));
}

}  // namespace

void lf_readVersion(const std::string& reply) {
    rtLevel2 = false;
    if (reply.empty()) {
        gf_showMessage("No RealTraffic version received?", true);
        return;
    }
    const auto record = nlohmann::json::parse(reply, nullptr, false);
    std::string text;
    if (record.is_object()) {
        const auto level = record.find("level");
        rtLevel2 = level != record.end() && level->is_number_integer() && *level == 2;
        const auto version = record.find("version");
        text =
            fmt::format("RT{} edition: {}", rtLevel2 ? " prof" : " stnd",
                        version != record.end() && version->is_string() ? version->get<std::string>() : "");
    }
    gf_setPanelText(&PanelState::feedText, text, Band::status);
}

std::optional<size_t> lf_replyLength(std::string_view text) {
    const size_t start = text.find_first_not_of(" \t\r\n");
    if (start == std::string_view::npos) return std::nullopt;
    if (text[start] != '{') return text.size();
    int depth = 0;
    bool quoted = false;
    for (size_t i = start; i < text.size(); ++i) {
        const char c = text[i];
        if (quoted) {
            if (c == '\\')
                ++i;
            else if (c == '"')
                quoted = false;
        } else if (c == '"') {
            quoted = true;
        } else if (c == '{') {
            ++depth;
        } else if (c == '}' && --depth == 0) {
            return i + 1;
        }
    }
    return std::nullopt;
}

uint16_t lf_listenPort() {
    return listener ? listener->port() : 0;
}

void gf_startListener(const std::string& port) {
    net::NetError error;
    listener = net::network().listenTcp(port, error);
    if (!listener) throw std::runtime_error(listenErrorText(error, port));
}

bool waitForClient() {
    return lookForClient() == Look::taken;
}

bool sendDataPacket(std::string_view text) {
    if (!client) return false;
    if (client->sendAll(text, sendPatience)) return true;
    gf_log(fmt::format("sendDataPacket to RealTraffic failed: {}", gf_wsaText(client->lastError())));
    closeClient();
    gf_log("RealTraffic client socket closed");
    return false;
}

std::string gf_rtReceive() {
    std::string text;
    size_t length = 0;
    bool ended = !client;
    const auto wholeReply = [&] {
        if (gf_stopping()) ended = true;
        if (ended || client->waitReadable(net::Millis(0)) == 0) return ended;
        std::array<char, replyLimit> bytes;
        const int count = client->receive(bytes);
        if (count < 0) gf_log(fmt::format("receive: {}", gf_wsaText(client->lastError())));
        if (count <= 0) return ended = true;
        text.append(bytes.data(), static_cast<size_t>(count));
        if (text.size() >= replyLimit) {
            gf_log(fmt::format("receive: buffer overrun: {}", text.size()));
            return ended = true;
        }
        length = lf_replyLength(text).value_or(0);
        return length > 0;
    };
    gf_waitUntil(gf_steadyNow() + replyPatience, wholeReply);
    return text.substr(0, length);
}

void gf_rtHandshake() {
    if (!g_realTrafficHere) return;
    gf_showMessage(fmt::format("Waiting for RealTraffic to connect to |{} ...", programName), true);
    gf_log("");
    gf_resetFeed();
    // A client that is gone before it could be asked is none: wait for the next.
    Look look = Look::nobody;
    do {
        gf_waitUntil(Nanos::max(), [&look] {
            if (!gf_stopping()) look = lookForClient();
            return look != Look::nobody || gf_stopping();
        });
    } while (look == Look::taken && !sendDataPacket("Qs999=version\r\n") && !gf_stopping());
    if (look == Look::taken && rtConnected) {
        const std::string reply = gf_rtReceive();
        if (!gf_stopping()) {
            lf_readVersion(reply);
            lightLamp();
            gf_log("RealTraffic connected");
        }
    }
    gf_clearMessage();
}

void gf_sendSimTime(int64_t seconds) {
    if (rtConnected && seconds >= 1) sendDataPacket(fmt::format("Qs123={}\r\n", seconds * 1000));
}

void gf_sendPosition() {
    if (!g_realTrafficHere) return;
    if (!positionKnown(engineUser.pos())) return;
    if (!rtConnected && !linkShown) {
        if (g_exitReason != ExitReason::notYetSet || !waitForClient()) return;
        linkRegained();
        return;
    }
    if (rtConnected) {
        drainClient();
        if (sendDataPacket(positionReport())) return;
    }
    // The report just failed, or a time report before it did.
    linkLost();
}

void gf_closeLink() {
    if (rtConnected) sendDataPacket("exit\r\n");
    closeClient();
    listener.reset();
    linkShown = false;
}

bool gf_linkAllowsTraffic() {
    return !g_realTrafficHere || AEROWINX.value || rtConnected;
}

}  // namespace skl
