// The file of the list. It is the user's: every line that is not ours to change stays.
#include <fmt/format.h>

#include <algorithm>
#include <fstream>
#include <system_error>

#include "core/folders.h"
#include "core/log.h"
#include "core/text.h"
#include "parking/airport_list.h"

namespace skl {

namespace {

constexpr std::string_view byteOrderMark = "\xef\xbb\xbf";

std::string firstField(const std::string& line) {
    return gf_trim(line.substr(0, line.find(',')));
}

}  // namespace

std::optional<std::vector<std::string>> lf_parkAirportLines() {
    std::ifstream file(paths::myParkAirports, std::ios::binary);
    if (!file) return {};
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) {
        const bool marked = lines.empty() && line.starts_with(byteOrderMark);
        lines.push_back(gf_trim(marked ? line.substr(byteOrderMark.size()) : line));
    }
    if (file.bad()) return {};
    return lines;
}

void lf_storeParkAirport(const std::string& code) {
    const ParkAirportNode* node = lf_parkAirportNode(code);
    if (!node) return;
    const std::string line = node->stand.empty() ? code : fmt::format("{},{}", code, node->stand);
    const std::string name = gf_pathText(paths::myParkAirports.filename());
    std::vector<std::string> lines;
    std::string told;
    if (auto read = lf_parkAirportLines()) {
        lines = std::move(*read);
        const auto mine = std::find_if(lines.begin(), lines.end(), [&code](const std::string& other) {
            return firstField(other) == code;
        });
        told = fmt::format("{}:{} {}", name, line, mine != lines.end() ? "updated stand" : "new entry");
        if (mine != lines.end())
            *mine = line;
        else
            lines.push_back(line);
    } else {
        std::error_code error;
        if (fs::exists(paths::myParkAirports, error)) {
            // A file that is there and cannot be read is not to be replaced by a single line.
            gf_logError(fmt::format("could not read '{}'", gf_pathText(paths::myParkAirports)));
            return;
        }
        lines = {line};
        told = fmt::format("{} created with {}", name, line);
    }
    std::sort(lines.begin(), lines.end());
    lines.erase(std::unique(lines.begin(), lines.end()), lines.end());
    std::string text;
    for (const std::string& each : lines)
        if (!each.empty()) text += each + '\n';
    if (gf_writeText(text, paths::myParkAirports, false))
        gf_log(told);
    else
        gf_logError(fmt::format("could not save to '{}'", gf_pathText(paths::myParkAirports)));
}

}  // namespace skl
