// The two edit boxes that take a number.
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>

#include "core/log.h"
#include "core/messages.h"
#include "core/parameter_store.h"
#include "core/parameters.h"
#include "panel/command_parts.h"
#include "panel/controls.h"
#include "panel/panel_state.h"

namespace skl {

namespace {

/// As std::stoi, and the texts of its exceptions the same with every library.
int readInt(const std::string& text) {
    try {
        return std::stoi(text);
    } catch (const std::invalid_argument&) {
        throw std::invalid_argument("invalid stoi argument");
    } catch (const std::out_of_range&) {
        throw std::out_of_range("stoi argument out of range");
    }
}

float readFloat(const std::string& text) {
    float number = 0;
    try {
        number = std::stof(text);
    } catch (const std::invalid_argument&) {
        throw std::invalid_argument("invalid stof argument");
    } catch (const std::out_of_range&) {
        throw std::out_of_range("stof argument out of range");
    }
    if (!std::isfinite(number)) throw std::invalid_argument("invalid stof argument");  // "nan", "inf"
    return number;
}

template <class Box>
void showAgain(Box& box) {
    gf_refreshControl(box);
    gf_invalidate(Band::options);
}

void sayNew(const EditIntParameter& param) {
    gf_showMessage(fmt::format("The new {} is {}", param.name, param.value.load()), false);
}

void sayNew(const EditFloatParameter& param) {
    gf_showMessage(fmt::format("The new {} is {:.1F}", param.name, param.value.load()), false);
}

float clamped(const EditFloatParameter& param, float value) {
    return std::clamp(value, param.min, param.max);
}

void storeFit(int64_t halfHours) {
    MAX_FIT.value = MAX_FIT.clamp(halfHours);
    gf_saveParameter(MAX_FIT);
}

}  // namespace

bool lf_processTbInt(EditIntParameter& param, const std::string& text) {
    bool changed = false;
    try {
        const int wanted = text.empty() ? 0 : readInt(text);
        if (!text.empty() && wanted == param.value) {
            gf_showMessage(fmt::format("Same {} value {}, no changes made", param.name, wanted), true);
        } else {
            param.value = param.clamp(wanted);
            sayNew(param);
            changed = true;
        }
    } catch (const std::invalid_argument&) {
        gf_showMessage(fmt::format("invalid input: {}", text), true);
    } catch (const std::exception& error) {
        gf_logError(fmt::format("{}: {}, h={} ", "lf_processTbInt", error.what(), text));
    }
    showAgain(param);
    return changed;
}

bool lf_processTbFloat(EditFloatParameter& param, const std::string& text) {
    bool changed = false;
    try {
        if (text.empty()) {
            param.value = clamped(param, param.defaultValue);
            storeFit(MAX_FIT.defaultValue);
            changed = true;
        } else if (const float wanted = readFloat(text); wanted == param.value) {
            gf_showMessage(fmt::format("Same {} value {}, no changes made", param.name, wanted), true);
        } else {
            param.value = clamped(param, wanted);
            storeFit(std::llround(param.value * 2) - 1);
            param.value = clamped(param, static_cast<float>(MAX_FIT.value) * 0.5f + 0.5f);
            changed = true;
        }
        if (changed) sayNew(param);
    } catch (const std::exception& error) {
        gf_log(fmt::format("{}: {}, h={}", "lf_processTbFloat", error.what(), text));
    }
    showAgain(param);
    return changed;
}

}  // namespace skl
