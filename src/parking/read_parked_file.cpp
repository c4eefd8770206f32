// The stands of the airport in sight come in, and with them the stand that is kept for the user.
#include <fmt/format.h>

#include "airports/airport_file.h"
#include "core/parameters.h"
#include "panel/controls.h"
#include "panel/panel_state.h"
#include "panel/requests.h"
#include "parking/airport_in_sight.h"
#include "parking/airport_list.h"
#include "parking/learning.h"
#include "parking/park_airport.h"
#include "parking/stands.h"
#include "simlink/user_aircraft.h"

namespace skl {

namespace {

constexpr std::string_view routine = "lf_readParkedFile";
constexpr std::string_view unplaced = "unknown";  // the publisher of a generated file that nobody has placed
constexpr int32_t knownQuality = 45;
constexpr size_t knownStands = 20;

/// An airport that is known well is not taught by mere guesses.
void switchLearning() {
    const bool known = qualityFactors.real >= knownQuality && stands.size() >= knownStands;
    if (known && LEARN_SOFT.value.exchange(false)) {
        g_parkingChanged = true;
        gf_invalidate(Band::options);
    }
    learningAllowed = !known;
    gf_enableControl(LEARN_SOFT, learningAllowed);
}

/// The airport joins the list, with the stand that the user is on.
void listAirport() {
    const LaLo user = engineUser.pos();
    if (!positionKnown(user)) return;
    const ParkAirportNode* node = lf_parkAirportNode(parkAirport.code);
    const std::string stand = lf_standOfUser(user);
    const bool changed = !node || (!stand.empty() && stand != node->stand);
    lf_promoteParkAirport(parkAirport.code, stand, parkAirport.pos());
    if (changed) lf_storeParkAirport(parkAirport.code);
}

void reserveListedStand() {
    reservedStand.clear();
    const ParkAirportNode* node = lf_parkAirportNode(parkAirport.code);
    if (!node || node->stand.empty()) return;
    const bool found = lf_findStand(node->stand);
    if (found) reservedStand = node->stand;
    if (g_panel.reservedStandOk.exchange(found) != found) gf_invalidate(Band::parking);
}

void showAirport() {
    gf_setPanelText(&PanelState::airportName, airportFile.airportName, Band::parking);
    gf_setPanelText(&PanelState::airportPublisher, airportFile.publisher, Band::parking);
    gf_setPanelText(&PanelState::qualityText, gf_qualityText(qualityFactors), Band::parking);
}

std::string readStands(const std::string& name) {
    airportFile = {};
    qualityFactors = {};
    std::string reason = gf_readApf(name, airportFile, qualityFactors, stands);
    lf_standsChanged();
    return reason;
}

}  // namespace

std::string lf_readParkedFile() {
    stands.clear();
    lf_standsChanged();
    const std::string name = gf_findAirportFile(parkAirport.code);
    if (name.empty()) return fmt::format("{} {} not found", routine, parkAirport.code);
    if (name.find(unplaced) != std::string::npos)
        return fmt::format("{} {} has publisher:{}, {}", routine, parkAirport.code, unplaced, name);
    std::string reason = readStands(name);
    if (reason.empty()) {
        switchLearning();
        listAirport();
        stands.shrink_to_fit();
        reserveListedStand();
    }
    gf_enableControl(parking_percentage, false);  // until the first fill has ended
    showAirport();
    updatesCount = 0;
    return reason;
}

}  // namespace skl
