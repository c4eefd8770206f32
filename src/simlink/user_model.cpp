// Simulators fill the model text in many ways: a type, a maker's name, the key of a translated text, nothing.
// Each known form has a rule here, in a fixed order.
#include "simlink/user_model.h"

#include <algorithm>
#include <array>
#include <utility>

#include "platform/text_conversion.h"

namespace skl {

namespace {

constexpr size_t longestTitle = 48;

struct Span {
    double halfNm;
    bool found;
};

/// The greatest span where the type has none: too much room round the user is better than too little.
Span spanOf(std::string_view type) {
    const bool found = gf_halfSpanKnown(type);
    return {found ? gf_halfSpanNm(type) : maxHalfSpanNm, found};
}

bool contains(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

std::string replaceRawForm(std::string_view model) {
    static constexpr std::array<std::pair<std::string_view, std::string_view>, 4> forms{{
        {"A350-900", "A359"},
        {"N738B", "B38M"},
        {"777", "772"},
        {"A330-200 (RR)", "A332"},
    }};
    for (const auto& [raw, type] : forms)
        if (model == raw) return std::string(type);
    return std::string(model);
}

/// The type in front of the mark of a text that stands for another one; empty if none is there.
std::string typeBefore(std::string_view model, size_t mark) {
    for (const size_t length : {4u, 3u, 2u}) {
        if (length > mark) continue;
        const auto type = model.substr(mark - length, length);
        if (gf_halfSpanKnown(type)) return std::string(type);
    }
    return {};
}

std::string variantInTitle(std::string_view title) {
    static constexpr std::array<std::pair<std::string_view, std::string_view>, 4> variants{{
        {"DG 737-800", "B738"},
        {"DG 737-700", "B737"},
        {"DG 737-600", "B736"},
        {"DG 737-900", "B739"},
    }};
    for (const auto& [part, type] : variants)
        if (contains(title, part)) return std::string(type);
    return "737";
}

std::string typeOfModel(std::string_view raw, std::string_view title) {
    std::string model = replaceRawForm(raw);
    if (const size_t mark = model.find(".0.text"); mark != std::string::npos) model = typeBefore(model, mark);
    constexpr std::string_view localText = "$$:";
    if (model.size() >= 5 && model.starts_with(localText)) model.erase(0, localText.size());
    if (model == "737") model = variantInTitle(title);
    return model;
}

std::string typeOfTitle(std::string_view title) {
    const auto start = title.substr(0, 13);
    for (const char* type : {"A319", "A320", "A321"})
        if (start == std::string("Aerosoft ") + type) return type;
    return {};
}

bool isCharacterStart(char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
}

}  // namespace

UserModel lf_userModel(std::string_view raw, std::string_view title) {
    if (raw.empty()) {
        constexpr const char* standIn = "CRJ7";
        return {standIn, spanOf(standIn).halfNm, gf_category(standIn), UserModel::From::encrypted};
    }
    std::string model = typeOfModel(raw, title);
    if (contains(model, "camerapod") || contains(model, "Crew Vessel"))
        return {model, spanOf("E190").halfNm, AcCategory::Light, UserModel::From::vehicle};
    if (model.size() < 5)
        if (const Span span = spanOf(model); span.found)
            return {model, span.halfNm, gf_category(model), UserModel::From::model};
    if (const std::string type = typeOfTitle(title); !type.empty())
        if (const Span span = spanOf(type); span.found)
            return {type, span.halfNm, gf_category(type), UserModel::From::title};
    return {model, maxHalfSpanNm, gf_category(model), UserModel::From::nothing};
}

std::string lf_displayTitle(std::string_view title) {
    std::string text;
    try {
        win32::utf8ToUtf16(title);
        text = title;
    } catch (const win32::Utf8ConversionException&) {
        for (const char c : title) {
            const auto byte = static_cast<unsigned char>(c);
            if (byte < 0x80) {
                text += c;
            } else {
                text += static_cast<char>(0xC0 | byte >> 6);
                text += static_cast<char>(0x80 | (byte & 0x3F));
            }
        }
    }
    size_t size = std::min(text.size(), longestTitle);
    while (size > 0 && size < text.size() && !isCharacterStart(text[size])) --size;
    text.resize(size);
    return text;
}

}  // namespace skl
