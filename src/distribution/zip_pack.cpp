#include "distribution/zip_pack.h"

#include <fmt/format.h>
#include <zip.h>

#include <algorithm>
#include <cstdint>
#include <memory>

#include "core/log.h"

namespace skl {

namespace {

constexpr zip_uint64_t largestFile = 1u << 20;  // a link file holds a line, an airport file some hundred KB
constexpr size_t largestPack = size_t{1} << 28;
constexpr zip_int64_t mostEntries = 100'000;

struct CloseArchive {
    void operator()(zip_t* archive) const { zip_discard(archive); }
};
struct CloseFile {
    void operator()(zip_file_t* file) const { zip_fclose(file); }
};

std::unique_ptr<zip_t, CloseArchive> open(std::string_view bytes) {
    if (bytes.empty()) return nullptr;  // libzip takes it for an archive without entries
    zip_error_t error;
    zip_error_init(&error);
    std::unique_ptr<zip_t, CloseArchive> archive;
    if (zip_source_t* source = zip_source_buffer_create(bytes.data(), bytes.size(), 0, &error)) {
        archive.reset(zip_open_from_source(source, ZIP_RDONLY, &error));
        if (!archive) zip_source_free(source);
    }
    zip_error_fini(&error);
    return archive;
}

/// The content of an entry; nothing when it is broken, or larger than it may be. `buffer` has one byte more
/// than that: a hundred thousand entries must not cost a fresh one each.
std::optional<std::string> readEntry(zip_t* archive, zip_uint64_t index, std::string& buffer) {
    const std::unique_ptr<zip_file_t, CloseFile> file(zip_fopen_index(archive, index, 0));
    if (!file) return std::nullopt;
    size_t length = 0;
    while (length < buffer.size()) {
        const zip_int64_t count = zip_fread(file.get(), buffer.data() + length, buffer.size() - length);
        if (count < 0) return std::nullopt;
        if (count == 0) break;
        length += static_cast<size_t>(count);
    }
    if (length > largestFile) return std::nullopt;
    return buffer.substr(0, length);
}

bool isFolder(std::string_view name) {
    return name.empty() || name.back() == '/' || name.back() == '\\';
}

}  // namespace

std::string lf_packStem(std::string_view name) {
    if (isFolder(name)) return {};
    name.remove_prefix(name.find_last_of("/\\:") + 1);  // 0 when there is none
    if (const size_t dot = name.rfind('.'); dot != std::string_view::npos && dot != 0)
        name = name.substr(0, dot);
    const bool plain = std::none_of(name.begin(), name.end(), [](char c) {
        return static_cast<unsigned char>(c) < ' ' ||
               std::string_view("<>\"|?*").find(c) != std::string_view::npos;
    });
    const bool onlyDots = name.find_first_not_of('.') == std::string_view::npos;
    return plain && !onlyDots ? std::string(name) : std::string();
}

std::optional<std::vector<PackFile>> lf_readPack(std::string_view bytes) {
    const auto archive = open(bytes);
    if (!archive) return std::nullopt;
    std::vector<PackFile> files;
    std::string buffer(largestFile + 1, '\0');
    size_t total = 0;
    const zip_int64_t count = std::min(zip_get_num_entries(archive.get(), 0), mostEntries);
    for (zip_int64_t i = 0; i < count && total < largestPack; ++i) {
        const auto index = static_cast<zip_uint64_t>(i);
        const char* told = zip_get_name(archive.get(), index, ZIP_FL_ENC_GUESS);
        const std::string name = told ? told : "";
        if (isFolder(name)) continue;
        PackFile file{lf_packStem(name), {}};
        auto text = file.stem.empty() ? std::nullopt : readEntry(archive.get(), index, buffer);
        if (!text) {
            gf_logError(fmt::format("Failed to read '{}' of the pack", name));
            continue;
        }
        file.text = std::move(*text);
        total += file.text.size();
        files.push_back(std::move(file));
    }
    return files;
}

}  // namespace skl
