// How many aircraft the airport is to show, and the searches that find as many: this half hour first, then
// step by step into the past, the real options before the soft ones.
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>

#include "core/log.h"
#include "core/messages.h"
#include "core/parameters.h"
#include "core/random.h"
#include "core/text.h"
#include "core/time_text.h"
#include "feed/feed.h"
#include "panel/panel_state.h"
#include "parking/stand_fit.h"
#include "parking/stands.h"
#include "parking/statics.h"
#include "simlink/user_aircraft.h"

namespace skl {

std::vector<Candidate> candidates;
int32_t lastFitReal = 0, lastFitSoft = -1;
StringSet seenCallsigns;
std::vector<ParkedAge> liveParkedList;

namespace {

constexpr size_t usualPass = 512;   // finds of a pass without a new allocation
constexpr size_t smallAirport = 3;  // stands; there the percentage counts from one half on only
constexpr int64_t oneHalf = 50;     // percent

/// Half hours as hours, with a decimal where there is a half.
std::string hoursText(int32_t halfHours) {
    return fmt::format("{:.{}f}", halfHours * 0.5 + 0.5, halfHours % 2 == 0 ? 1 : 0);
}

int64_t signedSize(const std::vector<Candidate>& plan) {
    return static_cast<int64_t>(plan.size());
}

int64_t filledStands() {
    return std::count_if(stands.begin(), stands.end(), [](const Stand& stand) { return stand.filled; });
}

void append(std::vector<Candidate>& from) {
    candidates.insert(candidates.end(), std::make_move_iterator(from.begin()),
                      std::make_move_iterator(from.end()));
    from.clear();
}

/// Takes `count` entries off the end, at most all; nothing below 1.
void dropLast(std::vector<Candidate>& plan, int64_t count) {
    plan.resize(static_cast<size_t>(signedSize(plan) - std::clamp<int64_t>(count, 0, signedSize(plan))));
}

int64_t shareOfStands() {
    const int64_t custom = CUSTOM_PARKING_PERCENTAGE.value;
    const int64_t percent = custom >= 0 ? custom : parking_percentage.value.load();
    if (stands.size() <= 1 || (stands.size() <= smallAirport && percent < oneHalf)) return 1;
    return std::llround(static_cast<double>(percent * static_cast<int64_t>(stands.size())) / 100.0);
}

const char* dayName(int32_t day) {
    constexpr std::array names{"Mon", "Tue", "Wed", "Thu", "Fri", "Sat", "Sun"};
    return day >= 1 && day <= static_cast<int32_t>(names.size()) ? names[static_cast<size_t>(day - 1)]
                                                                 : "???";
}

void setSoftMark(bool soft) {
    g_panel.softMark = soft;
    gf_invalidate(Band::parking);
}

void logFound(WeekSlot now, bool real, int64_t found, int32_t offset) {
    if (found < 1) return;
    gf_log(fmt::format("{} {} position{} found, Max fit={} hours{}{}", found, real ? "real" : "soft",
                       gf_plural(static_cast<uint64_t>(found)), hoursText(MAX_FIT.value),
                       WEEK.value ? std::string(", week") : fmt::format(", day {}", now.day),
                       fmt::format(", hh:{} or {} hrs, fit: {} hour", now.halfHour, hoursText(now.halfHour),
                                   hoursText(offset))));
}

void clearPlan() {
    candidates.clear();
    keptStatics.clear();
    liveParkedList.clear();
    g_panel.averageFitLive = -1.0f;
    g_panel.averageFitStatic = -1.0f;
    setSoftMark(false);
    for (Stand& stand : stands) stand.filled = stand.occupied = stand.reserved = stand.blocked = false;
}

/// The best fits stay.
void cutToWanted(int64_t wanted) {
    std::stable_sort(candidates.begin(), candidates.end(),
                     [](const Candidate& a, const Candidate& b) { return a.offset < b.offset; });
    dropLast(candidates, signedSize(candidates) - std::max<int64_t>(wanted, 0));
}

}  // namespace

int64_t lf_wantedStatics() {
    const int64_t most = MAX_PARK_SEL.value;
    const int64_t wanted = most <= 0 ? 0 : std::min(most, shareOfStands());
    maxParkCount = static_cast<int32_t>(wanted);
    g_panel.maxParkPercent = gf_percent(wanted, static_cast<int64_t>(stands.size()));
    gf_invalidate(Band::parking);
    return wanted;
}

void lf_markReserved() {
    if (Stand* stand = lf_findStand(reservedStand)) stand->reserved = true;
    // Empty in the air and off any stand.
    if (Stand* stand = lf_findStand(lf_standOfUser(engineUser.pos()))) stand->reserved = true;
}

void lf_fillStand(Stand& stand) {
    stand.filled = true;
    for (uint32_t sid : stand.adjacent)
        if (Stand* neighbour = lf_findStand(sid)) neighbour->blocked = true;
}

void lf_takeCallsigns() {
    seenCallsigns = gf_takeCallsigns();
}

WeekSlot lf_logNow() {
    const WeekSlot now = gf_weekSlotNow();
    gf_log(fmt::format("\n{} (utc) It is day {} ({}), {} hours", gf_timeOfDay(), now.day, dayName(now.day),
                       hoursText(now.halfHour)));
    return now;
}

bool lf_fitStands(WeekSlot now, bool real, int64_t wanted, std::vector<Candidate>& last) {
    if (wanted == 0) return true;
    const int64_t before = filledStands();
    const StandSearch search(now, real);
    int32_t offset = 0;
    bool reached = false;
    for (; offset <= MAX_FIT.value; ++offset) {
        lf_searchStands(search, offset, last);
        reached = wanted <= filledStands();
        if (reached) break;
        append(last);
    }
    if (real) lastFitReal = offset;
    lastFitSoft = real ? -1 : offset;
    const int64_t found = filledStands() - before;
    logFound(now, real, found, offset);
    setSoftMark(!real && found > 0);
    return reached;
}

void lf_fillClass(WeekSlot now, int64_t wanted, int64_t keep, bool real) {
    std::vector<Candidate> last;
    last.reserve(usualPass);
    if (!lf_fitStands(now, real, wanted, last)) return;
    const int64_t surplus = signedSize(candidates) + signedSize(last) + keep - wanted;
    if (surplus > 0 && RANDOM.value) std::shuffle(last.begin(), last.end(), mt());
    dropLast(last, surplus);
    append(last);
    dropLast(candidates, signedSize(candidates) + keep - wanted);
}

void lf_fillStands(WeekSlot now, int64_t wanted, int64_t keep) {
    lastFitReal = 0;
    lastFitSoft = -1;
    lf_fillClass(now, wanted, keep, true);
    if (wanted <= signedSize(candidates) + keep) return;
    // The made-up options are soft ones.
    if (PARK_SOFT.value || PARK_FAKE.value) lf_fillClass(now, wanted, keep, false);
}

void lf_firstFill() {
    // Locked first, since each change of the lock clears the message.
    lf_lockStatics(true);
    gf_showMessage(
        "Making changes to airport parking parameters is disabled while static parking takes place ...",
        false);
    clearPlan();
    lf_takeCallsigns();
    lf_markReserved();
    const WeekSlot now = lf_logNow();
    const int64_t wanted = lf_wantedStatics();
    if (wanted > 0) lf_fillStands(now, wanted, 0);
    cutToWanted(wanted);
    if (candidates.empty()) {
        gf_log("no parking positions found");
        lf_lockStatics(false);
        return;
    }
    gf_log(fmt::format("{} positions ({}% vs wanted {}%, with Max fit={} hours)\n", candidates.size(),
                       gf_percent(signedSize(candidates), static_cast<int64_t>(stands.size())),
                       parking_percentage.value.load(), hoursText(MAX_FIT.value)));
    std::stable_sort(candidates.begin(), candidates.end(),
                     [](const Candidate& a, const Candidate& b) { return a.offset > b.offset; });
}

void gf_resetStandFit() {
    candidates.clear();
    lastFitReal = 0;
    lastFitSoft = -1;
    seenCallsigns.clear();
    liveParkedList.clear();
}

}  // namespace skl
