// The table of sections, and the walk over the records of those with airports.
#include "airports/bgl.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <utility>

#include "airports/addon_scan.h"
#include "airports/bgl_airport.h"
#include "airports/bgl_record.h"
#include "core/folders.h"
#include "core/text.h"

namespace skl {

namespace {

using Words = std::vector<uint32_t>;

constexpr uint32_t headerSize = 56, sectionSize = 20, airportSection = 3;  // bytes
constexpr uint64_t headerWords = headerSize / 4, sectionWords = sectionSize / 4;
constexpr uint64_t sectionCountWord = 5, shortestFile = 15;
constexpr uint64_t codeWord = 10;
constexpr uint32_t airportRecord = 86, unreadableAirportRecord = 275;
constexpr size_t sectionsAtOnce = 512;

/// Sub-section entries have 16 bytes, or 20 with this bit.
bool shortEntries(uint32_t size) {
    return ((size & 0x10000) | 0x40000) == 0x40000;
}

/// Where something of a section begins.
struct Start {
    uint64_t index;
    uint64_t section;
    bool operator<(const Start& other) const { return index < other.index; }
};

uint64_t sectionHead(uint64_t section) {
    return headerWords + sectionWords * section;
}

/// Entry tables and first records of all sections, ascending: a walk that begins at one ends at the next.
std::vector<Start> sectionStarts(const Words& words, uint64_t sections) {
    std::vector<Start> starts;
    for (uint64_t i = 0; i < sections && sectionHead(i) + 3 < words.size(); ++i) {
        const uint64_t entries = words[sectionHead(i) + 3] / 4;
        starts.push_back({entries, i});
        if (entries + 2 < words.size()) starts.push_back({words[entries + 2] / 4, i});
    }
    std::sort(starts.begin(), starts.end());
    return starts;
}

uint64_t walkEnd(const Words& words, const std::vector<Start>& starts, uint64_t begin, uint64_t section) {
    auto next = std::upper_bound(starts.begin(), starts.end(), Start{begin, 0});
    while (next != starts.end() && next->section == section) ++next;
    return next == starts.end() ? words.size() : std::min<uint64_t>(next->index, words.size());
}

void readAirport(const BglRecord& record, const Words& words, const std::string& path) {
    if (!record.holds(codeWord)) {
        lf_scanLog("Skipped an airport record that is too short in " + path);
        return;
    }
    bool valid = false;
    const std::string code = lf_decodeIdentifierOrRegionCode(record.at(codeWord), valid);
    if (valid) lf_readBglAirport(record, words, code, path);
}

/// False when the file holds an airport in a form that is not read: then all of it is left.
bool walkRecords(const Words& words, uint64_t begin, uint64_t end, const std::string& path) {
    for (uint64_t index = begin; index < end;) {
        const BglRecord record(words, index, end);
        if (record.id() == airportRecord) {
            readAirport(record, words, path);
        } else if (record.id() == unreadableAirportRecord && !sim2020) {
            lf_notRecognised(path);
            return false;
        }
        if (!record.advances()) break;
        index = record.next();
    }
    return true;
}

/// Whether one of the sections is of airports; the file stands behind its header.
bool tableNamesAirports(std::ifstream& file, uint64_t sections) {
    std::vector<uint32_t> table;
    while (sections > 0) {
        const uint64_t count = std::min<uint64_t>(sections, sectionsAtOnce);
        table.resize(count * sectionWords);
        const auto bytes = static_cast<std::streamsize>(count * sectionSize);
        if (!file.read(reinterpret_cast<char*>(table.data()), bytes)) return false;
        for (uint64_t i = 0; i < count; ++i)
            if (table[i * sectionWords] == airportSection) return true;
        sections -= count;
    }
    return false;
}

Words readWords(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    if (!file) return {};
    const auto size = static_cast<uint64_t>(file.tellg());
    Words words((size + 3) / 4);
    file.seekg(0);
    file.read(reinterpret_cast<char*>(words.data()), static_cast<std::streamsize>(size));
    return file ? words : Words{};
}

}  // namespace

std::string lf_decodeIdentifierOrRegionCode(uint32_t value, bool& valid) {
    constexpr uint32_t base = 38, codeLength = 4;
    std::string text;
    valid = true;
    uint32_t rest = value >> 5;
    do {
        const uint32_t digit = rest % base;
        if (digit == 0) valid = false;
        text += static_cast<char>(digit == 0 ? ' ' : digit >= 2 && digit <= 11 ? digit + 46 : digit + 53);
        rest /= base;
    } while (rest > 0);
    std::reverse(text.begin(), text.end());
    valid = valid && text.size() == codeLength;
    return text;
}

bool lf_hasAirportSection(const std::filesystem::path& path) {
    // Most files are looked at no further than here: a buffer of the usual size would read on for nothing.
    std::array<char, 512> buffer;
    std::ifstream file;
    file.rdbuf()->pubsetbuf(buffer.data(), static_cast<std::streamsize>(buffer.size()));
    file.open(path, std::ios::binary);
    std::array<uint32_t, headerWords> header{};
    if (!file.read(reinterpret_cast<char*>(header.data()), headerSize)) return false;
    const uint64_t sections = header[sectionCountWord];
    if (!tableNamesAirports(file, sections)) return false;
    // Asked last, since most files have no airports.
    std::error_code error;
    const uint64_t size = std::filesystem::file_size(path, error);
    return !error && size > headerSize + uint64_t{sectionSize} * sections;
}

void lf_processBGLfile(const std::filesystem::path& path) {
    const Words words = readWords(path);
    if (!words.empty()) lf_processBglWords(words, gf_pathText(path));
}

void lf_processBglWords(const Words& words, const std::string& path) {
    if (lf_bglWord(words, 1) != headerSize || words.size() < shortestFile) return;
    const uint64_t sections = words[sectionCountWord];
    const auto starts = sectionStarts(words, sections);
    for (uint64_t i = 0; i < sections && sectionHead(i) < words.size(); ++i) {
        const uint64_t head = sectionHead(i);
        if (words[head] != airportSection || !shortEntries(lf_bglWord(words, head + 1))) continue;
        const uint64_t entry = lf_bglWord(words, head + 3) / 4;
        const uint64_t first = lf_bglWord(words, entry + 2) / 4;
        if (!walkRecords(words, first, walkEnd(words, starts, first, i), path)) return;
    }
}

}  // namespace skl
