// Airport files of the data site. Each is asked for once: the answer is remembered, and the last few
// documents are kept, since finding an airport, comparing it with its neighbour and reading it each want the
// same one.
#pragma once

#include <string>
#include <string_view>

namespace skl {

/// Where a file of the site lies.
std::string lf_siteDocumentUrl(std::string_view name);
/// Whether the site has this file.
bool lf_siteHolds(const std::string& name);
/// Its text, nullptr if the site does not give it. Valid until the next call.
const std::string* lf_siteDocument(const std::string& name);

}  // namespace skl
