#include "tools/datakit/output_file.h"

#include <fmt/format.h>

#include <cerrno>
#include <system_error>

#include "core/text.h"
#include "tools/datakit/findings.h"

namespace skl::datakit {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void fail(const fs::path& path, const char* what) {
    throw Failure(fmt::format("{}: {}: {}", gf_pathText(path), what, std::generic_category().message(errno)));
}

}  // namespace

OutputFile::OutputFile(const fs::path& path) : path_(path), beside_(path) {
    beside_ += ".new";
    std::error_code error;
    if (path.has_parent_path()) fs::create_directories(path.parent_path(), error);
    if (error) throw Failure(fmt::format("{}: {}", gf_pathText(path.parent_path()), error.message()));
    if (fs::is_directory(path, error)) throw Failure(gf_pathText(path) + ": is a folder");
    stream_.open(beside_, std::ios::binary | std::ios::trunc);
    if (!stream_) fail(beside_, "cannot be written");
}

OutputFile::~OutputFile() {
    if (done_) return;
    stream_.close();
    std::error_code ignored;
    fs::remove(beside_, ignored);
}

void OutputFile::commit() {
    stream_.close();
    if (!stream_) fail(beside_, "could not be written whole");
    std::error_code error;
    fs::rename(beside_, path_, error);
    if (error) throw Failure(fmt::format("{}: {}", gf_pathText(path_), error.message()));
    done_ = true;
}

std::string readWhole(const fs::path& path) {
    std::error_code ignored;
    std::ifstream in;
    if (!fs::is_directory(path, ignored)) in.open(path, std::ios::binary);
    if (!in.is_open()) fail(path, "cannot be read");
    std::string text(static_cast<size_t>(fs::file_size(path, ignored)), '\0');
    in.read(text.data(), static_cast<std::streamsize>(text.size()));
    if (in.bad() || static_cast<size_t>(in.gcount()) != text.size()) fail(path, "could not be read whole");
    return text;
}

bool replaceIfChanged(const fs::path& path, std::string_view content) {
    std::error_code ignored;
    if (fs::is_regular_file(path, ignored) && fs::file_size(path, ignored) == content.size() &&
        readWhole(path) == content)
        return false;
    OutputFile file(path);
    file.write(content);
    file.commit();
    return true;
}

void appendEscaped(std::string& xml, std::string_view text) {
    for (const char c : text) {
        switch (c) {
            case '&':
                xml += "&amp;";
                break;
            case '<':
                xml += "&lt;";
                break;
            case '>':
                xml += "&gt;";
                break;
            case '"':
                xml += "&quot;";
                break;
            default:
                if (static_cast<unsigned char>(c) >= ' ') xml += c;
        }
    }
}

void appendAttribute(std::string& xml, std::string_view name, std::string_view value) {
    xml += ' ';
    xml += name;
    xml += "=\"";
    appendEscaped(xml, value);
    xml += '"';
}

}  // namespace skl::datakit
