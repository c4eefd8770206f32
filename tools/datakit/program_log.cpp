#include "tools/datakit/program_log.h"

#include <random>
#include <system_error>

#include "core/log.h"

namespace skl::datakit {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view mark = "===> ";

}  // namespace

TemporaryFolder::TemporaryFolder() {
    std::random_device device;
    path_ = fs::temp_directory_path() / ("datakit-" + std::to_string(device()) + std::to_string(device()));
    fs::create_directories(path_);
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

ProgramLog::ProgramLog() {
    const fs::path path = folder_.path() / "Log.txt";
    gf_startLog(path);
    stream_.open(path, std::ios::binary);
}

ProgramLog::~ProgramLog() {
    gf_closeLog();
}

std::vector<std::string> ProgramLog::lines() {
    std::vector<std::string> found;
    stream_.clear();  // the end that was met the last time is no end any more
    for (std::string line; std::getline(stream_, line);) found.push_back(std::move(line));
    return found;
}

std::vector<std::string> ProgramLog::complaints() {
    std::vector<std::string> found;
    for (const std::string& line : lines())
        if (line.starts_with(mark)) found.push_back(line.substr(mark.size()));
    return found;
}

}  // namespace skl::datakit
