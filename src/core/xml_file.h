// What the program's XML files share: the meta section, and saving beside and renaming.
#pragma once

#include <filesystem>
#include <pugixml.hpp>
#include <string>

namespace skl {

/// Appends the `meta` section (author, version, date, copyright, MSFS); 0 if a node could not be made.
int gf_writeMeta(pugi::xml_document& document);
/// Fills `value` from the info row `name`; false, and an empty value, without such a row.
bool gf_readMeta(const pugi::xml_document& document, const std::string& name, std::string& value);
/// The document as it is written: UTF-8, a declaration, indented by tabs.
std::string lf_xmlText(const pugi::xml_document& document);
/// Saves in one step (written beside, then renamed) and logs "'{}' saved" or "could not save to '{}'".
bool gf_saveXml(const pugi::xml_document& document, const std::filesystem::path& path);

}  // namespace skl
