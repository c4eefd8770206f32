// Stands and options out of the nodes of an airport file. What makes no sense in a node costs that value, or
// that stand, and is told in the log.
#pragma once

#include <optional>
#include <pugixml.hpp>
#include <string>
#include <vector>

#include "airports/airport_file.h"

namespace skl {

/// More than any airport has; what lies behind is left out.
inline constexpr size_t mostStands = 5000;

/// A number of a <parkpos>: 0 if absent; nothing, and a message, if it is no number.
std::optional<double> lf_standNumber(const pugi::xml_node& node, const char* attribute,
                                     const std::string& id);
/// The radius of a <parkpos> in nautical miles, bounded; 0 if absent.
double lf_standRadius(const pugi::xml_node& node, const std::string& id);
StandOption lf_readOption(const pugi::xml_node& node, bool fromArchive);
/// Appends a <parkpos>; nullptr for one that is left out, as one at 0, 0 is.
Stand* lf_readStand(const pugi::xml_node& node, const std::string& id, bool fromArchive,
                    std::vector<Stand>& stands);
/// Appends all stands of a document, as archived. Throws UserErrorException 94 for a name met twice.
void lf_readStands(const pugi::xml_document& document, std::vector<Stand>& stands);

}  // namespace skl
