// Small services of the operating system: folders, single instance, files replaced in one step, ending by
// signal.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>

namespace skl::platform {

/// On Windows the user's known folders. Elsewhere roaming is XDG_CONFIG_HOME, local is XDG_DATA_HOME, with
/// their defaults below HOME. Empty if neither is known.
std::filesystem::path roamingAppData();
std::filesystem::path localAppData();
std::filesystem::path homeFolder();

/// Holds the single-instance lock of this user; nothing if another process holds it. Released by the process
/// end.
class InstanceLock {
  public:
    virtual ~InstanceLock() = default;
};
std::unique_ptr<InstanceLock> lockSingleInstance(std::string_view name);

/// Writes beside, flushes to the disk and renames, so that a crash leaves the old or the new file. On failure
/// the old file stays, nothing is left beside it, and `error` holds the system's text.
bool replaceFile(const std::filesystem::path& path, std::string_view content, std::string& error);

/// Why the program cannot even start, to a user who has no log and no panel yet: a box, or standard error.
void tellLastWords(std::string_view text);

/// The system's number for why the last opening of a file on this thread failed.
int lastFileError();

/// Copies a file over another one, if there is one.
void copyOver(const std::filesystem::path& from, const std::filesystem::path& to, std::error_code& error);

/// Where a folder truly is that is a link (a symbolic one, or a junction); empty when it is none. Empty with
/// `error` when it leads nowhere.
std::filesystem::path linkTarget(const std::filesystem::directory_entry& folder, std::error_code& error);

/// Calls `onStop` on a thread of its own at the first SIGINT or SIGTERM, on Windows the console's; also makes
/// writes to a gone peer harmless. To be called before any other thread starts. `stopWatching` ends that
/// thread.
void watchStopSignals(std::function<void()> onStop);
void stopWatchingSignals();

/// The width of the terminal that standard output goes to; 0 when it goes elsewhere.
int terminalColumns();

/// Resident memory now and at its peak, kilobytes; 0 where not known.
struct MemoryUse {
    uint64_t nowKb = 0;
    uint64_t peakKb = 0;
};
MemoryUse memoryUse();

}  // namespace skl::platform
