#include "panel/edit_texts.h"

#include <fmt/format.h>

#include "core/parameters.h"
#include "parking/stands.h"

namespace skl {

std::string gf_editText(const PanelControl& control) {
    const ControlParameter* parameter = &control.parameter;
    if (parameter == &parking_percentage)
        return g_apfLoaded ? fmt::format("{}", parking_percentage.value.load()) : "";
    if (parameter == &MAX_FIT_FL) return g_apfLoaded ? fmt::format("{:.1F}", MAX_FIT_FL.value.load()) : "";
    const auto* text = dynamic_cast<const EditStringParameter*>(parameter);
    return text ? text->get() : std::string();
}

}  // namespace skl
