// site: lays out the whole tree of a data site. What is there already and not named stays; a file that holds
// the same as before stays too, so that servers and copies see no change. The version file comes last.
#include <fmt/format.h>
#include <zip.h>

#include <algorithm>
#include <map>
#include <memory>
#include <pugixml.hpp>
#include <system_error>

#include "core/errors.h"
#include "core/text.h"
#include "distribution/cipher_key.h"
#include "distribution/zip_pack.h"
#include "liveries/reference_db.h"
#include "tools/datakit/codes.h"
#include "tools/datakit/commands.h"
#include "tools/datakit/generated_stands.h"
#include "tools/datakit/output_file.h"
#include "tools/datakit/program_log.h"
#include "tools/datakit/site_tree.h"

namespace skl::datakit {

namespace {

namespace fs = std::filesystem;

using Pack = std::map<std::string, std::string>;  ///< texts of the link files by their airports

/// A zip of small files, written beside and renamed when it is whole.
void writeZip(const fs::path& path, const Pack& pack) {
    fs::create_directories(path.parent_path());
    fs::path beside = path;
    beside += ".new";
    std::error_code ignored;
    fs::remove(beside, ignored);
    int code = 0;
    const auto fail = [&](const char* what) {
        fs::remove(beside, ignored);
        throw Failure(fmt::format("{}: the pack could not be {}", gf_pathText(path), what));
    };
    std::unique_ptr<zip_t, void (*)(zip_t*)> archive(
        zip_open(beside.c_str(), ZIP_CREATE | ZIP_TRUNCATE, &code), [](zip_t* zip) { zip_discard(zip); });
    if (!archive) fail("opened");
    for (const auto& [name, text] : pack) {
        zip_source_t* source = zip_source_buffer(archive.get(), text.data(), text.size(), 0);
        if (!source) fail("filled");
        if (zip_file_add(archive.get(), (name + ".txt").c_str(), source, ZIP_FL_ENC_UTF_8) < 0) {
            zip_source_free(source);
            fail("filled");
        }
    }
    if (zip_close(archive.get()) != 0) fail("written");
    static_cast<void>(archive.release());
    std::error_code error;
    fs::rename(beside, path, error);
    if (error) fail("put in its place");
}

class SiteJob {
  public:
    explicit SiteJob(Job& job)
        : job_(job),
          downloads_(downloadsOf(job.arguments.needed("--out"))),
          progress_(job.notes, "site: files") {}

    int run() {
        const Raise raise = raiseOf(job_.arguments.one("--raise").value_or("patch"));
        using namespace site_tree;
        const fs::path both = downloads_ / common;
        copyAll("--stock", both / stock);
        copyAll("--simaddon", both / simaddon);
        copyPublishers("--thirdparty", both / thirdparty);
        copyPublishers("--thirdparty24", downloads_ / of2024 / thirdparty);
        if (const auto folder = job_.arguments.one("--airports"))
            for (const std::string_view name : {index, names})
                put(fs::path(*folder) / name, downloads_ / name);
        if (const auto file = job_.arguments.one("--database")) putDatabase(*file);
        if (const auto file = job_.arguments.one("--regcodes")) putRegcodes(*file);
        putPack();
        // A program that sees a new version must find the file that belongs to it.
        for (const std::string& line : raiseVersions(downloads_, raise)) job_.out << line << '\n';
        job_.out << fmt::format("{} files looked at, {} new or changed below {}\n", seen_, changed_,
                                gf_pathText(downloads_));
        return 0;
    }

  private:
    void count(bool changed) {
        ++seen_;
        if (changed) ++changed_;
        progress_.step();
    }

    void put(const fs::path& from, const fs::path& to) { count(replaceIfChanged(to, readWhole(from))); }

    void copyFolder(const fs::path& from, const fs::path& to) {
        std::error_code error;
        if (!fs::is_directory(from, error)) throw Failure(gf_pathText(from) + ": is no folder");
        for (const fs::path& file : airportFiles(from)) {
            if (airportCode(gf_pathText(file.stem())))
                put(file, to / file.filename());
            else
                job_.findings.tell("codes", {gf_pathText(file), 0},
                                   "its name is no code of an airport: left out");
        }
    }

    void copyAll(std::string_view option, const fs::path& to) {
        for (const std::string& folder : job_.arguments.all(option)) copyFolder(folder, to);
    }

