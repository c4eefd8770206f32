// versions: the version file of a site. Beside the numbers it keeps what each file held when its number was
// raised, as a hash of the plain content, since the same content never enciphers to the same bytes.
#include <fmt/format.h>
#include <sodium.h>

#include <array>
#include <limits>
#include <nlohmann/json.hpp>
#include <system_error>

#include "core/text.h"
#include "core/version.h"
#include "distribution/cipher_key.h"
#include "distribution/updates.h"
#include "distribution/zip_pack.h"
#include "tools/datakit/commands.h"
#include "tools/datakit/output_file.h"
#include "tools/datakit/program_log.h"
#include "tools/datakit/site_tree.h"

namespace skl::datakit {

namespace fs = std::filesystem;

namespace {

using Json = nlohmann::ordered_json;

constexpr const char* hashes = "content_hashes";  // a member that the program passes over

struct Member {
    const char* name;
    std::string_view file;
};
constexpr std::array<Member, 3> members{
    {{"dbase", site_tree::database}, {"aig", site_tree::regcodes}, {"simaddon", site_tree::pack}}};

std::string packText(const fs::path& path) {
    const ProgramLog log;
    const auto files = lf_readPack(readWhole(path));
    if (!files) throw Failure(gf_pathText(path) + ": is no zip");
    std::string text;
    for (const PackFile& file : *files)
        text += fmt::format("{}\n{}\n{}\n", file.stem, file.text.size(), file.text);
    return text;
}

std::string hashOf(std::string_view text) {
    if (sodium_init() < 0) throw Failure("libsodium could not be initialised");
    std::array<unsigned char, crypto_generichash_BYTES> hash{};
    crypto_generichash(hash.data(), hash.size(), reinterpret_cast<const unsigned char*>(text.data()),
                       text.size(), nullptr, 0);
    std::string hex;
    for (const unsigned char byte : hash) hex += fmt::format("{:02x}", byte);
    return hex;
}

Json readVersions(const fs::path& path) {
    std::error_code ignored;
    if (!fs::exists(path, ignored)) return Json::object();
    try {
        Json versions = Json::parse(readWhole(path));
        if (versions.is_object()) return versions;
    } catch (const Json::parse_error& error) {
        throw Failure(
            fmt::format("{}: byte {}: is no JSON, and is left as it is: programs remember the versions that "
                        "they have seen, so write it by hand with numbers above those",
                        gf_pathText(path), error.byte));
    }
    throw Failure(gf_pathText(path) + ": is no JSON object, and is left as it is");
}

/// The version there; nothing if the file tells none. One that cannot be read is not counted up from 0.
std::optional<VersionData> versionThere(const Json& versions, const char* name, const fs::path& path) {
    if (!versions.contains(name)) return std::nullopt;
    const ProgramLog log;
    if (const auto version = lf_toldVersion(nlohmann::json(versions), name)) return version;
    throw Failure(fmt::format("{}: the member '{}' holds no version of three numbers, and is left as it is",
                              gf_pathText(path), name));
}

VersionData raised(VersionData version, Raise raise) {
    int32_t& part = raise == Raise::major   ? version.major
                    : raise == Raise::minor ? version.minor
                                            : version.patch;
    if (part == std::numeric_limits<int32_t>::max()) throw Failure("a version cannot be raised any more");
    ++part;
    if (raise != Raise::patch) version.patch = 0;
    if (raise == Raise::major) version.minor = 0;
    return version;
}

int makeVersions(Job& job) {
    if (job.arguments.rest().size() != 1) throw Misuse("datakit versions needs the folder of a site");
    const Raise raise = raiseOf(job.arguments.one("--raise").value_or("patch"));
    for (const std::string& line : raiseVersions(downloadsOf(job.arguments.rest()[0]), raise))
        job.out << line << '\n';
    return 0;
}

}  // namespace

fs::path downloadsOf(const fs::path& site) {
    fs::path folder = fs::absolute(site).lexically_normal();
    if (!folder.has_filename()) folder = folder.parent_path();  // a slash at the end
    return folder.filename() == site_tree::downloads ? folder : folder / site_tree::downloads;
}

std::string decipheredText(const fs::path& path) {
    const TemporaryFolder folder;
    const fs::path plain = folder.path() / "plain";
    try {
        lf_streamDecrypt(cipherKey, path, plain);
    } catch (const std::runtime_error& error) {
        throw Failure(fmt::format("{}: {}", gf_pathText(path), error.what()));
    }
    return readWhole(plain);
}

Raise raiseOf(const std::string& word) {
    if (word == "major") return Raise::major;
    if (word == "minor") return Raise::minor;
    if (word == "patch") return Raise::patch;
    throw Misuse(fmt::format("--raise takes major, minor or patch, not '{}'", word));
}

std::vector<std::string> raiseVersions(const fs::path& downloads, Raise raise) {
    const fs::path path = downloads / site_tree::versions;
    Json versions = readVersions(path);
    std::vector<std::string> lines;
    if (!versions.contains(hashes) || !versions[hashes].is_object()) versions[hashes] = Json::object();
    for (const auto& [name, file] : members) {
        std::error_code ignored;
        const auto before = versionThere(versions, name, path);
        if (!fs::exists(downloads / file, ignored)) {
            if (before)
                lines.push_back(fmt::format("{}: {} stays, but {} is not there", name, before->text(), file));
            continue;
        }
        const std::string hash =
            hashOf(file == site_tree::pack ? packText(downloads / file) : decipheredText(downloads / file));
        if (before && versions[hashes].value(name, "") == hash) {
            lines.push_back(fmt::format("{}: {} as before", name, before->text()));
            continue;
        }
        const VersionData now = before ? raised(*before, raise) : VersionData{1, 0, 0};
        versions[name] = {{"major", now.major}, {"minor", now.minor}, {"patch", now.patch}};
        versions[hashes][name] = hash;
        lines.push_back(fmt::format("{}: {}, before {}", name, now.text(), before ? before->text() : "none"));
    }
    replaceIfChanged(path, versions.dump(2) + '\n');
    return lines;
}

Command versionsCommand() {
    return {
        {.name = "versions",
         .arguments = "SITE",
         .summary = "raises the versions of the data files that have changed",
         .text =
             R"(Compares dbase.enc, AIG-regcodes.enc and the pack of add-on airports below SITE/downloads with what
they held when their versions were raised last, and raises those that differ in versions.json. A
program fetches a file when its version is above the one that it has.)",
         .options = {{"--raise", "PART", "major, minor or patch (the default)"}}},
        makeVersions};
}

}  // namespace skl::datakit
