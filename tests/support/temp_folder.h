// A fixture with a working folder and user folders of its own, removed afterwards. The folder's name is free
// of the words that the livery scan skips.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace skl::test {

class TempFolderTest : public ::testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;
    std::filesystem::path root;    ///< the working folder during the test
    std::filesystem::path within;  ///< set before SetUp: a folder more, above all of them

  private:
    std::filesystem::path before_, all_;
};

/// Writes bytes as they are, making the folders on the way.
void writeFile(const std::filesystem::path& path, std::string_view bytes);
std::string readFile(const std::filesystem::path& path);
/// With / between folders, as tests write paths, where the system puts \\.
std::string slashed(std::string text);
std::vector<std::string> slashed(std::vector<std::string> texts);
/// The lines of Log.txt so far, and whether one holds a text; the separators of paths may differ.
std::vector<std::string> logLines();
bool logHas(std::string_view text);
/// How many lines of the log hold a text.
int logCount(std::string_view text);

}  // namespace skl::test
