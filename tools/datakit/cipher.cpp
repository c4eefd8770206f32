// encipher and decipher: one data file, with the key of the program.
#include <fmt/format.h>

#include <filesystem>
#include <system_error>

#include "core/text.h"
#include "distribution/cipher_key.h"
#include "tools/datakit/commands.h"
#include "tools/datakit/output_file.h"
#include "tools/datakit/site_tree.h"

namespace skl::datakit {

namespace {

namespace fs = std::filesystem;

void takeTwo(const Job& job, fs::path& source, fs::path& destination) {
    if (job.arguments.rest().size() != 2) throw Misuse("a source and a destination are needed");
    source = job.arguments.rest()[0];
    destination = job.arguments.rest()[1];
    std::error_code ignored;
    if (fs::equivalent(source, destination, ignored)) throw Misuse("source and destination are one file");
}

int encipher(Job& job) {
    fs::path source, destination;
    takeTwo(job, source, destination);
    gf_streamEncrypt(cipherKey, source, destination);
    return 0;
}

int decipher(Job& job) {
    fs::path source, destination;
    takeTwo(job, source, destination);
    const std::string plain = decipheredText(source);
    if (plain.empty()) throw Failure(gf_pathText(source) + ": holds nothing, the destination stays as it is");
    if (plain.find_last_not_of(" \t\r\n") == plain.npos || plain[plain.find_last_not_of(" \t\r\n")] != '>')
        job.findings.tell("cut files", {gf_pathText(source), 0},
                          "does not end like an XML document: it may be cut off");
    replaceIfChanged(destination, plain);
    return 0;
}

}  // namespace

Command encipherCommand() {
    return {
        {.name = "encipher",
         .arguments = "SOURCE DESTINATION",
         .summary = "a plain data file to one that the program opens",
         .text =
             R"(Enciphers SOURCE, such as dbase.xml, to DESTINATION, such as dbase.enc, with the key that the
program was built with.)",
         .options = {}},
        encipher};
}

Command decipherCommand() {
    return {
        {.name = "decipher",
         .arguments = "SOURCE DESTINATION",
         .summary = "the other way round",
         .text =
             R"(Deciphers SOURCE, such as dbase.enc, to DESTINATION. A file that was made with another key, or has
been changed, is refused.)",
         .options = {}},
        decipher};
}

}  // namespace skl::datakit
