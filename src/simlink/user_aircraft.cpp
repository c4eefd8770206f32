// Replies about the user's aircraft, and the values that the other threads read of it.
#include "simlink/user_aircraft.h"

#include <fmt/format.h>

#include <cmath>
#include <stdexcept>

#include "core/byte_reader.h"
#include "core/errors.h"
#include "core/locks.h"
#include "core/log.h"
#include "core/messages.h"
#include "core/run_state.h"
#include "engine/engine.h"
#include "feed/feed.h"
#include "panel/panel_state.h"
#include "simlink/sim_ids.h"
#include "simlink/user_model.h"

namespace skl {

namespace {

// Objects at or below this id are not ours until the user's own is known.
constexpr uint32_t firstUserObjectId = 2;
// Nobody flies this far between two replies.
constexpr double teleportNm = 10;
constexpr std::string_view titlePrefix = "SimConnect: User aircraft title: ";

LaLo lastUserPos;
std::string userTitle;

}  // namespace

UserRecord simUser, engineUser;
std::optional<FlightEnd> userFlightEnd;
std::atomic<uint32_t> userObjectId{firstUserObjectId};
std::atomic<bool> userOnGround{false}, userOnGroundKnown{false};
std::atomic<int64_t> simEpoch{0};
std::atomic<double> userHalfSpanNm{0};
std::atomic<AcCategory> userCategory{AcCategory::Light};

namespace {

UserRecord readUser(ByteReader reader) {
    UserRecord user;
    for (double* field : {&user.lat, &user.lon, &user.pitch, &user.bank, &user.heading, &user.altitude,
                          &user.agl, &user.groundSpeed}) {
        *field = reader.f64();
        if (!std::isfinite(*field)) throw std::out_of_range("not a number");
    }
    for (int64_t* field : {&user.zuluSeconds, &user.zuluDayOfYear, &user.zuluYear, &user.lightStates})
        *field = reader.read<int64_t>();
    if (user.altitude < 0) user.altitude = 0;
    return user;
}

void lf_userPosition(uint32_t objectId, const UserRecord& user) {
    {
        LockGuard guard(g_simLock);
        simUser = user;
    }
    if (positionKnown(lastUserPos) && positionKnown(user.pos()) &&
        gf_distanceNm(lastUserPos, user.pos()) > teleportNm) {
        gf_log("Teleport");
        if (!gf_stopping()) gf_requestStop(ExitReason::newFlight, 45);
    }
    lastUserPos = user.pos();
    if (rtLevel2)
        if (const auto epoch = lf_epochOf(user.zuluYear, user.zuluDayOfYear, user.zuluSeconds))
            simEpoch = *epoch;
    userObjectId = objectId;
}

void lf_userTitle(const std::string& text) {
    if (text.empty()) {
        gf_log("! Title of your aircraft is empty?");
        return;
    }
    const std::string title = lf_displayTitle(text);
    if (title == userTitle) return;
    userTitle = title;
    gf_setPanelText(&PanelState::userAircraftText, title, Band::status);
    gf_logIndented(fmt::format("{}{}", titlePrefix, title));
}

void sayModel(const UserModel& found) {
    gf_logIndented(
        fmt::format("SimConnect: User aircraft model: {}, half wing span: {:.1F} meter, category: {}",
                    found.model, found.halfSpanNm * metersPerNm, gf_categoryName(found.category)));
}

void setSpanKnown(bool known) {
    g_panel.userSpanKnown = known;
    gf_invalidate(Band::status);
}

void takeModel(const std::string& raw) {
    if (!raw.empty()) gf_logIndented(fmt::format("model raw: {}", raw));
    const UserModel found = lf_userModel(raw, userTitle);
    userHalfSpanNm = found.halfSpanNm;
    userCategory = found.category;
    switch (found.from) {
        case UserModel::From::encrypted:
            gf_setPanelText(&PanelState::userAircraftText, "Unknown (encrypted?) aircraft", Band::status);
            gf_showMessage(
                "171: No model info from your user aircraft received in SimConnect, CRJ7 is taken instead",
                true);
            break;
        case UserModel::From::nothing:
            setSpanKnown(false);
            gf_showMessage(
                "User aircraft wing span unknown, max is taken instead, please report in my Forum!", true);
            break;
        case UserModel::From::vehicle:
            gf_log(found.model);
            setSpanKnown(true);
            sayModel(found);
            break;
        case UserModel::From::title:
            gf_log(fmt::format("SimConnect: User aircraft model deduced from title: {}", found.model));
            [[fallthrough]];
        case UserModel::From::model:
            setSpanKnown(true);
            sayModel(found);
            break;
    }
}

void handleModelReply(const std::string& raw) {
    try {
        takeModel(lf_displayTitle(raw));
    } catch (const std::exception&) {
        throw UserErrorException(73, "It looks like you have not selected an aircraft as user vehicle");
    }
}

}  // namespace

std::optional<int64_t> lf_epochOf(int64_t year, int64_t dayOfYear, int64_t seconds) {
    constexpr int64_t sane = 1'000'000;
    if (year < -sane || year > sane || dayOfYear < -sane || dayOfYear > sane || seconds < -sane ||
        seconds > sane)
        return std::nullopt;
    const int64_t century = year < 1 ? (year - 100) / 100 : (year - 1) / 100;
    const int64_t day = dayOfYear - 719163 + ((1461 * year - 1461) >> 2) + (century >> 2) - century;
    return day * 86400 + seconds;
}

void lf_noteFlightEnd() {
    LockGuard guard(g_simLock);
    userFlightEnd = {.position = simUser.pos(), .groundSpeed = simUser.groundSpeed, .onGround = userOnGround};
}

void lf_resetUser() {
    LockGuard guard(g_simLock);
    simUser = engineUser = {};
    userFlightEnd.reset();
    lastUserPos = {};
    userTitle.clear();
    userObjectId = firstUserObjectId;
    userOnGround = userOnGroundKnown = false;
    simEpoch = 0;
    userHalfSpanNm = 0;
    userCategory = AcCategory::Light;
}

void lf_dataReply(const SimRecv& message) {
    ByteReader reader(message.bytes);
    reader.seek(12);
    const uint32_t request = reader.u32();
    const uint32_t objectId = reader.u32();
    reader.seek(40);
    switch (request) {
        case req::staticData: {
            const double height = reader.f64();
            const double pitch = reader.f64();
            if (!std::isfinite(height) || !std::isfinite(pitch)) throw std::out_of_range("not a number");
            gf_postSimMsg({.objectId = objectId, .kind = msgStaticData, .a = height, .b = pitch});
            break;
        }
        case req::userTitle:
            lf_userTitle(reader.fixedText(reader.left()));
            break;
        case req::userModel:
            handleModelReply(reader.fixedText(32));
            break;
        case req::userOnGround: {
            const bool onGround = reader.read<int64_t>() != 0;
            if (positionKnown(simUser.pos())) {
                userOnGround = onGround;
                userOnGroundKnown = true;
            }
            // The heartbeat of the program is the simulator's.
            g_secondTick = true;
            break;
        }
        case req::userPosition:
            lf_userPosition(objectId, readUser(reader));
            break;
        default:
            break;
    }
}

}  // namespace skl