    void copyPublishers(std::string_view option, const fs::path& to) {
        for (const std::string& folder : job_.arguments.all(option))
            for (const auto& entry : fs::directory_iterator(folder))
                if (entry.is_directory()) copyFolder(entry.path(), to / entry.path().filename());
    }

    /// Enciphers what differs from what is there.
    void putEnciphered(const fs::path& plain, const std::string& text, const fs::path& to) {
        std::error_code ignored;
        bool changed = true;
        try {
            changed = !fs::exists(to, ignored) || decipheredText(to) != text;
        } catch (const Failure& failure) {
            job_.findings.tell("broken files", {gf_pathText(to), 0},
                               fmt::format("{}: made anew", failure.what()));
        }
        if (changed) {
            fs::create_directories(to.parent_path());
            gf_streamEncrypt(cipherKey, plain, to);
        }
        count(changed);
    }

    void putDatabase(const fs::path& file) {
        const std::string text = readWhole(file);
        ProgramLog log;
        try {
            gf_readDbaseXml(gf_pathText(file));
        } catch (const UserErrorException& error) {
            throw Failure(
                fmt::format("{}: the program would refuse it: {}", gf_pathText(file), error.what()));
        }
        for (const std::string& complaint : log.complaints())
            job_.findings.tell("database", {gf_pathText(file), 0}, complaint);
        gf_clearDbase();
        putEnciphered(file, text, downloads_ / site_tree::database);
    }

    void putRegcodes(const fs::path& file) {
        const std::string text = readWhole(file);
        pugi::xml_document document;
        const auto loaded = document.load_buffer(text.data(), text.size());
        if (!loaded)
            throw Failure(fmt::format("{}:{}: {}", gf_pathText(file),
                                      lineAt(text, static_cast<size_t>(loaded.offset)),
                                      loaded.description()));
        if (!document.child("AIG-regcodes"))
            throw Failure(gf_pathText(file) +
                          ": the program would refuse it, it has no element AIG-regcodes");
        putEnciphered(file, text, downloads_ / site_tree::regcodes);
    }

    void putPack() {
        Pack pack;
        for (const std::string& word : job_.arguments.list("--simaddon24")) {
            const auto code = airportCode(word);
            if (!code) throw Misuse(fmt::format("--simaddon24: '{}' is no code of an airport", word));
            const std::string archived = fmt::format("{}/{}.xml", site_tree::simaddon, *code);
            std::error_code ignored;
            if (fs::exists(downloads_ / site_tree::common / archived, ignored))
                pack[*code] = archived + '\n';
            else
                job_.findings.tell("links to nothing", {"--simaddon24", 0},
                                   fmt::format("{} has no file in {}: left out", *code, site_tree::simaddon));
        }
        if (!job_.arguments.has("--simaddon24")) return;
        const fs::path path = downloads_ / site_tree::pack;
        std::error_code ignored;
        bool changed = true;
        if (fs::exists(path, ignored)) {
            const ProgramLog log;
            Pack there;
            if (const auto files = lf_readPack(readWhole(path)))
                for (const PackFile& file : *files) there[file.stem] = file.text;
            changed = there != pack;
        }
        if (pack.empty()) throw Failure("the pack would be empty, nothing is written");
        if (changed) writeZip(path, pack);
        count(changed);
    }

    Job& job_;
    const fs::path downloads_;
    Progress progress_;
    size_t seen_ = 0, changed_ = 0;
};

}  // namespace

Command siteCommand() {
    return {
        {.name = "site",
         .arguments = "",
         .summary = "lays out the tree of a data site, for any static web server",
         .text =
             R"(Puts what is named below SITE/downloads, enciphers what the program wants enciphered, and raises the
versions of what has changed. What is there and not named stays.)",
         .options = {{"--out", "SITE", "the folder that a web server serves"},
                     {"--airports", "DIR", "with airports_msfs.xml and airports_msfs_names.xml"},
                     {"--database", "FILE", "dbase.xml"},
                     {"--regcodes", "FILE", "AIG-regcodes.xml"},
                     {"--stock", "DIR", "stock airport files"},
                     {"--simaddon", "DIR", "airport files for airports that come with the simulator"},
                     {"--simaddon24", "CODES", "of those, the ones of MSFS 2024: made into its pack"},
                     {"--thirdparty", "DIR", "a folder a publisher, with airport files for MSFS 2020"},
                     {"--thirdparty24", "DIR", "the same for MSFS 2024"},
                     {"--raise", "PART", "of a version: major, minor or patch (the default)"}}},
        [](Job& job) { return SiteJob(job).run(); }};
}

}  // namespace skl::datakit
