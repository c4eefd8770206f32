// A file replaced in one step: the new content is on the disk under another name before it takes the old
// one's place.
#include <windows.h>

#include <algorithm>

#include "platform/system.h"
#include "platform/win32/handle_win32.h"

namespace skl::platform {

namespace fs = std::filesystem;

namespace {

// A virus scanner or an indexer may hold either file for a moment.
constexpr int renameTries = 10;
constexpr DWORD renamePauseMs = 20;

/// 0, or the number of the failure.
DWORD writeAll(const Handle& file, std::string_view content) {
    constexpr size_t most = 1u << 24;
    while (!content.empty()) {
        DWORD written = 0;
        if (!::WriteFile(file.get(), content.data(), static_cast<DWORD>(std::min(content.size(), most)),
                         &written, nullptr))
            return ::GetLastError();
        content.remove_prefix(written);
    }
    return ::FlushFileBuffers(file.get()) ? 0 : ::GetLastError();
}

DWORD writeNew(const fs::path& path, std::string_view content) {
    const Handle file(::CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                    FILE_ATTRIBUTE_NORMAL, nullptr));
    return file ? writeAll(file, content) : ::GetLastError();
}

DWORD moveOver(const fs::path& from, const fs::path& to) {
    for (int tries = 1;; ++tries) {
        if (::MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
            return 0;
        const DWORD failure = ::GetLastError();
        const bool mayPass = failure == ERROR_ACCESS_DENIED || failure == ERROR_SHARING_VIOLATION;
        std::error_code ignored;
        if (!mayPass || tries == renameTries || fs::is_directory(to, ignored)) return failure;
        ::Sleep(renamePauseMs);
    }
}

}  // namespace

bool replaceFile(const fs::path& path, std::string_view content, std::string& error) {
    fs::path beside = path;
    beside += ".new";
    DWORD failure = writeNew(beside, content);
    if (!failure) failure = moveOver(beside, path);
    if (!failure) return true;
    error = systemText(failure);
    ::DeleteFileW(beside.c_str());
    return false;
}

}  // namespace skl::platform
