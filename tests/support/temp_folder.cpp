#include "tests/support/temp_folder.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <random>
#include <sstream>

#include "core/log.h"
#include "core/parameters.h"
#include "core/run_state.h"
#ifdef _WIN32
#include "platform/win32/handle_win32.h"
#endif

namespace skl::test {

namespace fs = std::filesystem;

void TempFolderTest::SetUp() {
    before_ = fs::current_path();
    std::random_device device;
    all_ = fs::temp_directory_path() / ("skl-" + std::to_string(device()) + std::to_string(device()));
    root = all_ / within;
    fs::create_directories(root / "config");
    fs::create_directories(root / "data");
    fs::create_directories(root / "work");
#ifdef _WIN32
    platform::setUserFolders(platform::UserFolders{root / "config", root / "data", root});
#else
    setenv("XDG_CONFIG_HOME", (root / "config").c_str(), 1);
    setenv("XDG_DATA_HOME", (root / "data").c_str(), 1);
    setenv("HOME", root.c_str(), 1);
#endif
    root = root / "work";
    fs::current_path(root);
    gf_startLog();
    gf_resetRunState();
    gf_resetParameters();
}

void TempFolderTest::TearDown() {
    gf_closeLog();
    fs::current_path(before_);
    std::error_code ignored;
    fs::remove_all(all_, ignored);
}

void writeFile(const fs::path& path, std::string_view bytes) {
    if (path.has_parent_path()) fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

std::string readFile(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream all;
    all << in.rdbuf();
    return all.str();
}

std::string slashed(std::string text) {
    if constexpr (fs::path::preferred_separator != '/') std::replace(text.begin(), text.end(), '\\', '/');
    return text;
}

std::vector<std::string> slashed(std::vector<std::string> texts) {
    for (std::string& text : texts) text = slashed(std::move(text));
    return texts;
}

std::vector<std::string> logLines() {
    std::ifstream in("Log.txt");
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

int logCount(std::string_view text) {
    int count = 0;
    const std::string wanted = slashed(std::string(text));
    for (const auto& line : slashed(logLines()))
        if (line.find(wanted) != std::string::npos) ++count;
    return count;
}

bool logHas(std::string_view text) {
    return logCount(text) > 0;
}

}  // namespace skl::test
