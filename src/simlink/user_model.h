// From the simulator's words for the user's aircraft to its type and wing span.
#pragma once

#include <string>
#include <string_view>

#include "liveries/reference_db.h"

namespace skl {

struct UserModel {
    enum class From {
        model,      ///< the model text is a known type
        vehicle,    ///< no aircraft but a camera or a crew's vehicle: a middling span stands in
        title,      ///< the model text says nothing, the title does
        nothing,    ///< unknown: the greatest span there is
        encrypted,  ///< no model text at all: a common regional jet stands in
    };
    std::string model;  ///< ICAO type, or the raw model where none was found
    double halfSpanNm = 0;
    AcCategory category = AcCategory::Light;
    From from = From::nothing;
};

/// `model` is the text of "ATC MODEL", `title` what is kept of the aircraft's title.
UserModel lf_userModel(std::string_view model, std::string_view title);

/// A title as the panel can show it: UTF-8 of at most 48 bytes, cut at a character. Bytes that are no UTF-8
/// are taken as Latin-1.
std::string lf_displayTitle(std::string_view title);

}  // namespace skl
