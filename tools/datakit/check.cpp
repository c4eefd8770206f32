// check: reads a whole site with the program's own readers, in a folder of its own, and tells what they
// refuse.
#include <fmt/format.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <pugixml.hpp>
#include <set>
#include <system_error>

#include "airports/airport_file.h"
#include "airports/airport_index.h"
#include "core/errors.h"
#include "core/folders.h"
#include "core/parameters.h"
#include "core/text.h"
#include "distribution/stream_cipher.h"
#include "distribution/updates.h"
#include "distribution/zip_pack.h"
#include "liveries/reference_db.h"
#include "liveries/regcodes.h"
#include "parking/park_airport.h"
#include "tools/datakit/codes.h"
#include "tools/datakit/commands.h"
#include "tools/datakit/output_file.h"
#include "tools/datakit/program_log.h"
#include "tools/datakit/site_tree.h"

namespace skl::datakit {

namespace {

constexpr std::string_view nobody = "ZZZZ";  // stands in lists that would be empty
constexpr double farMetres = 20000;

/// The working folder of a program that is to be fed from a site.
class ProgramFolder {
  public:
    ProgramFolder() : before_(fs::current_path()) {
        fs::create_directories(folder_.path() / paths::input);
        fs::create_directories(folder_.path() / paths::airports);
        fs::current_path(folder_.path());
    }
    ~ProgramFolder() {
        std::error_code ignored;
        fs::current_path(before_, ignored);
    }
    ProgramFolder(const ProgramFolder&) = delete;
    ProgramFolder& operator=(const ProgramFolder&) = delete;

  private:
    TemporaryFolder folder_;
    fs::path before_;
};

class Check {
  public:
    Check(Job& job, fs::path downloads)
        : job_(job), downloads_(std::move(downloads)), progress_(job.notes, "check: airport files") {}

    int run() {
        std::error_code error;
        if (!fs::is_directory(downloads_, error)) throw Failure(gf_pathText(downloads_) + ": is no folder");
        const ProgramFolder folder;
        gf_clearAirports();
        gf_clearDbase();
        PARK_FAKE.value = false;  // the file's own stands are wanted
        checkVersions();
        checkDatabase();
        checkRegcodes();
        checkIndex();
        checkAirportFiles();
        checkPack();
        checkPublications();
        job_.out << fmt::format(
            "{} registrations, {} registration rows, {} airports in the index, {} airport files "
            "with {} stands\n",
            dbaseRecords.size(), regcodeRows_, airportIndex.size(), files_, stands_);
        job_.out << (refused_ == 0 ? std::string("nothing would be refused\n")
                                   : fmt::format("{} would be refused\n", refused_));
        return refused_ == 0 ? 0 : 1;
    }

  private:
    Place at(const fs::path& path) const { return {gf_pathText(path), 0}; }
    void refuse(const fs::path& path, std::string_view why) {
        ++refused_;
        job_.findings.tell("refused", at(path), fmt::format("REFUSED: {}", why));
    }
    void note(std::string_view kind, const fs::path& path, std::string_view text) {
        job_.findings.tell(kind, at(path), text);
    }
    void noteComplaints(const fs::path& path) {
        for (const std::string& complaint : log_.complaints()) note("complaints", path, complaint);
    }
    bool there(const fs::path& path) const {
        std::error_code ignored;
        return fs::is_regular_file(path, ignored);
    }

    void checkVersions() {
        const fs::path path = downloads_ / site_tree::versions;
        if (!there(path)) {
            refuse(path, "is not there: no program updates its data");
            return;
        }
        nlohmann::json versions;
        try {
            versions = nlohmann::json::parse(readWhole(path));
        } catch (const nlohmann::json::parse_error& error) {
            refuse(path, fmt::format("ends the start of the program: {}", error.what()));
            return;
        }
        const std::pair<const char*, std::string_view> members[] = {
            {"dbase", site_tree::database}, {"aig", site_tree::regcodes}, {"simaddon", site_tree::pack}};
        for (const auto& [name, file] : members) {
            const bool told = lf_toldVersion(versions, name).has_value(), served = there(downloads_ / file);
            log_.lines();
            if (told && !served)
                refuse(downloads_ / file, "versions.json tells its version, and it is not there");
            if (!told && served)
                refuse(path, fmt::format("tells no version of '{}': {} is never fetched", name, file));
        }
    }

