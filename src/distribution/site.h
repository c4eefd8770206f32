// The data site: a plain file server. Without a base (the build's default) there is no site, and every fetch
// fails at once. Worker thread.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "platform/http.h"

namespace skl {

/// Whether a site is configured; told once in the log if not.
bool gf_siteKnown();
/// The base followed by "MSFS/" when `common` or for MSFS 2020, else by "MSFS2024/".
std::string gf_siteUrl(bool common);
/// The base followed by the name of a file.
std::string gf_siteFileUrl(std::string_view name);
/// One GET into a file; true when the whole body was stored. Written beside and renamed, so that a failure
/// leaves an old file as it was. Ends on a stop, and when no byte has come for 10 s.
bool gf_download(const std::string& url, const std::filesystem::path& path, bool binary = false);
/// The same GET into memory, whether a site is configured or not, on any thread. What came before a failure
/// is in `content` too.
platform::HttpResult lf_fetch(const std::string& url, std::string& content);
/// For tests and tools: another base than the build's.
void gf_setSiteBase(std::string base);

}  // namespace skl
