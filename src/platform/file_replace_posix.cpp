// A file replaced in one step: the new content is on the disk under another name before it takes the old
// one's place.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "platform/system.h"

namespace skl::platform {

namespace fs = std::filesystem;

namespace {

std::string systemText(int number) {
    return std::generic_category().message(number);
}

/// 0, or the number of the failure.
int writeAll(int descriptor, std::string_view content) {
    while (!content.empty()) {
        const ssize_t count = ::write(descriptor, content.data(), content.size());
        if (count < 0 && errno != EINTR) return errno;
        if (count > 0) content.remove_prefix(static_cast<size_t>(count));
    }
    return ::fsync(descriptor) == 0 ? 0 : errno;
}

int writeNew(const fs::path& path, std::string_view content) {
    const int descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (descriptor < 0) return errno;
    const int failure = writeAll(descriptor, content);
    const int closing = ::close(descriptor) == 0 ? 0 : errno;
    return failure ? failure : closing;
}

/// The new name is safe only once its folder is on the disk too. A file system that cannot do that is no
/// failure.
void syncFolder(const fs::path& folder) {
    const int descriptor = ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) return;
    ::fsync(descriptor);
    ::close(descriptor);
}

}  // namespace

bool replaceFile(const fs::path& path, std::string_view content, std::string& error) {
    fs::path beside = path;
    beside += ".new";
    int failure = writeNew(beside, content);
    if (!failure && ::rename(beside.c_str(), path.c_str()) != 0) failure = errno;
    if (failure) {
        error = systemText(failure);
        ::unlink(beside.c_str());
        return false;
    }
    syncFolder(path.parent_path());
    return true;
}

}  // namespace skl::platform
