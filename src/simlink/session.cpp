// The SimConnect thread step by step: waiting for the simulator, dispatching, leaving. Behind it the requests
// that the worker makes.
#include "simlink/session.h"

#include <fmt/format.h>

#include <exception>
#include <utility>

#include "core/clock.h"
#include "core/errors.h"
#include "core/folders.h"
#include "core/locks.h"
#include "core/log.h"
#include "core/messages.h"
#include "core/run_state.h"
#include "core/time_text.h"
#include "panel/panel_state.h"
#include "simlink/dispatch.h"
#include "simlink/setup.h"
#include "simlink/sim_queues.h"
#include "simlink/user_aircraft.h"

namespace skl {

std::unique_ptr<SimConnect> simHandle;
std::atomic<float> frameRate{0};

namespace {

constexpr Nanos dispatchPause = std::chrono::milliseconds(1);
constexpr Nanos openPause = std::chrono::milliseconds(100);

class SimTask : public Task {
  public:
    explicit SimTask(std::shared_ptr<std::atomic<bool>> stop) : stop_(std::move(stop)) {}

    std::optional<Nanos> step(std::chrono::milliseconds) override {
        if (left_) return std::nullopt;
        try {
            if (const auto pause = pass()) return pause;
        } catch (const UserErrorException& error) {
            fail(error.what(), ExitReason::systemError);
        } catch (const std::exception& error) {
            fail(error.what(), ExitReason::simWasClosed);
        } catch (...) {
            fail("Exception in SimClient", ExitReason::simWasClosed);
        }
        leave();
        return std::nullopt;
    }

  private:
    std::optional<Nanos> pass() {
        // An open session is served until its own stop comes, so that a closing run can still talk to the
        // simulator.
        if (*stop_ || (!opened_ && gf_stopping())) return std::nullopt;
        if (!opened_) return tryOpen();
        if (ended_) return openPause;
        switch (simHandle->callDispatch(lf_dispatch)) {
            case SimConnect::Dispatch::alive:
                return dispatchPause;
            case SimConnect::Dispatch::quit:
                break;
            case SimConnect::Dispatch::lost:
                gf_log("SimConnect: connection lost");
                lf_setFlightRunning(false);
                gf_simFailed();
                break;
        }
        ended_ = true;
        return openPause;
    }

    Nanos tryOpen() {
        if (std::exchange(firstPass_, false)) {
            gf_showMessage(fmt::format("Waiting for MSFS 20{} ...", sim2020 ? "20" : "24"), true);
            gf_log("");
        }
        auto sim = gf_makeSimConnect();
        if (!sim->open(programName, [this] { return *stop_ || gf_stopping(); })) {
            sayTrouble(sim->openTrouble());
            return openPause;
        }
        opened_ = true;
        {
            LockGuard guard(g_simLock);
            simHandle = std::move(sim);
            if (!lf_setUpSession(*simHandle)) gf_simFailed();
        }
        gf_clock().raiseTimerResolution();
        return Nanos(0);
    }

    /// Once for each new one: the file is looked at again with every try.
    void sayTrouble(const std::string& trouble) {
        if (trouble.empty() || trouble == saidTrouble_) return;
        saidTrouble_ = trouble;
        gf_showMessage(trouble, true);
    }

    void fail(std::string_view text, ExitReason reason) {
        gf_showError(text);
        lf_setFlightRunning(false);
        if (g_stopRequested) return;
        const std::string farewell = fmt::format("{} Flight Simulator no longer connected, {} will stop ...",
                                                 gf_timeOfDay(), programName);
        gf_log(farewell);
        gf_showMessage(farewell, false);
        gf_requestStop(reason, 0);
    }

    void leave() {
        left_ = true;
        if (opened_) gf_clock().releaseTimerResolution();
        g_panel.simConnected = false;
        gf_invalidate(Band::status);
        LockGuard guard(g_simLock);
        if (!simHandle) return;
        if (simHandle->close())
            gf_log("SimConnect closed ok");
        else
            gf_logError("Closing SimConnect failed?!");
        simHandle.reset();
    }

    std::shared_ptr<std::atomic<bool>> stop_;
    std::string saidTrouble_;
    bool firstPass_ = true;
    bool opened_ = false;
    bool ended_ = false;  // the simulator is gone, only the stop is waited for
    bool left_ = false;
};

/// One request of the worker: nothing without a session, and its own text when it fails.
template <class Request>
void request(std::string_view failure, Request make) {
    LockGuard guard(g_simLock);
    if (g_simError || !simHandle || make(*simHandle)) return;
    gf_logError(failure);
    gf_simFailed();
}

}  // namespace

std::shared_ptr<Task> gf_simTask(std::shared_ptr<std::atomic<bool>> stop) {
    return std::make_shared<SimTask>(std::move(stop));
}

void gf_simFailed() {
    if (g_simError.exchange(true)) return;
    gf_showMessage("SimConnect request error", true);
    gf_requestStop(ExitReason::simConnectError, 9);
}

void gf_requestUserOnGround() {
    request("SimConnect request ac gnd/air fails", [](SimConnect& sim) {
        return sim.requestDataOnSimObject(req::userOnGround, def::groundData, sc::userObject,
                                          sc::periodSecond);
    });
}

void gf_requestAircraftInRange(double radiusMeters) {
    // A radius that is no number asks for everything near the user, never for nothing.
    const double radius =
        radiusMeters >= 0 && radiusMeters <= sc::maxRadiusMeters ? radiusMeters : sc::maxRadiusMeters;
    request("SimConnect request ac within range fails", [&](SimConnect& sim) {
        return sim.requestDataOnSimObjectType(req::aircraftInRange, def::objectData,
                                              static_cast<uint32_t>(radius), sc::objectTypeAircraft);
    });
}

void gf_requestStaticData(uint32_t objectId) {
    request("SimConnect request StaticCG fails", [&](SimConnect& sim) {
        return sim.requestDataOnSimObject(req::staticData, def::staticData, objectId, sc::periodOnce);
    });
}

void gf_allLightsToggle(uint32_t objectId) {
    request("SimConnect gf_allLightsToggle fails", [&](SimConnect& sim) {
        return sim.transmitClientEvent(objectId, ev::allLightsToggle, 0, ev::group);
    });
}

bool gf_sendFlightPlan(uint32_t objectId, std::string_view path) {
    LockGuard guard(g_simLock);
    return !g_simError && simHandle && simHandle->aiSetAircraftFlightPlan(objectId, path, req::flightPlan);
}

void gf_requestUser(UserRecord& record) {
    request("SimConnect request user ac position fails", [](SimConnect& sim) {
        return sim.requestDataOnSimObject(req::userPosition, def::userData, sc::userObject, sc::periodOnce);
    });
    LockGuard guard(g_simLock);
    record = simUser;
}

void gf_requestUserNames() {
    request("SimConnect request user ac title fails", [](SimConnect& sim) {
        return sim.requestDataOnSimObject(req::userTitle, def::titleData, sc::userObject, sc::periodOnce);
    });
    request("SimConnect reques user ac model fails", [](SimConnect& sim) {
        return sim.requestDataOnSimObject(req::userModel, def::modelData, sc::userObject, sc::periodOnce);
    });
}

void gf_resetSimLink() {
    LockGuard guard(g_simLock);
    lf_clearQueues();
    pendingCreates.clear();
    newObjects.clear();
    simHandle.reset();
    frameRate = 0;
    frameCount = 0;
    lf_resetUser();
}

}  // namespace skl
