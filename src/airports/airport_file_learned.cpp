// The learned file laid over the archived one: settings, changed and manual stands, what live traffic taught.
#include <fmt/format.h>

#include <algorithm>
#include <system_error>

#include "airports/airport_file.h"
#include "airports/airport_rows.h"
#include "airports/airport_settings.h"
#include "airports/stand_reader.h"
#include "core/errors.h"
#include "core/fnv.h"
#include "core/folders.h"
#include "core/log.h"
#include "core/messages.h"
#include "core/text.h"
#include "platform/system.h"

namespace skl {

namespace {

/// "EHAM0.xml" beside "EHAM.xml": the next save replaces what could not be read.
void keepCopy(const fs::path& path) {
    fs::path copy = path;
    copy.replace_filename(path.stem());
    copy += "0";
    copy += path.extension();
    std::error_code error;
    platform::copyOver(path, copy, error);
    if (error) gf_logError(fmt::format("could not save to '{}': {}", gf_pathText(copy), error.message()));
}

bool flag(const pugi::xml_node& node, const char* attribute) {
    return gf_parseBool(node.attribute(attribute).value());
}

/// Whether what live traffic taught is there already.
bool isKnown(const std::vector<StandOption>& options, const StandOption& learned) {
    return std::any_of(options.begin(), options.end(), [&learned](const StandOption& option) {
        return option.day == learned.day && option.real == learned.real &&
               (option.hours & learned.hours) != 0 && option.reg == learned.reg &&
               option.airl == learned.airl && option.type == learned.type;
    });
}

void mergeOptions(const pugi::xml_node& node, std::vector<StandOption>& options) {
    int32_t next = options.empty() ? 1 : options.back().optionId + 1;
    for (const pugi::xml_node& child : node.children("opt")) {
        StandOption option = lf_readOption(child, false);
        if (isKnown(options, option)) continue;
        option.optionId = next++;
        options.push_back(std::move(option));
    }
}

void mergeStand(const pugi::xml_node& node, Stand& stand) {
    // A text that is no number leaves the archived radius.
    if (flag(node, "radius_change") && lf_standNumber(node, "radius", stand.id)) {
        stand.radius = lf_standRadius(node, stand.id);
        stand.radiusChanged = true;
    }
    if (flag(node, "cargo_change")) {
        stand.cargo = flag(node, "cargo");
        stand.cargoChanged = true;
    }
    mergeOptions(node, stand.options);
}

/// The walk over the stands of a learned file, with the archived ones at hand by name.
class StandMerger {
  public:
    StandMerger(std::string fileText, std::vector<Stand>& stands)
        : file_(std::move(fileText)), stands_(stands) {
        for (size_t i = 0; i < stands.size(); ++i) byId_.emplace(stands[i].id, i);
    }

    void take(const pugi::xml_node& node) {
        const std::string id = node.attribute("id").value();
        const auto found = byId_.find(id);
        if (flag(node, "manual"))
            addManual(node, id, found != byId_.end());
        else if (found == byId_.end())
            gf_log(fmt::format("learned stand {} in {} not found?", id, file_));
        else
            mergeStand(node, stands_[found->second]);
    }

  private:
    void addManual(const pugi::xml_node& node, const std::string& id, bool exists) {
        if (exists) {
            gf_log(fmt::format("manually created standid {} already exists in {}", id, file_));
            return;
        }
        const LaLo position{lf_standNumber(node, "latitude", id).value_or(0),
                            lf_standNumber(node, "longitude", id).value_or(0)};
        const bool complete = positionKnown(position) && lf_standRadius(node, id) != 0;
        Stand* stand =
            complete && stands_.size() < mostStands ? lf_readStand(node, id, false, stands_) : nullptr;
        if (!stand) {
            gf_log(fmt::format("manually created standid {} misses correct attributes in {}", id, file_));
            return;
        }
        stand->manual = true;
        byId_.emplace(id, stands_.size() - 1);
    }

    std::string file_;
    std::vector<Stand>& stands_;
    StringMap<size_t> byId_;
};

void compareNames(const pugi::xml_document& document, const AirportFile& airportFile) {
    const std::string_view name = lf_rowText(document, "airport_name").value_or("");
    if (name == airportFile.airportName) return;
    gf_showMessage(fmt::format("Warning: learned file airport name: '{}' differs from archived file airport "
                               "name: '{}'",
                               name, airportFile.airportName),
                   true);
}

void merge(const pugi::xml_document& document, const fs::path& path, const AirportFile& airportFile,
           std::vector<Stand>& stands, bool& handmade) {
    gf_log(fmt::format("Read from learned airport file: '{}'", gf_pathText(path)));
    compareNames(document, airportFile);
    lf_readAirportSettings(document);
    const auto row = lf_rowBool(document, "handmade");
    handmade = row.value_or(false);
    if (row) lf_logRow("handmade", handmade);
    if (handmade) {
        stands.clear();
        lf_readStands(document, stands);
        return;
    }
    StandMerger merger(gf_pathText(path), stands);
    for (const pugi::xml_node& node : document.child("parkpositions").children("parkpos")) merger.take(node);
}

}  // namespace

void lf_readLearned(const fs::path& path, AirportFile& airportFile, std::vector<Stand>& stands,
                    bool& handmade) {
    handmade = false;
    pugi::xml_document document;
    const auto loaded = document.load_file(path.c_str());
    if (!loaded) {
        keepCopy(path);
        gf_log(fmt::format("{} found, but could not be loaded, saved as *.0.xml: {}", gf_pathText(path),
                           loaded.description()));
        return;
    }
    try {
        merge(document, path, airportFile, stands, handmade);
    } catch (const UserErrorException&) {
        keepCopy(path);
        throw;
    } catch (const std::exception& error) {
        keepCopy(path);
        gf_log(fmt::format("{}: {}", "lf_readLearned", error.what()));
    }
}

}  // namespace skl
