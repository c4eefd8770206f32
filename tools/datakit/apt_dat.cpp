#include "tools/datakit/apt_dat.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>

#include "core/text.h"

namespace skl::datakit {

namespace {

constexpr double oldestFormat = 1000, newestFormat = 1200;
constexpr double farMetres = 20000;  // a stand so far from its airport is a slip of the pen

template <class Value>
struct Named {
    std::string_view name;
    Value value;
};
constexpr std::array<Named<StandKind>, 4> kinds{{{"gate", StandKind::gate},
                                                 {"hangar", StandKind::hangar},
                                                 {"misc", StandKind::misc},
                                                 {"tie_down", StandKind::tieDown}}};
constexpr std::array<Named<Operation>, 5> operations{{{"none", Operation::none},
                                                      {"general_aviation", Operation::generalAviation},
                                                      {"airline", Operation::airline},
                                                      {"cargo", Operation::cargo},
                                                      {"military", Operation::military}}};
constexpr std::array<Named<unsigned>, 8> userNames{{{"heavy", heavies},
                                                    {"jets", jets},
                                                    {"turboprops", turboprops},
                                                    {"props", props},
                                                    {"helos", helicopters},
                                                    {"fighters", fighters},
                                                    {"all", heavies | jets | turboprops | props},
                                                    {"all_types", heavies | jets | turboprops | props}}};

template <class Table>
auto valueOf(const Table& table, std::string_view name) -> std::optional<decltype(table[0].value)> {
    for (const auto& row : table)
        if (row.name == name) return row.value;
    return std::nullopt;
}

std::string restOf(std::string_view text) {
    return gf_trim(text);
}

/// Places of one sort, and their middle.
class Middle {
  public:
    void add(LaLo place) {
        if (count_ == 0) firstLon_ = place.lon;
        lat_ += place.lat;
        lon_ += wrapLon(place.lon - firstLon_);
        ++count_;
    }
    std::optional<LaLo> get() const {
        if (count_ == 0) return std::nullopt;
        return LaLo{lat_ / count_, wrapLon(firstLon_ + lon_ / count_)};
    }

  private:
    double lat_ = 0, lon_ = 0, firstLon_ = 0;
    int count_ = 0;
};

class Reader {
  public:
    Reader(SourceFile& file, const std::function<void(AptAirport&&)>& take) : file_(file), take_(take) {}

    void read() {
        readHead();
        Line line;
        bool ended = false;
        while (!ended && file_.next(line)) {
            lastLine_ = line.number;
            ended = readRow(line);
        }
        if (!ended)
            tell("cut files", lastLine_,
                 "the file ends without a row 99: its last airport may lack stands, and half a row is left "
                 "out");
        finish();
    }

  private:
    void tell(std::string_view kind, uint64_t line, std::string_view text) {
        file_.findings().tell(kind, file_.at(line), text);
    }

    void readHead() {
        Line line;
        std::string_view mark;
        if (file_.next(line)) mark = line.text;
        if (restOf(mark) != "I" && restOf(mark) != "A")
            throw Failure(file_.name() + ":1: is no apt.dat, whose first line is I or A");
        if (!file_.next(line)) throw Failure(file_.name() + ": ends behind its first line");
        std::string_view text = line.text;
        const auto format = wholeNumber(takeWord(text));
        if (!format || *format < oldestFormat)
            throw Failure(fmt::format("{}:2: '{}' is no format of 1000 to 1200", file_.name(), line.text));
        if (*format > newestFormat)
            tell("newer formats", 2, "a format newer than 1200: what is known of it is read");
    }

    /// Whether the row ends the file.
    bool readRow(const Line& line) {
        std::string_view text = line.text;
        const std::string_view code = takeWord(text);
        if (code == "99") return true;
        if (line.open) return false;  // half a row would be a wrong one
        if (code == "1" || code == "16" || code == "17") {
            finish();
            begin(text, line.number);
        } else if (inAirport_) {
            readPart(code, text, line.number);
        }
        return false;
    }

    void readPart(std::string_view code, std::string_view text, uint64_t line) {
        if (code == "100")
            readEnds(text, line, {8, 17}, landEnds_);
        else if (code == "101")
            readEnds(text, line, {3, 6}, waterEnds_);
        else if (code == "102")
            readEnds(text, line, {1}, helipads_);
        else if (code == "1302")
            readMetadata(text, line);
        else if (code == "15" || code == "1300")
            readStand(text, line, code == "15");
        else if (code == "1301")
            readUse(text, line);
    }

    void begin(std::string_view text, uint64_t line) {
        airport_ = {};
        airport_.line = line;
        inAirport_ = true;
        landEnds_ = waterEnds_ = helipads_ = {};
        datumLat_.clear();
        datumLon_.clear();
        standOpen_ = false;
        const auto feet = wholeNumber(takeWord(text));
        takeWord(text);
        takeWord(text);
        const std::string_view ident = takeWord(text);
        setName(restOf(text));
        if (const auto code = airportCode(ident))
            airport_.code = *code;
        else
            ident_ = ident;
        if (feet && isElevation(*feet))
            airport_.elevation = *feet;
        else
            tell("elevations", line,
                 fmt::format("airport {} has no elevation that can be: left open", ident));
    }

    /// Some names have a mark in front: [H] a heliport, [S] a seaplane base, [X] closed.
    void setName(const std::string& text) {
        const bool marked = text.size() > 3 && text[0] == '[' && text[2] == ']';
        airport_.closed = marked && text[1] == 'X';
        airport_.name = marked ? gf_trim(std::string_view(text).substr(3)) : text;
    }

