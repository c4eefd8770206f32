// check: reads a whole site, a folder or one that is served, with the program's own readers in a folder of
// its own, and tells what they refuse.
#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <pugixml.hpp>
#include <set>
#include <system_error>

#include "airports/airport_file.h"
#include "airports/airport_index.h"
#include "core/errors.h"
#include "core/fnv.h"
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
#include "tools/datakit/site_files.h"
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
    Check(Job& job, const std::string& site)
        : job_(job), site_(site), progress_(job.notes, "check: airport files") {
        for (const std::string& word : job.arguments.list("--only")) {
            const auto code = airportCode(word);
            if (!code) throw Misuse(fmt::format("--only: '{}' is no code of an airport", word));
            only_.insert(*code);
        }
    }

    int run() {
        const ProgramFolder folder;
        gf_clearAirports();
        gf_clearDbase();
        PARK_FAKE.value = false;  // the file's own stands are wanted
        checkVersions();
        checkDatabase();
        checkRegcodes();
        checkIndex();
        checkPack();
        checkPromises();
        checkAirportFiles();
        job_.out << fmt::format(
            "{} registrations, {} registration rows, {} airports in the index, {} airport files "
            "with {} stands\n",
            dbaseRecords.size(), regcodeRows_, airportIndex.size(), files_, stands_);
        job_.out << (refused_ == 0 ? std::string("nothing would be refused\n")
                                   : fmt::format("{} would be refused\n", refused_));
        return refused_ == 0 ? 0 : 1;
    }

  private:
    // Files are called by their names in SiteFiles.
    void refuse(const std::string& name, std::string_view why) {
        ++refused_;
        job_.findings.tell("refused", {site_.shown(name), 0}, fmt::format("REFUSED: {}", why));
    }
    void note(std::string_view kind, const std::string& name, std::string_view text) {
        job_.findings.tell(kind, {site_.shown(name), 0}, text);
    }
    void noteComplaints(const std::string& name) {
        for (const std::string& complaint : log_.complaints()) note("complaints", name, complaint);
    }
    /// One that cannot be fetched counts as refused, once.
    SiteFiles::Answer look(const std::string& name) {
        const SiteFiles::Answer answer = site_.look(name);
        if (answer == SiteFiles::Answer::failed && failed_.insert(name).second)
            refuse(name, fmt::format("cannot be fetched: {}", site_.trouble(name)));
        return answer;
    }
    bool there(const std::string& name) { return look(name) == SiteFiles::Answer::here; }
    bool missing(const std::string& name) { return look(name) == SiteFiles::Answer::missing; }

    void checkVersions() {
        const std::string name{site_tree::versions};
        if (missing(name)) refuse(name, "is not there: no program updates its data");
        if (!there(name)) return;
        nlohmann::json versions;
        try {
            versions = nlohmann::json::parse(readWhole(site_.local(name)));
        } catch (const nlohmann::json::parse_error& error) {
            refuse(name, fmt::format("ends the start of the program: {}", error.what()));
            return;
        }
        const std::pair<const char*, std::string_view> members[] = {
            {"dbase", site_tree::database}, {"aig", site_tree::regcodes}, {"simaddon", site_tree::pack}};
        for (const auto& [member, told] : members) {
            const std::string file{told};
            const bool version = lf_toldVersion(versions, member).has_value();
            log_.lines();
            if (version && missing(file))
                refuse(file, "versions.json tells its version, and it is not there");
            if (!version && there(file))
                refuse(name, fmt::format("tells no version of '{}': {} is never fetched", member, file));
        }
    }

    void checkDatabase() {
        const std::string name{site_tree::database};
        if (missing(name)) note("not on the site", name, "is not there: a program needs one from elsewhere");
        if (!there(name)) return;
        fs::create_symlink(site_.local(name), paths::dbaseEnc);
        try {
            gf_readDbase();
            noteComplaints(name);
        } catch (const std::exception& error) {
            log_.lines();
            refuse(name, fmt::format("ends the start of the program: {}", error.what()));
        }
    }

    void checkRegcodes() {
        const std::string name{site_tree::regcodes};
        if (missing(name)) note("not on the site", name, "is not there: liveries are tied to no aircraft");
        if (!there(name)) return;
        if (!gf_streamDecrypt(site_.local(name), paths::regcodesXml)) {
            refuse(name, "cannot be deciphered: made with another key, or changed");
            return;
        }
        std::vector<RegcodeRow> rows;
        const bool fine = gf_readAigRegcodes(rows);
        gf_removeTemporary(paths::regcodesXml);
        const auto complaints = log_.complaints();
        if (!fine) refuse(name, complaints.empty() ? "cannot be read" : complaints.front());
        for (const std::string& complaint : complaints) note("complaints", name, complaint);
        regcodeRows_ = rows.size();
    }

    void checkIndex() {
        const std::string name{site_tree::index}, names{site_tree::names};
        if (missing(name))
            note("not on the site", name,
                 "is not there: a program needs one from elsewhere in its folder input");
        if (!there(name)) return;
        fs::create_symlink(site_.local(name), paths::input / site_tree::index);
        try {
            if (!gf_readAirports(site_tree::index)) refuse(name, "holds no airport");
        } catch (const std::exception& error) {
            refuse(name, error.what());
        }
        for (const std::string& line : log_.lines())
            if (line.find(" airports read from ") == line.npos) note("complaints", name, line);
        for (size_t i = 1; i < airportIndex.size(); ++i)
            if (airportIndex[i].code == airportIndex[i - 1].code)
                note("doubled idents", name,
                     fmt::format("airport {} stands there twice", airportIndex[i].code));
        if (missing(names))
            note("not on the site", names, "is not there: scanned airports stay without a name");
        if (!there(names)) return;
        fs::create_symlink(site_.local(names), paths::input / site_tree::names);
        gf_readAirportNames();
        for (const std::string& complaint : log_.complaints()) refuse(names, complaint);
    }

    void checkPack() {
        const std::string name{site_tree::pack};
        if (!there(name)) return;
        const auto files = lf_readPack(readWhole(site_.local(name)));
        if (!files) {
            refuse(name, "is no zip");
            return;
        }
        noteComplaints(name);
        fs::create_directories(paths::mySimaddon);
        for (const PackFile& file : *files) {
            gf_writeText(file.text, paths::mySimaddon / (file.stem + ".txt"), false);
            const std::string linked = gf_findAirportFile(file.stem);
            const std::string archived = fmt::format("{}/{}", site_tree::common, linked);
            if (linked.empty())
                refuse(name, fmt::format("{} links to no airport file", file.stem));
            else if (missing(archived))
                refuse(name, fmt::format("{} links to {}, which is not there", file.stem, linked));
            else if (there(archived))
                promised_.insert(archived);
        }
        log_.lines();
    }

    /// What the database promises of other airports must be there.
    void checkPromises() {
        for (const std::string& code : simAddons20)
            if (code != nobody)
                checkPromise(fmt::format("{}/{}/{}.xml", site_tree::common, site_tree::simaddon, code),
                             fmt::format("simulator's airport {}", code));
        for (const auto& [rows, simulator] :
             {std::pair{&thirdParties20, site_tree::common}, std::pair{&thirdParties24, site_tree::of2024}})
            for (const ThirdPartyRow& row : *rows)
                for (const std::string& airport : row.arpts)
                    checkPromise(fmt::format("{}/{}/{}/{}.xml", simulator, site_tree::thirdparty, row.pub,
                                             airport.substr(0, 4)),
                                 fmt::format("{} of {}", airport, row.pub));
    }

    void checkPromise(const std::string& name, const std::string& what) {
        if (missing(name))
            note("links to nothing", std::string(site_tree::database),
                 fmt::format("{}: {} is not there", what, site_.shown(name)));
        else if (there(name))
            promised_.insert(name);
    }

    void checkAirportFiles() {
        for (const std::string_view simulator : {site_tree::common, site_tree::of2024}) {
            const fs::path folder = site_.local(std::string(simulator));
            if (site_.served()) fs::create_directories(folder);
            fs::create_directory_symlink(folder, paths::airports / simulator);
        }
        for (const std::string& name : site_.served() ? airportFilesAskedFor() : airportFilesThere()) {
            const fs::path file = gf_pathFromText(name);
            const std::string stem = gf_pathText(file.stem());
            if (!only_.empty() && !only_.contains(stem)) continue;
            if (!site_.served()) progress_.step();
            const auto code = airportCode(stem);
            if (file.extension() != ".xml" || !code || *code != stem)
                note("other files", name, "is not called <code>.xml: the program never asks for it");
            else if (there(name))
                checkAirportFile(name, *code);
        }
    }

    std::set<std::string> airportFilesThere() const {
        std::set<std::string> names;
        for (const std::string_view simulator : {site_tree::common, site_tree::of2024})
            names.merge(site_.below(fmt::format("{}/archive", simulator)));
        return names;
    }

    /// Nobody can list what a server has: a program asks for a stock file when it is at an airport of the
    /// index.
    std::set<std::string> airportFilesAskedFor() {
        std::set<std::string> names = promised_;
        for (const Airport& airport : airportIndex)
            if (only_.empty() || only_.contains(airport.code))
                names.insert(fmt::format("{}/{}/{}.xml", site_tree::common, site_tree::stock, airport.code));
        Progress progress(job_.notes, "check: airports asked for", names.size());
        site_.lookAhead(names, progress);
        std::erase_if(names, [this](const std::string& name) { return !there(name); });
        return names;
    }

    void checkAirportFile(const std::string& name, const std::string& code) {
        const Airport* airport = gf_findAirport(code);
        if (!airportIndex.empty() && !airport)
            note("airports out of the index", name,
                 fmt::format("{} is not in the index: never asked for", code));
        parkAirport = airport ? *airport : Airport{.code = code};
        const LaLo place = airport ? airport->pos() : LaLo{};
        AirportFile file;
        QualityFactors told;
        std::vector<Stand> stands;
        try {
            const fs::path local = paths::airports / gf_pathFromText(name);
            const std::string refusal = gf_readApf(local.generic_string(), file, told, stands);
            noteComplaints(name);
            if (!refusal.empty()) {
                refuse(name, refusal);
                return;
            }
        } catch (const UserErrorException& error) {
            log_.lines();
            refuse(name, fmt::format("ends the run of the program: {}", error.what()));
            return;
        }
        ++files_;
        stands_ += stands.size();
        checkFigures(name, told, stands);
        for (const Stand& stand : stands)
            if (airport && metresBetween(stand.pos(), place) > farMetres)
                note("stands far away", name,
                     fmt::format("stand {} lies {:.0f} km from the airport", stand.id,
                                 metresBetween(stand.pos(), place) / 1000));
    }

    void checkFigures(const std::string& name, QualityFactors told, const std::vector<Stand>& stands) {
        const QualityFactors real = gf_qualityFactors(stands);
        const QualityFactors none{0, 0};
        const bool nothingSeen = real == QualityFactors{} && (told == none || told == QualityFactors{});
        if (told == real || nothingSeen) return;
        note("quality factors", name,
             fmt::format("tells {}/{} where its options give {}/{}", told.real, told.soft, real.real,
                         real.soft));
    }

    Job& job_;
    SiteFiles site_;
    Progress progress_;
    ProgramLog log_;
    StringSet only_;
    std::set<std::string> failed_, promised_;  ///< names; promised: by pack and database, and there
    size_t refused_ = 0, regcodeRows_ = 0, files_ = 0, stands_ = 0;
};

int checkSite(Job& job) {
    if (job.arguments.rest().size() != 1) throw Misuse("datakit check needs a site: a folder or an address");
    return Check(job, job.arguments.rest()[0]).run();
}

}  // namespace

Command checkCommand() {
    return {{.name = "check",
             .arguments = "SITE",
             .summary = "reads a whole site as the program would, and tells what it refuses",
             .text =
                 R"(Lets the program's own readers read a site. SITE is a folder, of which all that lies below
SITE/downloads is read; or the address of one that is served, http://... or https://..., from which all is
fetched that a program would fetch: its data files, and the airport files of the index, of the pack and of
the database, each by a request of its own. Status 1 when the readers refuse anything; what they only
complain of, and links to files that are not there, is told.)",
             .options = {{"--only", "CODES", "the files of these airports alone, a comma list"}}},
            checkSite};
}

}  // namespace skl::datakit
