#include "liveries/similar_types.h"

#include <fmt/format.h>

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "core/log.h"
#include "core/text.h"
#include "liveries/catalogue.h"
#include "liveries/reference_db.h"

namespace skl {

namespace {

constexpr size_t airlineLength = 3;

bool hasLivery(std::string_view type) {
    return titlesByType[0].contains(type) || titlesByType[1].contains(type);
}

/// Each type of each row, followed by the row's other types that have a livery: a text, sorted as such. Where
/// a type stands in two rows the lesser text is the one that counts.
std::set<std::string> similarTexts() {
    std::set<std::string> texts;
    for (const auto& row : similarRows) {
        for (size_t i = 0; i < row.size(); ++i) {
            std::string text = row[i];
            for (size_t j = 0; j < row.size(); ++j)
                if (j != i && hasLivery(row[j])) text.append(",").append(row[j]);
            if (text.find(',') != std::string::npos) texts.insert(std::move(text));
        }
    }
    return texts;
}

}  // namespace

void lf_buildSimilarTypes() {
    similarAvailable.clear();
    similarByAirline.clear();
    for (const auto& text : similarTexts()) {
        auto types = gf_splitComma(text);
        std::string key = std::move(types.front());
        types.erase(types.begin());
        similarAvailable.try_emplace(std::move(key), std::move(types));
    }
    for (const auto& [airline, liveries] : liveriesByAirline) {
        StringMap<std::vector<std::string>> ofAirline;
        for (const auto& [type, similar] : similarAvailable) {
            if (liveries.contains(type)) continue;
            std::vector<std::string> own;
            for (const auto& other : similar)
                if (liveries.contains(other)) own.push_back(other);
            if (!own.empty()) ofAirline.emplace(type, std::move(own));
        }
        if (!ofAirline.empty())
            similarByAirline.try_emplace(airline.substr(0, airlineLength), std::move(ofAirline));
    }
    gf_log(fmt::format("{} similar model definitions", similarAvailable.size()));
}

}  // namespace skl