    /// The places that begin at these words, counted from the one behind the row's code.
    void readEnds(std::string_view text, uint64_t line, std::initializer_list<size_t> at, Middle& middle) {
        std::vector<std::string_view> words;
        for (std::string_view word; !(word = takeWord(text)).empty();) words.push_back(word);
        for (const size_t i : at) {
            const auto place = i + 1 < words.size() ? position(words[i], words[i + 1]) : std::nullopt;
            if (place)
                middle.add(*place);
            else
                tell("positions", line,
                     fmt::format("airport {}: an end of a runway has no place on the globe: "
                                 "left out",
                                 airport_.code));
        }
    }

    void readMetadata(std::string_view text, uint64_t line) {
        const std::string_view key = takeWord(text);
        const std::string value = restOf(text);
        if (value.empty()) return;
        if (key == "datum_lat") {
            datumLat_ = value;
            datumLine_ = line;
        } else if (key == "datum_lon") {
            datumLon_ = value;
            datumLine_ = line;
        } else if (key == "iata_code") {
            airport_.iata = airlineCode(value).value_or("");
        } else if (key == "icao_code") {
            if (const auto code = airportCode(value)) airport_.code = *code;
        }
    }

    void readStand(std::string_view text, uint64_t line, bool old) {
        standOpen_ = false;
        AptStand stand;
        stand.line = line;
        stand.old = old;
        const std::string_view lat = takeWord(text), lon = takeWord(text);
        const std::string_view headingText = takeWord(text);
        const auto place = position(lat, lon);
        const auto heading = wholeNumber(headingText);
        if (!place || !heading) {
            tell("positions", line,
                 fmt::format("{}: '{} {} {}' is no place with a heading: the stand is left out",
                             airport_.code, lat, lon, headingText));
            return;
        }
        stand.place = *place;
        stand.heading = std::fmod(*heading, 360.0);
        if (stand.heading < 0) stand.heading += 360;
        if (!old) readKind(text, line, stand);
        stand.name = restOf(text);
        airport_.stands.push_back(std::move(stand));
        standOpen_ = !old;
    }

    void readKind(std::string_view& text, uint64_t line, AptStand& stand) {
        const std::string_view kind = takeWord(text);
        if (const auto known = valueOf(kinds, kind))
            stand.kind = *known;
        else
            tell("kinds of stands", line,
                 fmt::format("{}: the kind '{}' is not known: taken as misc", airport_.code, kind));
        std::string_view users = takeWord(text);
        while (!users.empty()) {
            const size_t end = std::min(users.find('|'), users.size());
            stand.users |= valueOf(userNames, users.substr(0, end)).value_or(0);
            users.remove_prefix(std::min(end + 1, users.size()));
        }
    }

    void readUse(std::string_view text, uint64_t line) {
        if (!standOpen_) {
            tell("uses of no stand", line, "a row 1301 without its row 1300: left out");
            return;
        }
        standOpen_ = false;
        AptStand& stand = airport_.stands.back();
        const std::string size = gf_upper(takeWord(text));
        if (size.size() == 1 && size[0] >= 'A' && size[0] <= 'F')
            stand.size = size[0];
        else
            tell(
                "sizes of stands", line,
                fmt::format("{}: the size '{}' is none of A to F: taken from its kind", airport_.code, size));
        const std::string_view operation = takeWord(text);
        stand.operation = valueOf(operations, operation).value_or(Operation::none);
        for (std::string_view word; !(word = takeWord(text)).empty();)
            if (auto airline = airlineCode(word)) stand.airlines.push_back(std::move(*airline));
    }

    void choosePlace() {
        if (!datumLat_.empty() || !datumLon_.empty()) {
            airport_.place = position(datumLat_, datumLon_);
            if (airport_.place) return;
            tell("positions", datumLine_,
                 fmt::format("airport {}: '{} {}' is no place: that of its runways is "
                             "taken",
                             airport_.code, datumLat_, datumLon_));
        }
        Middle standMiddle;
        for (const AptStand& stand : airport_.stands) standMiddle.add(stand.place);
        for (const Middle* middle : {&landEnds_, &waterEnds_, &helipads_, &standMiddle})
            if (!airport_.place) airport_.place = middle->get();
    }

    void dropFarStands() {
        if (!airport_.place) return;
        std::erase_if(airport_.stands, [this](const AptStand& stand) {
            const double metres = metresBetween(stand.place, *airport_.place);
            if (metres <= farMetres) return false;
            tell("positions", stand.line,
                 fmt::format("{}: stand '{}' lies {:.0f} km from its airport: left out", airport_.code,
                             stand.name, metres / 1000));
            return true;
        });
    }

    void finish() {
        if (!inAirport_) return;
        inAirport_ = false;
        if (airport_.code.empty()) {
            tell("codes", airport_.line, fmt::format("'{}' is no code of an airport: left out", ident_));
            return;
        }
        choosePlace();
        dropFarStands();
        take_(std::move(airport_));
    }

    SourceFile& file_;
    const std::function<void(AptAirport&&)>& take_;
    AptAirport airport_;
    std::string ident_, datumLat_, datumLon_;
    Middle landEnds_, waterEnds_, helipads_;
    uint64_t lastLine_ = 0, datumLine_ = 0;
    bool inAirport_ = false, standOpen_ = false;
};

}  // namespace

bool isAptDat(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::string line;
    if (!std::getline(file, line)) return false;
    const std::string mark = gf_trim(line.starts_with("\xEF\xBB\xBF") ? line.substr(3) : line);
    return mark == "I" || mark == "A";
}

void readAptDat(SourceFile& file, const std::function<void(AptAirport&&)>& take) {
    Reader(file, take).read();
}

}  // namespace skl::datakit