    void checkDatabase() {
        const fs::path path = downloads_ / site_tree::database;
        if (!there(path)) {
            note("not on the site", path, "is not there: a program needs one from elsewhere");
            return;
        }
        fs::create_symlink(path, paths::dbaseEnc);
        try {
            gf_readDbase();
            noteComplaints(path);
        } catch (const std::exception& error) {
            log_.lines();
            refuse(path, fmt::format("ends the start of the program: {}", error.what()));
        }
    }

    void checkRegcodes() {
        const fs::path path = downloads_ / site_tree::regcodes;
        if (!there(path)) {
            note("not on the site", path, "is not there: liveries are tied to no aircraft");
            return;
        }
        if (!gf_streamDecrypt(path, paths::regcodesXml)) {
            refuse(path, "cannot be deciphered: made with another key, or changed");
            return;
        }
        std::vector<RegcodeRow> rows;
        const bool fine = gf_readAigRegcodes(rows);
        gf_removeTemporary(paths::regcodesXml);
        const auto complaints = log_.complaints();
        if (!fine) refuse(path, complaints.empty() ? "cannot be read" : complaints.front());
        for (const std::string& complaint : complaints) note("complaints", path, complaint);
        regcodeRows_ = rows.size();
    }

    void checkIndex() {
        const fs::path path = downloads_ / site_tree::index, namesPath = downloads_ / site_tree::names;
        if (!there(path)) {
            note("not on the site", path,
                 "is not there: a program needs one from elsewhere in its folder input");
            return;
        }
        fs::create_symlink(path, paths::input / site_tree::index);
        try {
            if (!gf_readAirports(site_tree::index)) refuse(path, "holds no airport");
        } catch (const std::exception& error) {
            refuse(path, error.what());
        }
        for (const std::string& line : log_.lines())
            if (line.find(" airports read from ") == line.npos) note("complaints", path, line);
        for (size_t i = 1; i < airportIndex.size(); ++i)
            if (airportIndex[i].code == airportIndex[i - 1].code)
                note("doubled idents", path,
                     fmt::format("airport {} stands there twice", airportIndex[i].code));
        if (!there(namesPath)) {
            note("not on the site", namesPath, "is not there: scanned airports stay without a name");
            return;
        }
        fs::create_symlink(namesPath, paths::input / site_tree::names);
        gf_readAirportNames();
        for (const std::string& complaint : log_.complaints()) refuse(namesPath, complaint);
    }

    void checkAirportFiles() {
        for (const std::string_view simulator : {site_tree::common, site_tree::of2024}) {
            const fs::path archive = downloads_ / simulator / "archive";
            std::error_code error;
            if (!fs::is_directory(archive, error)) continue;
            const fs::path link = paths::airports / simulator;
            fs::create_directory_symlink(downloads_ / simulator, link);
            std::set<fs::path> files;
            for (const auto& entry : fs::recursive_directory_iterator(archive))
                if (entry.is_regular_file()) files.insert(entry.path());
            for (const fs::path& file : files)
                checkAirportFile(file, link / file.lexically_relative(downloads_ / simulator));
        }
    }

