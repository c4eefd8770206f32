// Tables of comma separated values: quoted fields with doubled quotes and line ends inside, columns by the
// names of the first row. A header without commas but with semicolons or tabs is divided by those; one that
// begins with a single quote is quoted by those.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tools/datakit/source_file.h"

namespace skl::datakit {

struct Column {
    std::string_view name;  ///< lower case
    bool required = false;  ///< the table must have it; a row that ends before it is left out
    std::vector<std::string_view>
        aliases{};  ///< other names; of several in a table the first of these counts
};

class CsvTable {
  public:
    /// Reads the header. Throws Failure for an empty file and for a missing column.
    CsvTable(SourceFile& file, std::vector<Column> columns);
    /// The next row that can be read; what cannot is told and left out.
    bool next();
    /// A field of the row by the place in the columns asked for, without blanks round it; empty where the
    /// table has no such column.
    std::string_view operator[](size_t column) const;
    bool has(size_t column) const { return places_[column] != npos; }
    Place at() const { return file_.at(line_); }

  private:
    static constexpr size_t npos = static_cast<size_t>(-1);
    size_t placeOf(std::string_view name) const;
    /// False at the end of the file.
    bool readRecord();
    bool split(std::string_view record, bool severalLines);
    bool plausible();

    SourceFile& file_;
    char divider_ = ',', quote_ = '"';
    std::vector<size_t> places_;  ///< of the columns asked for
    size_t columns_ = 0, needed_ = 0;
    std::vector<std::string> fields_;
    size_t fieldCount_ = 0;
    uint64_t line_ = 0;
    bool open_ = false;  ///< the row is the last, and the file ends without a line end
};

/// 1 t T y Y begin a yes, as in the program's own files, and so does x; another text is a no.
bool isYes(std::string_view text);

/// The items of a field that is a list, between commas, semicolons and blanks.
std::vector<std::string> itemsOf(std::string_view text, std::string_view dividers = ",; \t");

}  // namespace skl::datakit
