// Files that the kit makes: written beside, and put in the place of the old one only when they are whole.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

namespace skl::datakit {

/// A file written piece by piece. Without commit() the old one stays, and nothing is left beside it.
class OutputFile {
  public:
    /// Makes the folders on the way. Throws Failure.
    explicit OutputFile(const std::filesystem::path& path);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    void write(std::string_view text) {
        stream_.write(text.data(), static_cast<std::streamsize>(text.size()));
    }
    /// Throws Failure when not all could be written.
    void commit();

  private:
    std::filesystem::path path_, beside_;
    std::ofstream stream_;
    bool done_ = false;
};

/// The content of a file. Throws Failure.
std::string readWhole(const std::filesystem::path& path);
/// Replaces a file unless it holds this already; whether it did. Throws Failure.
bool replaceIfChanged(const std::filesystem::path& path, std::string_view content);
/// Appends `text` as the value of an XML attribute, without quotes round it. What no XML holds is left out.
void appendEscaped(std::string& xml, std::string_view text);
/// Appends ` name="value"`.
void appendAttribute(std::string& xml, std::string_view name, std::string_view value);

}  // namespace skl::datakit
