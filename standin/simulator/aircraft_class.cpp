// Beginnings of words that give a class away.
#include "standin/simulator/aircraft_class.h"

#include <array>
#include <cctype>
#include <string>

#include "standin/common/text.h"

namespace simulator {

namespace {

struct Sign {
    std::string_view beginning;
    std::string_view aircraftClass;
};

// The first that fits holds.
constexpr auto kSigns = std::to_array<Sign>({
    {"HELI", "Rotorcraft"},  {"H125", "Rotorcraft"},   {"H135", "Rotorcraft"}, {"H145", "Rotorcraft"},
    {"EC35", "Rotorcraft"},  {"EC45", "Rotorcraft"},   {"EC30", "Rotorcraft"}, {"R22", "Rotorcraft"},
    {"R44", "Rotorcraft"},   {"R66", "Rotorcraft"},    {"B407", "Rotorcraft"}, {"B06", "Rotorcraft"},
    {"A109", "Rotorcraft"},  {"A139", "Rotorcraft"},   {"AS50", "Rotorcraft"}, {"A306", "Heavy"},
    {"A330", "Heavy"},       {"A332", "Heavy"},        {"A333", "Heavy"},      {"A339", "Heavy"},
    {"A34", "Heavy"},        {"A35", "Heavy"},         {"A38", "Heavy"},       {"B74", "Heavy"},
    {"B76", "Heavy"},        {"B77", "Heavy"},         {"B78", "Heavy"},       {"747", "Heavy"},
    {"767", "Heavy"},        {"777", "Heavy"},         {"787", "Heavy"},       {"MD11", "Heavy"},
    {"A310", "Heavy"},       {"A124", "Heavy"},        {"IL96", "Heavy"},      {"A318", "Large"},
    {"A319", "Large"},       {"A320", "Large"},        {"A321", "Large"},      {"A19N", "Large"},
    {"A20N", "Large"},       {"A21N", "Large"},        {"B73", "Large"},       {"B37M", "Large"},
    {"B38M", "Large"},       {"B39M", "Large"},        {"B75", "Large"},       {"737", "Large"},
    {"757", "Large"},        {"BCS", "Large"},         {"E17", "Large"},       {"E19", "Large"},
    {"E29", "Large"},        {"E75", "Large"},         {"CRJ", "Large"},       {"DH8", "Large"},
    {"AT7", "Large"},        {"AT4", "Large"},         {"ATR", "Large"},       {"MD8", "Large"},
    {"F100", "Large"},       {"F16", "HighPerf"},      {"F18", "HighPerf"},    {"F15", "HighPerf"},
    {"F35", "HighPerf"},     {"EUFI", "HighPerf"},     {"HAWK", "HighPerf"},   {"C25", "Buzjets"},
    {"C56", "Buzjets"},      {"C68", "Buzjets"},       {"C700", "Buzjets"},    {"C750", "Buzjets"},
    {"C510", "Buzjets"},     {"CL3", "Buzjets"},       {"CL6", "Buzjets"},     {"GLF", "Buzjets"},
    {"GL5", "Buzjets"},      {"GLEX", "Buzjets"},      {"LJ", "Buzjets"},      {"E55P", "Buzjets"},
    {"F2TH", "Buzjets"},     {"F900", "Buzjets"},      {"FA7X", "Buzjets"},    {"H25", "Buzjets"},
    {"CITATION", "Buzjets"}, {"LONGITUDE", "Buzjets"}, {"LEARJET", "Buzjets"}, {"C15", "Light"},
    {"C17", "Light"},        {"C18", "Light"},         {"C20", "Light"},       {"CESSNA", "Light"},
    {"PIPER", "Light"},      {"PA", "Light"},          {"P28", "Light"},       {"DA4", "Light"},
    {"DA6", "Light"},        {"DA2", "Light"},         {"DV20", "Light"},      {"SR2", "Light"},
    {"BE3", "Light"},        {"BE58", "Light"},        {"M20", "Light"},       {"PC12", "Light"},
});

std::string_view classOfWord(std::string_view word) {
    for (const auto& [beginning, aircraftClass] : kSigns) {
        // A beginning of letters alone must be the whole of a short word or of a name.
        const bool lettersOnly = beginning.find_first_of("0123456789") == std::string_view::npos;
        const bool longEnough = !lettersOnly || beginning.size() > 2 || word.size() <= beginning.size() + 2;
        if (word.starts_with(beginning) && longEnough) {
            return aircraftClass;
        }
    }
    return {};
}

}  // namespace

std::string_view classOf(std::string_view titleOrType) {
    auto text = standin::upperCase(titleOrType);
    for (char& c : text) {
        c = std::isalnum(static_cast<unsigned char>(c)) != 0 ? c : ' ';
    }
    for (const auto& word : standin::words(text)) {
        if (const auto found = classOfWord(word); !found.empty()) {
            return found;
        }
    }
    return "unknown";
}

double halfSpanOf(std::string_view aircraftClass) {
    if (aircraftClass == "Heavy") {
        return 28;
    }
    if (aircraftClass == "Large") {
        return 14;
    }
    return aircraftClass == "Buzjets" ? 8 : 5;
}

}  // namespace simulator
