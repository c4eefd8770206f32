#include "tools/datakit/csv.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/text.h"

namespace skl::datakit {

namespace {

constexpr size_t mostLinesOfARow = 20;  // a quote that is open for longer was never closed

std::string lower(std::string_view text) {
    std::string out(text);
    for (char& c : out)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return out;
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    return text.substr(0, text.find_last_not_of(blanks) + 1);
}

char dividerOf(std::string_view header) {
    if (header.find(',') != header.npos) return ',';
    if (header.find(';') != header.npos) return ';';
    return header.find('\t') != header.npos ? '\t' : ',';
}

}  // namespace

CsvTable::CsvTable(SourceFile& file, std::vector<Column> columns) : file_(file) {
    Line first;
    do {
        if (!file.next(first))
            throw Failure(file.name() + ": is empty, a header with column names is expected");
    } while (trimmed(first.text).empty());
    divider_ = dividerOf(first.text);
    if (first.text.starts_with('\'')) quote_ = '\'';
    file.putBack({first});
    if (!readRecord()) throw Failure(file.at(first.number).text() + ": the header cannot be read");
    columns_ = fieldCount_;
    for (std::string& name : fields_) name = lower(trimmed(name));
    for (const Column& column : columns) {
        size_t place = placeOf(column.name);
        for (size_t i = 0; place == npos && i < column.aliases.size(); ++i)
            place = placeOf(column.aliases[i]);
        if (place == npos && column.required)
            throw Failure(fmt::format("{}: has no column '{}'", file.at(first.number).text(), column.name));
        if (column.required) needed_ = std::max(needed_, place + 1);
        places_.push_back(place);
    }
}

/// While the header's names are the fields.
size_t CsvTable::placeOf(std::string_view name) const {
    const auto end = fields_.begin() + static_cast<std::ptrdiff_t>(columns_);
    const auto found = std::find(fields_.begin(), end, name);
    return found == end ? npos : static_cast<size_t>(found - fields_.begin());
}

bool CsvTable::next() {
    while (readRecord())
        if (plausible()) return true;
    return false;
}

std::string_view CsvTable::operator[](size_t column) const {
    const size_t place = places_[column];
    return place < fieldCount_ ? trimmed(fields_[place]) : std::string_view();
}

bool CsvTable::plausible() {
    if (fieldCount_ == 1 && trimmed(fields_[0]).empty()) return false;  // an empty line
    // Some programs end each row with a comma.
    while (fieldCount_ > columns_ && trimmed(fields_[fieldCount_ - 1]).empty()) --fieldCount_;
    if (fieldCount_ > columns_) {
        file_.findings().tell(
            "rows of another form", at(),
            fmt::format("{} fields where the header has {}: left out", fieldCount_, columns_));
        return false;
    }
    if (fieldCount_ < columns_ && open_) {
        file_.findings().tell("cut files", at(), "the file ends within this row: left out");
        return false;
    }
    if (fieldCount_ < needed_) {
        file_.findings().tell("rows of another form", at(),
                              fmt::format("{} fields where {} are needed: left out", fieldCount_, needed_));
        return false;
    }
    return true;
}

bool CsvTable::readRecord() {
    Line line;
    while (file_.next(line)) {
        line_ = line.number;
        open_ = line.open;
        if (split(line.text, false)) return true;
        // The quote may close in one of the lines that follow.
        std::string record = line.text;
        std::vector<Line> followers;
        for (Line follower; followers.size() < mostLinesOfARow && file_.next(follower);) {
            followers.push_back(follower);
            open_ = follower.open;
            record += '\n';
            record += follower.text;
            if (follower.text.find(quote_) != std::string::npos && split(record, true)) return true;
        }
        file_.findings().tell("rows of another form", at(), "a quote is never closed: the line is left out");
        file_.putBack(followers);
    }
    return false;
}

/// Fills the fields; false while a quote is open. Over several lines a quote that closes within a field is
/// the opening one of another row, and the first was never closed.
bool CsvTable::split(std::string_view record, bool severalLines) {
    fieldCount_ = 0;
    size_t at = 0;
    for (;;) {
        if (fields_.size() == fieldCount_) fields_.emplace_back();
        std::string& field = fields_[fieldCount_++];
        field.clear();
        if (at < record.size() && record[at] == quote_) {
            for (++at;; ++at) {
                const size_t quote = record.find(quote_, at);
                if (quote == record.npos) return false;
                field += record.substr(at, quote - at);
                at = quote + 1;
                if (at >= record.size() || record[at] != quote_) break;
                field += quote_;
            }
        }
        // What follows a closing quote up to the divider belongs to the field, as spreadsheets take it.
        const size_t end = std::min(record.find(divider_, at), record.size());
        if (severalLines && end != at && !field.empty()) return false;
        field += record.substr(at, end - at);
        if (end == record.size()) return true;
        at = end + 1;
    }
}

std::vector<std::string> itemsOf(std::string_view text, std::string_view dividers) {
    std::vector<std::string> items;
    while (!text.empty()) {
        const std::string_view item = text.substr(0, text.find_first_of(dividers));
        text.remove_prefix(std::min(item.size() + 1, text.size()));
        if (std::string trimmed = gf_trim(item); !trimmed.empty()) items.push_back(std::move(trimmed));
    }
    return items;
}

bool isYes(std::string_view text) {
    return gf_parseBool(text) || text.starts_with('x') || text.starts_with('X');
}

}  // namespace skl::datakit
