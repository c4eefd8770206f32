#include "liveries/aircraft_cfg.h"

#include <algorithm>
#include <fstream>

#include "core/charset.h"
#include "core/text.h"

namespace skl {

namespace {

constexpr size_t usualLines = 4048;
constexpr std::string_view spaces = " \t\n\v\f\r";
constexpr std::string_view header = "[fltsim.";

std::string_view withoutLeadingSpace(std::string_view text) {
    const size_t start = text.find_first_not_of(spaces);
    return start == std::string_view::npos ? std::string_view() : text.substr(start);
}

/// The whole file in one read; false if it cannot be opened.
bool readBytes(const std::filesystem::path& path, std::string& bytes) {
    std::ifstream in;
    in.rdbuf()->pubsetbuf(nullptr, 0);
    in.open(path, std::ios::binary);
    if (!in) return false;
    size_t got = 0;
    size_t room = std::max<size_t>(bytes.capacity(), 16384);
    for (;;) {
        bytes.resize(room);
        in.read(bytes.data() + got, static_cast<std::streamsize>(room - got));
        got += static_cast<size_t>(in.gcount());
        if (got < room) break;
        room *= 2;
    }
    bytes.resize(got);
    return true;
}

}  // namespace

CfgRead lf_readCfg(const std::filesystem::path& path, CfgText& text) {
    text.lines.clear();
    text.lines.reserve(usualLines);
    if (!readBytes(path, text.bytes)) {
        if (!std::filesystem::exists(path)) return CfgRead::gone;
        gf_detectCharset(path);  // says why it cannot be opened
        return CfgRead::failed;
    }
    std::string_view rest = text.bytes;
    if (rest.size() < 2) return CfgRead::noCharset;
    if (rest.starts_with("\xFF\xFE") || rest.starts_with("\xFE\xFF")) {
        text.converted.clear();
        if (!gf_readLines(gf_detectCharset(path), path, text.converted)) return CfgRead::failed;
        text.lines.assign(text.converted.begin(), text.converted.end());
        return CfgRead::done;
    }
    if (rest.starts_with("\xEF\xBB\xBF")) rest.remove_prefix(3);
    while (!rest.empty()) {
        const size_t end = rest.find('\n');
        auto line = rest.substr(0, end);
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        text.lines.push_back(line);
        if (end == std::string_view::npos) break;
        rest.remove_prefix(end + 1);
    }
    return CfgRead::done;
}

std::optional<std::string_view> lf_keyValue(std::string_view line, std::string_view key) {
    std::string_view rest = withoutLeadingSpace(line);
    if (!rest.starts_with(key)) return std::nullopt;
    rest = withoutLeadingSpace(rest.substr(key.size()));
    if (rest.empty() || rest.front() != '=') return std::nullopt;
    rest = withoutLeadingSpace(rest.substr(1));
    if (rest.empty()) return std::nullopt;
    rest = rest.substr(0, rest.find_last_not_of(spaces) + 1);
    // The pattern's value does not reach over a line end, and old files may hold a CR in mid-line.
    if (rest.find_first_of("\r\n") != std::string_view::npos) return std::nullopt;
    return rest;
}

std::string_view lf_unquoted(std::string_view value) {
    if (value.empty() || value.front() != '"') return value;
    const size_t end = value.find('"', 1);
    return end == std::string_view::npos ? std::string_view() : value.substr(1, end - 1);
}

std::string_view lf_trimmed(std::string_view text) {
    constexpr std::string_view ends = " \t\n\r";
    const size_t start = text.find_first_not_of(ends);
    if (start == std::string_view::npos) return {};
    return text.substr(start, text.find_last_not_of(ends) - start + 1);
}

std::optional<std::string_view> lf_sectionNumber(std::string_view line) {
    const size_t bracket = line.find('[');
    if (bracket == std::string_view::npos || line.starts_with("//")) return std::nullopt;
    if (line.find_first_not_of(spaces) == bracket && line.substr(bracket).starts_with(header)) {
        const size_t start = bracket + header.size();
        const size_t end = line.find_first_not_of("0123456789", start);
        if (end != std::string_view::npos && end > start && line[end] == ']' &&
            line.find_first_not_of(spaces, end + 1) == std::string_view::npos)
            return line.substr(start, end - start);
    }
    if (line.find(header, bracket) != std::string_view::npos ||
        line.find("[FLTSIM.", bracket) != std::string_view::npos)
        return "10000";
    return std::nullopt;
}

SectionCheck lf_checkSections(CfgLines lines, std::string_view& wrong) {
    bool any = false;
    bool tooHigh = false;
    for (const auto line : lines) {
        const auto text = lf_sectionNumber(line);
        if (!text) continue;
        any = true;
        const auto number = gf_readInt(*text);
        if (!number) {
            wrong = *text;
            return SectionCheck::unreadableNumber;
        }
        tooHigh = tooHigh || *number < 0 || *number > highestSection;
    }
    if (!any) return SectionCheck::noSection;
    return tooHigh ? SectionCheck::badNumber : SectionCheck::good;
}

void lf_walkSections(CfgLines lines, SectionEnd end, const std::function<void(CfgLines)>& section) {
    constexpr size_t none = static_cast<size_t>(-1);
    size_t start = none;
    const auto close = [&](size_t behind) {
        if (start != none) section(lines.subspan(start, behind - start));
        start = none;
    };
    for (size_t i = 0; i < lines.size(); ++i) {
        if (lf_sectionNumber(lines[i])) {
            close(i);
            start = i;
            continue;
        }
        const size_t bracket = lines[i].find('[');
        const bool ends =
            end == SectionEnd::bracketAnywhere ? bracket != std::string_view::npos : bracket < 6;
        if (ends) close(i);
    }
    close(lines.size());
}

}  // namespace skl
