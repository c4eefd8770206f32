// What the program's own readers say in their log, for a command that lets them read.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace skl::datakit {

/// A folder of its own to run in, removed at the end.
class TemporaryFolder {
  public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    const std::filesystem::path& path() const { return path_; }

  private:
    std::filesystem::path path_;
};

/// Has the program's log while it lives.
class ProgramLog {
  public:
    ProgramLog();
    ~ProgramLog();
    ProgramLog(const ProgramLog&) = delete;
    ProgramLog& operator=(const ProgramLog&) = delete;
    /// The lines since the last call of either.
    std::vector<std::string> lines();
    /// The complaints since the last call, without the mark in front.
    std::vector<std::string> complaints();

  private:
    TemporaryFolder folder_;
    std::ifstream stream_;
};

}  // namespace skl::datakit
