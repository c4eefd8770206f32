// The two files of registration codes: the distributed one (XML), and the user's (text lines "title;regs;#").
#include <fmt/format.h>

#include <algorithm>
#include <pugixml.hpp>
#include <system_error>

#include "core/charset.h"
#include "core/folders.h"
#include "core/log.h"
#include "core/text.h"
#include "liveries/regcodes.h"

namespace skl {

namespace {

constexpr size_t shortestReg = 3, longestReg = 12;
constexpr std::string_view specialMark = "#";

const char* liveriesWord(size_t count) {
    return count == 1 ? "livery" : "liveries";
}

std::vector<std::string> splitRegs(std::string_view text) {
    std::vector<std::string> regs;
    for (const std::string& piece : gf_splitComma(text))
        if (std::string reg = gf_trim(piece); !reg.empty()) regs.push_back(std::move(reg));
    return regs;
}

std::vector<std::string> splitFields(std::string_view line) {
    std::vector<std::string> fields;
    for (size_t end = 0; end != std::string_view::npos;) {
        end = line.find(';');
        fields.push_back(gf_trim(line.substr(0, end)));
        line.remove_prefix(end == std::string_view::npos ? line.size() : end + 1);
    }
    return fields;
}

bool validLength(const std::string& reg, const std::string& path) {
    if (reg.size() >= shortestReg && reg.size() <= longestReg) return true;
    gf_logError(fmt::format("wrong regcode length '{}' in {}", reg, path));
    return false;
}

void readLine(const std::string& line, const std::string& path, std::vector<RegcodeRow>& rows) {
    if (gf_trim(line).empty()) return;
    const auto fields = splitFields(line);
    if (fields.size() == 1) {
        rows.push_back({fields[0], {}, false});
        return;
    }
    if (fields.size() > 3) {
        gf_logError(fmt::format("{}: wrong format '{}'", path, line));
        return;
    }
    auto regs = splitRegs(fields[1]);
    if (regs.empty()) return;
    if (regs.size() == 1) {
        if (validLength(regs[0], path)) rows.push_back({fields[0], std::move(regs), true});
        return;
    }
    std::erase_if(regs, [&](const std::string& reg) { return !validLength(reg, path); });
    if (regs.empty()) {
        gf_logError(fmt::format("{} ; regs empty?", path));
        return;
    }
    rows.push_back({fields[0], std::move(regs), fields.size() == 3 && fields[2] == specialMark});
}

void readFile(const fs::path& file, std::vector<RegcodeRow>& rows) {
    const std::string path = gf_pathText(file);
    gf_log(fmt::format("Processing regcodes file '{}'", path));
    if (fs::file_size(file) == 0) return;  // it has no character set
    std::vector<std::string> lines;
    gf_readLines(gf_detectCharset(file), file, lines);
    for (const std::string& line : lines) readLine(line, path, rows);
}

std::vector<fs::path> textFiles(const fs::path& folder) {
    std::vector<fs::path> files;
    for (const auto& entry : fs::directory_iterator(folder))
        if (entry.is_regular_file() && gf_equalsUpper(gf_pathText(entry.path().extension()), ".TXT"))
            files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

}  // namespace

bool gf_readAigRegcodes(std::vector<RegcodeRow>& rows) {
    const std::string path = gf_pathText(paths::regcodesXml);
    pugi::xml_document document;
    if (!document.load_file(paths::regcodesXml.c_str())) {
        gf_logError(fmt::format("Failed to load {}", path));
        return false;
    }
    bool fine = true;
    const size_t before = rows.size();
    for (const pugi::xml_node node : document.child("AIG-regcodes").children("livery")) {
        RegcodeRow row{node.attribute("title").value(), splitRegs(node.attribute("reg").value()),
                       gf_parseBool(node.attribute("special").value())};
        if (row.title.empty()) continue;
        if (rows.size() > before && rows.back().title == row.title) {
            gf_logError(fmt::format("SAME AS PREVIOUS title '{}'", row.title));
            fine = false;
            continue;
        }
        rows.push_back(std::move(row));
    }
    const size_t count = rows.size() - before;
    gf_log(fmt::format("{} {} read from {}", count, liveriesWord(count), path));
    return fine;
}

bool gf_readMyRegcodes(const fs::path& folder, std::vector<RegcodeRow>& rows) {
    const size_t before = rows.size();
    bool fine = true;
    const auto guarded = [&](auto&& action) {
        try {
            action();
        } catch (const std::exception& error) {
            gf_logError(fmt::format("Error reading regcode files in {}, what: {}", gf_pathText(folder),
                                    error.what()));
            fine = false;
        }
    };
    std::vector<fs::path> files;
    guarded([&] { files = textFiles(folder); });
    for (const fs::path& file : files) guarded([&] { readFile(file, rows); });
    if (!fine && files.empty()) return false;
    const size_t count = rows.size() - before;
    gf_log(fmt::format("{} {}", count, liveriesWord(count)));
    return fine;
}

}  // namespace skl
