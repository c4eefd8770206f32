// Matching a live aircraft to one of 60,000 liveries. As many requests for each rung of the ladder, and as
// many that find nothing; with the log line that each match writes by default.
#include <fmt/format.h>

#include <array>

#include "bench/bench.h"
#include "bench/world_data.h"
#include "core/log.h"
#include "core/parameters.h"
#include "core/random.h"
#include "engine/live_ac.h"
#include "liveries/catalogue.h"
#include "liveries/reference_db.h"

namespace skl::bench {

namespace {

constexpr size_t rungs = 6, requestsARung = 1000;
constexpr size_t kinds = rungs + 1;  // 0: no livery
constexpr int attempts = 5'000'000;
constexpr int ownLiveryEvery = 6;

/// Some liveries belong to one registration each, and are passed over for all others.
std::vector<std::string> markOwnLiveries() {
    std::vector<std::string> registrations;
    int number = 0;
    for (const auto& [airline, types] : liveriesByAirline)
        for (const auto& [type, liveries] : types)
            for (const auto& livery : liveries) {
                if (++number % ownLiveryEvery != 0) continue;
                registrations.push_back(fmt::format("OWN{}", number));
                regcodeToTitle.emplace(registrations.back(), livery.title);
                gf_addSpecialTitle(livery.title);
            }
    return registrations;
}

LiveAc makeRequest(Choice& choice, const std::vector<std::string>& own, int number) {
    LiveAc record;
    record.airline = choice.chance(0.1) ? "PVT" : choice.airline();
    record.model = choice.chance(0.5) ? choice.type() : choice.anyType();
    record.category = gf_category(record.model);
    record.cargo = choice.chance(0.1);
    if (choice.chance(0.1))
        record.regcode = own[static_cast<size_t>(number) % own.size()];
    else if (choice.chance(0.6))
        record.regcode = choice.registration();
    return record;
}

/// The rung at which a request ends.
size_t rungOf(LiveAc& record) {
    const auto before = matchCounters;
    gf_matchLiveLivery(record);
    for (size_t rung = 1; rung <= rungs; ++rung)
        if (matchCounters[rung - 1] != before[rung - 1]) return rung;
    return 0;
}

std::vector<LiveAc> makeRequests(const std::vector<std::string>& own) {
    std::array<std::vector<LiveAc>, kinds> byRung;
    Choice choice(23);
    size_t full = 0;
    for (int i = 0; i < attempts && full < kinds; ++i) {
        LiveAc record = makeRequest(choice, own, i);
        auto& list = byRung.at(rungOf(record));
        if (list.size() >= requestsARung) continue;
        list.push_back(std::move(record));
        if (list.size() == requestsARung) ++full;
    }
    for (size_t rung = 0; rung < kinds; ++rung)
        require(byRung[rung].size() == requestsARung,
                fmt::format("only {} requests for rung {}", byRung[rung].size(), rung));
    std::vector<LiveAc> requests;
    for (size_t i = 0; i < requestsARung; ++i)
        for (auto& list : byRung) requests.push_back(std::move(list[i]));
    return requests;
}

}  // namespace

Rows matchRows() {
    const WorkFolder folder;
    writeDbase("dbase-plain.xml", manyRegistrations);
    gf_readDbaseXml("dbase-plain.xml");
    writeLiveries(manyLiveries);
    SCAN_LIVERIES.value = false;
    gf_startLiveries();
    require(catalogueLoaded, "no catalogue");
    gf_seedRandom(29);
    auto requests = makeRequests(markOwnLiveries());
    gf_startLog();
    double p50 = 1e9, p99 = 1e9;
    for (int run = 0; run < runs; ++run) {
        std::vector<double> times;
        times.reserve(requests.size());
        for (LiveAc& record : requests) times.push_back(secondsOf([&] { gf_matchLiveLivery(record); }));
        p50 = std::min(p50, quantile(times, 0.5));
        p99 = std::min(p99, quantile(times, 0.99));
    }
    gf_closeLog();
    gf_clearCatalogue();
    gf_clearDbase();
    return {{fmt::format("Match, {} liveries, all rungs alike", manyLiveries), "p50 below 10 us",
             fmt::format("{:.1f} us", p50 * 1e6), p50 < 10e-6},
            {"", "p99 below 100 us", fmt::format("{:.1f} us", p99 * 1e6), p99 < 100e-6}};
}

}  // namespace skl::bench
