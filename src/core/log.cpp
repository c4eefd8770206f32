// The log stream. It has no buffer of its own: an entry with its new line goes out in one write, so that a
// crash or a second reader of the file never meets half a line.
#include "core/log.h"

#include <fmt/format.h>

#include <fstream>
#include <stdexcept>
#include <string>
#include <system_error>

#include "core/clock.h"
#include "core/locks.h"
#include "core/run_state.h"
#include "core/text.h"
#include "core/time_text.h"
#include "core/version.h"

namespace skl {

namespace {

namespace fs = std::filesystem;

std::ofstream& stream() {
    static std::ofstream log;
    return log;
}

/// Log.txt gives Log0.txt, and that one Log00.txt.
fs::path olderName(const fs::path& path) {
    std::string name = gf_pathText(path.filename());
    const size_t dot = name.find('.');
    name.insert(dot == std::string::npos ? name.size() : dot, "0");
    return path.parent_path() / gf_pathFromText(name);
}

void rotate(const fs::path& from, const fs::path& to) {
    std::error_code ignored;  // An old log that cannot be kept is no reason to go without a new one.
    if (fs::exists(from, ignored)) fs::rename(from, to, ignored);
}

void writeLine(std::string_view prefix, std::string_view text) {
    std::string line;
    line.reserve(prefix.size() + text.size() + 1);
    line.append(prefix).append(text).push_back('\n');
    LockGuard guard(g_logLock);
    if (!stream().is_open()) return;
    stream().clear();  // A full disk that has room again goes on with the next line.
    stream().write(line.data(), static_cast<std::streamsize>(line.size()));
    stream().flush();
}

}  // namespace

void gf_startLog(const fs::path& path) {
    LockGuard guard(g_logLock);
    gf_closeLog();
    const fs::path older = olderName(path);
    rotate(older, olderName(older));
    rotate(path, older);
    stream().rdbuf()->pubsetbuf(nullptr, 0);
    stream().open(path, std::ios::binary | std::ios::trunc);
    if (!stream()) throw std::runtime_error("Failed to write file " + gf_pathText(path));
    gf_log(fmt::format("{} (utc) {} version {} for {}", gf_timeString(gf_utcSeconds()), programName,
                       programVersion.text(), "MSFS 2020/2024"));
}

void gf_closeLog() {
    LockGuard guard(g_logLock);
    if (stream().is_open()) stream().close();
    stream().clear();
}

void gf_log(std::string_view text) {
    writeLine("", text);
}

void gf_logError(std::string_view text) {
    writeLine("===> ", text);
}

void gf_logIndented(std::string_view text) {
    writeLine("          ", text);
}

void gf_logRunning(std::string_view text) {
    if (!gf_stopping()) writeLine("", text);
}

}  // namespace skl
