// database: the reference database out of tables.
#include <fmt/format.h>

#include <filesystem>

#include "core/text.h"
#include "tools/datakit/commands.h"
#include "tools/datakit/database_data.h"
#include "tools/datakit/output_file.h"

namespace skl::datakit {

namespace {

int makeDatabase(Job& job) {
    const std::filesystem::path out = job.arguments.needed("--out");
    for (const char* option : {"--types", "--airlines", "--registrations"}) job.arguments.needed(option);
    Database database;
    const auto readAll = [&](std::string_view option, void (*read)(SourceFile&, Database&)) {
        for (const std::string& path : job.arguments.all(option)) {
            SourceFile file(path, job.findings);
            read(file, database);
        }
    };
    readAll("--types", readTypes);
    readAll("--airlines", readAirlines);
    readAll("--publishers", readPublishers);
    readAll("--fixes", readFixes);
    readAll("--simaddons", readSimAirports);
    readAll("--publications", readPublications);
    Progress progress(job.notes, "database: registrations");
    RegistrationReader reader(database, progress);
    for (const std::string& path : job.arguments.all("--registrations")) {
        SourceFile file(path, job.findings);
        reader.read(file);
    }
    checkDatabase(database, job.findings);
    replaceIfChanged(out, databaseXml(database, job.findings));
    job.out << fmt::format("{} types, {} airlines, {} registrations to {}\n", database.types.size(),
                           database.airlines.size(), database.registrations.size(), gf_pathText(out));
    return 0;
}

}  // namespace

Command databaseCommand() {
    return {
        {.name = "database",
         .arguments = "",
         .summary = "the reference database: types, airlines, registrations",
         .text =
             R"(Writes dbase.xml out of tables, and tells what is inconsistent in them. Each option may be given
several times; of what stands twice the first is kept.)",
         .options = {{"--out", "FILE", "dbase.xml"},
                     {"--types", "FILE", "type, category (light, business, large, heavy, high_performance,"},
                     {"", "", "rotorcraft), span (metres), cargo, similar (list of types)"},
                     {"--airlines", "FILE", "icao, cargo"},
                     {"--registrations", "FILE", "registration, type, operator, airline (codes), cargo"},
                     {"--fixes", "FILE", "wrong, right: types as add-on liveries misspell them"},
                     {"--publishers", "FILE", "name, aliases: makers of add-on airports"},
                     {"--simaddons", "FILE", "airport: those with scenery of MSFS 2020 itself"},
                     {"--publications", "FILE", "publisher, airport, stands, simulator (2020 or 2024)"}}},
        makeDatabase};
}

}  // namespace skl::datakit