    void checkAirportFile(const fs::path& path, const fs::path& local) {
        progress_.step();
        const auto code = airportCode(gf_pathText(path.stem()));
        if (path.extension() != ".xml" || !code || *code != gf_pathText(path.stem())) {
            note("other files", path, "is not called <code>.xml: the program never asks for it");
            return;
        }
        const Airport* airport = gf_findAirport(*code);
        if (!airportIndex.empty() && !airport)
            note("airports out of the index", path,
                 fmt::format("{} is not in the index: never asked for", *code));
        parkAirport = airport ? *airport : Airport{.code = *code};
        const LaLo place = airport ? airport->pos() : LaLo{};
        AirportFile file;
        QualityFactors told;
        std::vector<Stand> stands;
        try {
            const std::string refusal = gf_readApf(local.generic_string(), file, told, stands);
            noteComplaints(path);
            if (!refusal.empty()) {
                refuse(path, refusal);
                return;
            }
        } catch (const UserErrorException& error) {
            log_.lines();
            refuse(path, fmt::format("ends the run of the program: {}", error.what()));
            return;
        }
        ++files_;
        stands_ += stands.size();
        checkFigures(path, told, stands);
        for (const Stand& stand : stands)
            if (airport && metresBetween(stand.pos(), place) > farMetres)
                note("stands far away", path,
                     fmt::format("stand {} lies {:.0f} km from the airport", stand.id,
                                 metresBetween(stand.pos(), place) / 1000));
    }

    void checkFigures(const fs::path& path, QualityFactors told, const std::vector<Stand>& stands) {
        const QualityFactors real = gf_qualityFactors(stands);
        const QualityFactors none{0, 0};
        const bool nothingSeen = real == QualityFactors{} && (told == none || told == QualityFactors{});
        if (told == real || nothingSeen) return;
        note("quality factors", path,
             fmt::format("tells {}/{} where its options give {}/{}", told.real, told.soft, real.real,
                         real.soft));
    }

    void checkPack() {
        const fs::path path = downloads_ / site_tree::pack;
        if (!there(path)) return;
        const auto files = lf_readPack(readWhole(path));
        if (!files) {
            refuse(path, "is no zip");
            return;
        }
        noteComplaints(path);
        fs::create_directories(paths::mySimaddon);
        for (const PackFile& file : *files) {
            const fs::path link = paths::mySimaddon / (file.stem + ".txt");
            gf_writeText(file.text, link, false);
            const std::string name = gf_findAirportFile(file.stem);
            if (name.empty())
                refuse(path, fmt::format("{} links to no airport file", file.stem));
            else if (!there(downloads_ / site_tree::common / name))
                refuse(path, fmt::format("{} links to {}, which is not there", file.stem, name));
        }
        log_.lines();
    }

    /// What the database promises of other airports must be there.
    void checkPublications() {
        const fs::path database = downloads_ / site_tree::database;
        for (const std::string& code : simAddons20) {
            const fs::path file = downloads_ / site_tree::common / site_tree::simaddon / (code + ".xml");
            if (code != nobody && !there(file))
                note("links to nothing", database,
                     fmt::format("simulator's airport {}: {} is not there", code, gf_pathText(file)));
        }
        for (const auto& [rows, simulator] :
             {std::pair{&thirdParties20, site_tree::common}, std::pair{&thirdParties24, site_tree::of2024}})
            for (const ThirdPartyRow& row : *rows)
                for (const std::string& airport : row.arpts) {
                    const fs::path file = downloads_ / simulator / site_tree::thirdparty / row.pub /
                                          (airport.substr(0, 4) + ".xml");
                    if (!there(file))
                        note("links to nothing", database,
                             fmt::format("{} of {}: {} is not there", airport, row.pub, gf_pathText(file)));
                }
    }

    Job& job_;
    const fs::path downloads_;
    Progress progress_;
    ProgramLog log_;
    size_t refused_ = 0, regcodeRows_ = 0, files_ = 0, stands_ = 0;
};

int checkSite(Job& job) {
    if (job.arguments.rest().size() != 1) throw Misuse("datakit check needs the folder of a site");
    return Check(job, downloadsOf(job.arguments.rest()[0])).run();
}

}  // namespace

Command checkCommand() {
    return {
        {.name = "check",
         .arguments = "SITE",
         .summary = "reads a whole site as the program would, and tells what it refuses",
         .text =
             R"(Lets the program's own readers read all that lies below SITE/downloads. Status 1 when they refuse
anything; what they only complain of, and links to files that are not there, is told.)",
         .options = {}},
        checkSite};
}

}  // namespace skl::datakit
