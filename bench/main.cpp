// Runs the measurements and prints their table. Options: --only WORD takes those whose name holds the word,
// --write FILE puts the table between the marks of that file, --rows FILE adds rows that were measured
// elsewhere: a line "work<TAB>goal<TAB>measured<TAB>pass|MISS|" each. Exit status 1 when a goal is missed.
#include <fmt/format.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>

#include "bench/bench.h"
#include "core/run_state.h"
#include "core/text.h"
#include "core/time_text.h"
#include "platform/system.h"

namespace skl::bench {

namespace {

constexpr std::string_view beginMark = "<!-- figures -->\n", endMark = "<!-- end of figures -->\n";

struct Options {
    std::string only, file, more;
};

Rows measureAll(const std::string& only) {
    Rows all{{"Work", "Goal", "Measured", std::nullopt}};
    for (const auto& [name, run] : measurements()) {
        if (name.find(only) == std::string_view::npos) continue;
        fmt::print(stderr, "measuring {} ...\n", name);
        gf_resetRunState();  // a stop that one measurement has asked for is not the next one's
        try {
            for (Row& row : run()) all.push_back(std::move(row));
        } catch (const std::exception& error) {
            all.push_back({std::string(name), "", fmt::format("not measured: {}", error.what()), false});
        }
    }
    return all;
}

/// Rows that other programs have measured.
Rows readRows(const std::string& file) {
    std::ifstream in(file);
    require(in.is_open(), fmt::format("{} cannot be read", file));
    Rows rows;
    for (std::string line; std::getline(in, line);) {
        std::vector<std::string> fields;
        std::istringstream parts(line);
        for (std::string field; std::getline(parts, field, '\t');) fields.push_back(field);
        require(fields.size() == 3 || fields.size() == 4, fmt::format("no row: {}", line));
        Row row{fields[0], fields[1], fields[2], std::nullopt};
        if (fields.size() == 4) row.met = fields[3] == "pass";
        rows.push_back(std::move(row));
    }
    return rows;
}

std::string tableText(const Rows& rows) {
    size_t work = 0, goal = 0, measured = 0;
    for (const Row& row : rows) {
        work = std::max(work, row.work.size());
        goal = std::max(goal, row.goal.size());
        measured = std::max(measured, row.measured.size());
    }
    const auto line = [&](const Row& row, std::string_view verdict) {
        return fmt::format("| {:{}} | {:{}} | {:{}} | {:4} |\n", row.work, work, row.goal, goal, row.measured,
                           measured, verdict);
    };
    std::string text = line(rows.front(), "");
    text += fmt::format("|{:-<{}}|{:-<{}}|{:-<{}}|------|\n", "", work + 2, "", goal + 2, "", measured + 2);
    for (size_t i = 1; i < rows.size(); ++i)
        text += line(rows[i], !rows[i].met ? "" : *rows[i].met ? "pass" : "MISS");
    return text;
}

void writeTable(const std::string& file, const std::string& table) {
    std::ifstream in(file, std::ios::binary);
    std::string text(std::istreambuf_iterator<char>(in), {});
    const size_t begin = text.find(beginMark);
    const size_t end = text.find(endMark);
    require(begin != std::string::npos && end != std::string::npos && begin < end,
            fmt::format("{} has no marks for the table", file));
    text.replace(begin + beginMark.size(), end - begin - beginMark.size(), table);
    std::string error;
    require(platform::replaceFile(file, text, error), fmt::format("{}: {}", file, error));
}

int run(const Options& options) {
    require(options.only.empty() || options.file.empty(), "a part of the table is not written");
    Rows rows = measureAll(options.only);
    require(rows.size() > 1, "no measurement of that name");
    if (!options.more.empty())
        for (Row& row : readRows(options.more)) rows.push_back(std::move(row));
    const std::string table =
        fmt::format("Measured on {}, {} hardware threads, g++ {}, the least of {} runs.\n\n{}",
                    gf_dateString(), std::thread::hardware_concurrency(), __VERSION__, runs, tableText(rows));
    fmt::print("{}", table);
    if (!options.file.empty()) writeTable(options.file, table);
    return std::any_of(rows.begin(), rows.end(), [](const Row& row) { return row.met == false; }) ? 1 : 0;
}

}  // namespace

}  // namespace skl::bench

int main(int count, char** words) {
    skl::bench::Options options;
    try {
        for (int i = 1; i < count; ++i) {
            const std::string_view word = words[i];
            if (const auto child = skl::bench::childOf(word)) return child();
            skl::bench::require((word == "--only" || word == "--write" || word == "--rows") && i + 1 < count,
                                "usage: skylantern_bench [--only WORD] [--write FILE] [--rows FILE]");
            (word == "--only" ? options.only : word == "--write" ? options.file : options.more) = words[++i];
        }
        return skl::bench::run(options);
    } catch (const std::exception& error) {
        fmt::print(stderr, "{}\n", error.what());
        return 2;
    }
}
