// The learned file of the airport in sight: what the visit has added to the archived one.
#include <fmt/format.h>

#include <system_error>

#include "core/folders.h"
#include "core/log.h"
#include "core/messages.h"
#include "core/text.h"
#include "core/time_text.h"
#include "panel/requests.h"
#include "parking/learning.h"
#include "parking/stands.h"

namespace skl {

namespace {

constexpr std::string_view madeUp = "REGFAKE";  // begins the registration of an option that nobody has seen

bool isChanged(const Stand& stand) {
    return stand.manual || stand.radiusChanged || stand.cargoChanged;
}

/// The stands that the file tells of, with the options that it tells.
std::vector<Stand> standsToSave(bool handmade) {
    std::vector<Stand> saved;
    for (const Stand& stand : stands) {
        Stand copy = stand;
        std::erase_if(copy.options, [handmade](const StandOption& option) {
            return option.reg.starts_with(madeUp) || (option.fromArchive && !handmade);
        });
        if (handmade || isChanged(copy) || !copy.options.empty()) saved.push_back(std::move(copy));
    }
    return saved;
}

AirportFile fileToSave() {
    AirportFile file = airportFile;
    file.stands = standsToSave(file.handmade);
    const QualityFactors quality = file.handmade ? gf_qualityFactors(file.stands) : QualityFactors{};
    file.qfReal = quality.real;
    file.qfSoft = quality.soft;
    return file;
}

bool save(const AirportFile& file) {
    try {
        std::error_code error;  // the file in it fails too, and tells
        fs::create_directories(file.learnedPath.parent_path(), error);
        return gf_writeApf(file, file.learnedPath, ApfMode::learned);
    } catch (const std::exception&) {
        return false;
    }
}

std::string outcomeText(const AirportFile& file, bool saved) {
    const std::string path = gf_pathText(file.learnedPath);
    if (!saved) return fmt::format("{} saving '{}' did not succeed", gf_timeOfDay(), path);
    return fmt::format("{}{} '{}' saved with {} update{} {}", gf_timeOfDay(),
                       file.handmade ? " handmade" : "", path, updatesCount, updatesCount == 1 ? "" : "s",
                       g_parkingChanged ? "and one or more parameter changes" : "");
}

}  // namespace

void lf_saveLearned() {
    const AirportFile file = fileToSave();
    const std::string outcome = outcomeText(file, save(file));
    gf_showMessage(outcome, false);
    gf_log(outcome);  // also when the airport is left because the run ends
    updatesCount = 0;
    g_parkingChanged = false;
}

}  // namespace skl
