#include "tools/datakit/source_file.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <fstream>
#include <sstream>
#include <system_error>

#include "airports/airport_rows.h"
#include "core/text.h"
#include "platform/text_conversion.h"

namespace skl::datakit {

namespace fs = std::filesystem;

namespace {

constexpr size_t bufferSize = 1u << 20;
constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";

/// 0x80 to 0x9F of Windows-1252; 0 where it has no character.
constexpr std::array<uint16_t, 32> upperControls{
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

/// The length of the sequence at the front when it is valid UTF-8, else 0: no overlong forms, no surrogates.
size_t sequenceAt(std::string_view text) {
    const auto byte = [&text](size_t i) { return static_cast<unsigned char>(text[i]); };
    const auto follows = [&](size_t i, unsigned low, unsigned high) {
        return i < text.size() && byte(i) >= low && byte(i) <= high;
    };
    const unsigned lead = byte(0);
    if (lead < 0x80) return 1;
    if (lead >= 0xC2 && lead <= 0xDF) return follows(1, 0x80, 0xBF) ? 2 : 0;
    if (lead >= 0xE0 && lead <= 0xEF) {
        const unsigned low = lead == 0xE0 ? 0xA0 : 0x80, high = lead == 0xED ? 0x9F : 0xBF;
        return follows(1, low, high) && follows(2, 0x80, 0xBF) ? 3 : 0;
    }
    if (lead >= 0xF0 && lead <= 0xF4) {
        const unsigned low = lead == 0xF0 ? 0x90 : 0x80, high = lead == 0xF4 ? 0x8F : 0xBF;
        return follows(1, low, high) && follows(2, 0x80, 0xBF) && follows(3, 0x80, 0xBF) ? 4 : 0;
    }
    return 0;
}

bool isUtf8(std::string_view text) {
    while (!text.empty()) {
        const size_t length = sequenceAt(text);
        if (length == 0) return false;
        text.remove_prefix(length);
    }
    return true;
}

void appendUtf8(std::string& text, unsigned character) {
    if (character < 0x80) {
        text += static_cast<char>(character);
    } else if (character < 0x800) {
        text += static_cast<char>(0xC0 | character >> 6);
        text += static_cast<char>(0x80 | (character & 0x3F));
    } else {
        text += static_cast<char>(0xE0 | character >> 12);
        text += static_cast<char>(0x80 | (character >> 6 & 0x3F));
        text += static_cast<char>(0x80 | (character & 0x3F));
    }
}

/// What is UTF-8 in the line stays, every other byte is a character of Windows-1252.
std::string fromMixed(std::string_view bytes) {
    std::string text;
    while (!bytes.empty()) {
        const size_t length = sequenceAt(bytes);
        if (length) {
            text += bytes.substr(0, length);
        } else {
            const unsigned byte = static_cast<unsigned char>(bytes.front());
            const unsigned mapped = byte < 0xA0 ? upperControls[byte - 0x80] : byte;
            appendUtf8(text, mapped ? mapped : '?');
        }
        bytes.remove_prefix(std::max<size_t>(length, 1));
    }
    return text;
}

std::string fromUtf16(const fs::path& path, bool bigEndian) {
    const std::string bytes = readWhole(path);
    std::u16string units;
    for (size_t at = 2; at + 1 < bytes.size(); at += 2) {
        const unsigned first = static_cast<unsigned char>(bytes[at]);
        const unsigned second = static_cast<unsigned char>(bytes[at + 1]);
        units += static_cast<char16_t>(bigEndian ? first << 8 | second : second << 8 | first);
    }
    try {
        return win32::utf16ToUtf8(units);
    } catch (const std::runtime_error& error) {
        throw Failure(fmt::format("{}: broken UTF-16: {}", gf_pathText(path), error.what()));
    }
}

bool isControl(char c) {
    return static_cast<unsigned char>(c) < ' ' && c != '\t';
}

}  // namespace

SourceFile::SourceFile(const fs::path& path, Findings& findings)
    : name_(gf_pathText(path)), findings_(findings), buffer_(bufferSize) {
    std::error_code ignored;
    if (fs::is_directory(path, ignored)) throw Failure(name_ + ": is a folder, not a file");
    auto file = std::make_unique<std::ifstream>();
    file->rdbuf()->pubsetbuf(buffer_.data(), static_cast<std::streamsize>(buffer_.size()));
    file->open(path, std::ios::binary);
    if (!*file)
        throw Failure(fmt::format("{}: cannot be read: {}", name_, std::generic_category().message(errno)));
    std::string mark(3, '\0');
    file->read(mark.data(), 3);
    mark.resize(static_cast<size_t>(file->gcount()));
    if (mark.starts_with("\x1F\x8B") || mark.starts_with("PK\x03"))
        throw Failure(name_ + ": is packed by gzip or zip: unpack it first");
    if (mark.starts_with("\xFF\xFE") || mark.starts_with("\xFE\xFF")) {
        in_ = std::make_unique<std::istringstream>(fromUtf16(path, mark.front() == '\xFE'));
        return;
    }
    file->clear();
    file->seekg(mark == utf8Mark ? 3 : 0);
    in_ = std::move(file);
}

bool SourceFile::next(Line& line) {
    if (!putBack_.empty()) {
        line = std::move(putBack_.front());
        putBack_.pop_front();
        return true;
    }
    if (!std::getline(*in_, line.text)) {
        if (in_->bad()) throw Failure(fmt::format("{}:{}: could not be read on", name_, number_));
        return false;
    }
    line.open = in_->eof();
    line.number = ++number_;
    if (line.text.ends_with('\r')) line.text.pop_back();
    clean(line);
    return true;
}

void SourceFile::putBack(const std::vector<Line>& lines) {
    putBack_.insert(putBack_.begin(), lines.begin(), lines.end());
}

void SourceFile::clean(Line& line) {
    const bool plain = std::all_of(line.text.begin(), line.text.end(), [](char c) {
        return static_cast<unsigned char>(c) < 0x80 && !isControl(c);
    });
    if (plain) return;
    if (!isUtf8(line.text)) {
        line.text = fromMixed(line.text);
        if (foreign_++ == 0)
            findings_.tell("encoding", at(line.number),
                           "is no UTF-8: such lines of this file are taken as Windows-1252");
    }
    if (std::none_of(line.text.begin(), line.text.end(), isControl)) return;
    std::replace_if(line.text.begin(), line.text.end(), isControl, ' ');
    if (controls_++ == 0)
        findings_.tell("control characters", at(line.number),
                       "holds control characters: in this file they are taken as blanks");
}

std::string_view takeWord(std::string_view& text) {
    constexpr std::string_view blanks = " \t";
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    const std::string_view word = text.substr(0, text.find_first_of(blanks));
    text.remove_prefix(word.size());
    return word;
}

std::optional<double> wholeNumber(std::string_view text) {
    return lf_readDecimal(text);
}

}  // namespace skl::datakit
