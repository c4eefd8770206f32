// A run from its start to the cycle: settings, folders, data, liveries, and the top-level error boundary.
#include "core/run_sequence.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <thread>

#include "airports/addon_scan.h"
#include "airports/airport_file.h"
#include "airports/airport_index.h"
#include "core/clock.h"
#include "core/errors.h"
#include "core/folders.h"
#include "core/log.h"
#include "core/messages.h"
#include "core/parameter_store.h"
#include "core/parameters.h"
#include "core/run_state.h"
#include "core/text.h"
#include "distribution/updates.h"
#include "engine/engine_state.h"
#include "engine/flight_plan.h"
#include "feed/feed.h"
#include "liveries/catalogue.h"
#include "liveries/livery_scan.h"
#include "liveries/reference_db.h"
#include "panel/controls.h"
#include "panel/panel_state.h"
#include "panel/requests.h"
#include "panel/traffic_range.h"
#include "parking/airport_list.h"

namespace skl {

namespace {

bool dbaseRead = false;
constexpr std::string_view airportsFile = "airports_msfs.xml";

void readAllParameters() {
    const auto& lists = gf_parameterLists();
    gf_readParameters(lists.hidden, lists.checks, lists.numbers, lists.combos, lists.texts, lists.liveTexts);
    gf_migrateParameters();
    // From here on for the whole run: what is read and fetched below depends on the simulator.
    sim2020 = SIM_CHOICE == "MSFS 2020";
}

void rememberWorkingFolder() {
    const std::string here = gf_pathText(fs::current_path());
    if (PROGRAM_INSTALL_PATH == here) return;
    PROGRAM_INSTALL_PATH.set(here);
    gf_saveParameter(PROGRAM_INSTALL_PATH);
}

void settleInstallPath() {
    StringParameter& installPath = gf_installPathParameter();
    ALL_INSTALL_PATH.set(installPath.get());
    gf_enableControl(ALL_INSTALL_PATH, true);
    if (!installPath.empty()) return;
    const std::string found = gf_pathText(gf_detectInstallPath());
    if (found.empty())
        throw UserErrorException(
            150, "No install path detected, type full path to your Community folder above, and press Enter");
    installPath.set(found);
    gf_saveParameter(installPath);
    ALL_INSTALL_PATH.set(found);
    gf_invalidate(Band::options);
}

/// What was scanned for the simulator before is of no use to this one.
void forgetOtherSimulator() {
    std::error_code error;
    fs::remove(paths::liveriesScanned, error);
    if (error)
        gf_logError(fmt::format("remove: {} [{}]", error.message(), gf_pathText(paths::liveriesScanned)));
    gf_clearCatalogue();
}

void findRealTraffic() {
    std::error_code unreadable;  // then it is not there for us
    g_realTrafficHere = fs::exists(gf_appDataPath() / "InsideSystems" / "RealTraffic.jar", unreadable);
    gf_showMessage(fmt::format("RealTraffic {}detected at this PC", g_realTrafficHere ? "" : "not "), true);
}

}  // namespace

void lf_prepareRun() {
    readAllParameters();
    gf_invalidate(Band::status);
    gf_stripCommunity();
    gf_ensureFolders();
    liveLimit = MAX_LIVE_SEL.value.load();
    if (!g_restartPending) gf_updateDataFiles();
    gf_enableControlsAtStart();
    rememberWorkingFolder();
    gf_storeNow(gf_weekSlotOf(gf_utcSeconds()));
    if (!dbaseRead) dbaseRead = gf_readDbase();
    if (!gf_readAirports(airportsFile))
        gf_showMessage(fmt::format("No airports in '{}'", airportsFile), true);
    settleInstallPath();
    findRealTraffic();
    savedRange = RANGE.value.load();
    gf_applyRange(RANGE.value);
}

void lf_loadData() {
    if (g_simulatorSwitched.exchange(false)) forgetOtherSimulator();
    workerLimit = std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
    if (!fs::exists(paths::liveriesScanned) && !SCAN_LIVERIES.value) {
        gf_showMessage(fmt::format("File {} is gone, rescan liveries", gf_pathText(paths::liveriesScanned)),
                       true);
        SCAN_LIVERIES.value = true;
        gf_saveParameter(SCAN_LIVERIES);
    }
    gf_startLiveries();
    if (!gf_stopping() && SCAN_AIRPORTS.value) {
        g_panel.thirdpartyCount = g_panel.simaddonCount = 0;
        gf_invalidate(Band::status);
        lf_scanAirports();
    }
    if (!gf_stopping()) {
        g_panel.thirdpartyCount = static_cast<uint64_t>(gf_countEntries(paths::myThirdparty));
        g_panel.simaddonCount = static_cast<uint64_t>(gf_countEntries(paths::mySimaddon));
        gf_invalidate(Band::status);
    }
}

void lf_prepareAirports() {
    gf_createFlightPlanFolder();
    gf_forgetProbes();
    lf_readMyParkAirports();
    const std::string destination = DESTINATION.get();
    gf_enableControl(rereadButton, destination.empty());
    const Airport* airport = gf_findAirport(destination);
    if (!airport) return;
    // Left by a run that did not end in order.
    gf_showMessage(fmt::format("New destination: {}", destination), true);
    lf_setDestination(destination, airport->pos());
}

void lf_run() {
    try {
        if (!fs::is_directory(paths::docs))
            throw UserErrorException(
                41, fmt::format("{} must be run from the {} folder!", programName, programName));
        lf_prepareRun();
        lf_loadData();
        if (!gf_stopping()) {
            lf_prepareAirports();
            lf_connectAndCycle();
        } else if (g_exitReason == ExitReason::notYetSet || g_exitReason == ExitReason::userClosedSim) {
            gf_requestClose();
        }
    } catch (const UserErrorException& error) {
        gf_showError(error.what());
        gf_forceSystemError();
    } catch (const fmt::format_error& error) {
        gf_showError(gf_currentExceptionText());
        gf_showError(error.what());
        gf_requestStop(ExitReason::systemError, 0);
    } catch (const std::exception&) {
        gf_showError(gf_currentExceptionText());
        gf_requestStop(ExitReason::systemError, 0);
    } catch (...) {
        gf_showError("Unknown exception");
        gf_forceSystemError();
    }
    lf_closingDown();
}

}  // namespace skl
