// See the header.
#include "engine/flight_plan.h"

#include <fmt/format.h>

#include <fstream>
#include <system_error>

#include "core/folders.h"
#include "core/log.h"
#include "core/text.h"
#include "simlink/session.h"

namespace skl {

namespace {

fs::path plansFolder() {
    return gf_programDataPath() / "orig_dest";
}

fs::path planPath(uint32_t objectId) {
    return plansFolder() / fmt::format("{}.pln", objectId);
}

bool folderExists(const fs::path& folder) {
    std::error_code error;
    const bool there = fs::exists(folder, error);
    if (error) throw fs::filesystem_error("exists", folder, error);
    return there;
}

const char* planType(AcCategory category) {
    switch (category) {
        case AcCategory::Buzjets:
        case AcCategory::Large:
        case AcCategory::Heavy:
            return "IFR";
        case AcCategory::Light:
        case AcCategory::HighPerf:
        case AcCategory::Rotorcraft:
            return "VFR";
    }
    return "VFR";
}

bool notEmpty(const std::error_code& error) {
    return error == std::errc::directory_not_empty || error == std::errc::file_exists;
}

/// What cannot be deleted shows when the folder itself is removed.
void emptyFolder(const fs::path& folder) {
    std::error_code ignored;
    for (fs::directory_iterator entry(folder, ignored); entry != fs::directory_iterator();
         entry.increment(ignored)) {
        std::error_code stays;
        fs::remove_all(entry->path(), stays);
    }
}

/// As the content of an XML element: what stands in a route is what somebody has sent.
std::string asXml(std::string_view text) {
    std::string safe;
    for (const char c : text) {
        if (c == '&')
            safe += "&amp;";
        else if (c == '<')
            safe += "&lt;";
        else if (c == '>')
            safe += "&gt;";
        else
            safe += c;
    }
    return safe;
}

/// The file, and on a simulator that takes plans from a program its word for it.
bool attach(const LiveAc& record) {
    const fs::path path = planPath(record.objectId);
    if (!lf_writeFlightPlan(path, record)) return false;
    return !sim2020 || gf_sendFlightPlan(record.objectId, gf_pathText(path));
}

}  // namespace

void gf_createFlightPlanFolder() {
    for (const fs::path& folder : {gf_programDataPath(), plansFolder()})
        if (!folderExists(folder)) fs::create_directories(folder);
}

bool lf_writeFlightPlan(const fs::path& path, const LiveAc& record) {
    // Not replaced in one step: no plan follows another under its name, and a wait for the disk would cost
    // ticks.
    std::ofstream file(path, std::ios::binary);
    file << fmt::format("{}\n{}\n{}\n{}{}{}\n{}{}{}\n{}{}{}\n{}\n{}",  //
                        R"(<?xml version="1.0" encoding="UTF-8"?>)",
                        R"(<SimBase.Document Type="AceXML" version="4,3">)", "<FlightPlan.FlightPlan>",
                        "<FPType>", planType(record.category), "</FPType>",                //
                        "<DepartureID>", asXml(record.origin), "</DepartureID>",           //
                        "<DestinationID>", asXml(record.destination), "</DestinationID>",  //
                        "</FlightPlan.FlightPlan>", "</SimBase.Document>");
    file.close();
    return !file.fail();
}

void lf_attachFlightPlan(LiveAc& record) {
    record.hasFlightPlan = false;
    if (record.origin.empty() || record.destination.empty()) return;
    record.hasFlightPlan = attach(record);
    if (record.hasFlightPlan) return;
    gf_log(fmt::format("{} creating a flight plan failed", gf_identityText(record)));
    lf_deleteFlightPlan(record.objectId);  // nobody else would
}

void lf_deleteFlightPlan(uint32_t objectId) {
    std::error_code ignored;  // there may be none
    fs::remove(planPath(objectId), ignored);
}

void gf_removeFlightPlanFolder() {
    constexpr int attempts = 10;
    const fs::path folder = plansFolder();
    if (!folderExists(folder)) return;
    std::error_code error;
    fs::remove(folder, error);
    if (notEmpty(error)) {
        emptyFolder(folder);
        for (int i = 0; i < attempts && (notEmpty(error) || error == std::errc::permission_denied); ++i)
            fs::remove(folder, error);
    }
    if (error) gf_log(fmt::format("gf_removeFlightPlanFolder: {}", error.message()));
}

}  // namespace skl
