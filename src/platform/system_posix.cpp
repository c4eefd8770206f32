// Folders, the single instance, stop signals and memory on POSIX systems. Files are replaced in
// file_replace_posix.cpp.
#include <fcntl.h>
#include <pthread.h>
#include <pwd.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <system_error>
#include <thread>

#include "platform/system.h"

namespace skl::platform {

namespace fs = std::filesystem;

namespace {

constexpr int usualColumns = 80;

/// An absolute path out of the environment; relative ones do not count.
fs::path environmentPath(const char* name) {
    const char* text = std::getenv(name);
    if (!text) return {};
    fs::path path(text);
    return path.is_absolute() ? path : fs::path();
}

fs::path userFolder(const char* variable, const char* belowHome) {
    const fs::path own = environmentPath(variable);
    if (!own.empty()) return own;
    const fs::path home = homeFolder();
    return home.empty() ? fs::path() : home / belowHome;
}

class FileLock : public InstanceLock {
  public:
    explicit FileLock(int descriptor) : descriptor_(descriptor) {}
    ~FileLock() override {
        if (descriptor_ >= 0) ::close(descriptor_);
    }
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

  private:
    int descriptor_;
};

int openLockFile(std::string_view name) {
    constexpr int flags = O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW;
    const fs::path runtime = environmentPath("XDG_RUNTIME_DIR");
    if (!runtime.empty()) {
        const int descriptor = ::open((runtime / (std::string(name) + ".lock")).c_str(), flags, 0600);
        if (descriptor >= 0) return descriptor;
    }
    // The temporary folder is shared by all users.
    std::error_code error;
    const fs::path shared = fs::temp_directory_path(error);
    if (error) return -1;
    return ::open((shared / (std::string(name) + "-" + std::to_string(::getuid()) + ".lock")).c_str(), flags,
                  0600);
}

std::thread& signalThread() {
    static std::thread thread;
    return thread;
}

std::atomic<bool> watchEnds{false};

sigset_t stopSignals() {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGINT);
    sigaddset(&set, SIGTERM);
    return set;
}

/// The number behind `key` in a line of the process's status file.
uint64_t statusNumber(const std::string& line, std::string_view key) {
    if (!line.starts_with(key)) return 0;
    const size_t digit = line.find_first_of("0123456789");
    if (digit == std::string::npos) return 0;
    uint64_t value = 0;
    std::from_chars(line.data() + digit, line.data() + line.size(), value);
    return value;
}

}  // namespace

fs::path roamingAppData() {
    return userFolder("XDG_CONFIG_HOME", ".config");
}

fs::path localAppData() {
    return userFolder("XDG_DATA_HOME", ".local/share");
}

fs::path homeFolder() {
    const fs::path home = environmentPath("HOME");
    if (!home.empty()) return home;
    passwd entry{};
    passwd* found = nullptr;
    char buffer[4096];
    if (::getpwuid_r(::getuid(), &entry, buffer, sizeof buffer, &found) != 0 || !found || !found->pw_dir)
        return {};
    return found->pw_dir;
}

std::unique_ptr<InstanceLock> lockSingleInstance(std::string_view name) {
    const int descriptor = openLockFile(name);
    // Where no lock file can be made at all, nothing can be said of another process: the program runs.
    if (descriptor >= 0 && ::flock(descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
        ::close(descriptor);
        return nullptr;
    }
    return std::make_unique<FileLock>(descriptor);
}

void tellLastWords(std::string_view text) {
    std::cerr << text << std::endl;
}

int lastFileError() {
    return errno;
}

void copyOver(const fs::path& from, const fs::path& to, std::error_code& error) {
    fs::copy_file(from, to, fs::copy_options::overwrite_existing, error);
}

fs::path linkTarget(const fs::directory_entry& folder, std::error_code& error) {
    error.clear();
    return folder.is_symlink(error) ? fs::canonical(folder.path(), error) : fs::path();
}

void watchStopSignals(std::function<void()> onStop) {
    ::signal(SIGPIPE, SIG_IGN);
    const sigset_t set = stopSignals();
    // Threads started later inherit the mask, so that the signals wait for the watching thread.
    ::pthread_sigmask(SIG_BLOCK, &set, nullptr);
    watchEnds = false;
    signalThread() = std::thread([set, onStop = std::move(onStop)] {
        bool told = false;
        int number = 0;
        while (::sigwait(&set, &number) == 0 && !watchEnds) {
            if (!told) onStop();
            told = true;
        }
    });
}

void stopWatchingSignals() {
    if (!signalThread().joinable()) return;
    watchEnds = true;
    ::pthread_kill(signalThread().native_handle(), SIGTERM);
    signalThread().join();
    // A signal that came beside the wake-up is still pending: it belonged to this watch, not to the next.
    const sigset_t set = stopSignals();
    const timespec noWait{};
    while (::sigtimedwait(&set, nullptr, &noWait) > 0) {
    }
}

int terminalColumns() {
    if (!isatty(STDOUT_FILENO)) return 0;
    winsize size{};
    const bool told = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return told ? size.ws_col : usualColumns;
}

MemoryUse memoryUse() {
    MemoryUse use;
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (const uint64_t now = statusNumber(line, "VmRSS:")) use.nowKb = now;
        if (const uint64_t peak = statusNumber(line, "VmHWM:")) use.peakKb = peak;
    }
    return use;
}

}  // namespace skl::platform
