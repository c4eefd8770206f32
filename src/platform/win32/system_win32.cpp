// Folders, the single instance, the console's stop signals, links and memory on Windows. Files are replaced
// in file_replace_win32.cpp.
#include "platform/system.h"

#include <windows.h>
// Behind windows.h.
#include <psapi.h>
#include <shlobj.h>

#include <atomic>
#include <memory>
#include <mutex>

#include "platform/text_conversion.h"
#include "platform/win32/handle_win32.h"

namespace skl::platform {

namespace fs = std::filesystem;

Handle::Handle(void* handle) : handle_(handle == INVALID_HANDLE_VALUE ? nullptr : handle) {}

Handle::~Handle() {
    if (handle_) ::CloseHandle(handle_);
}

std::string systemText(uint32_t error) {
    wchar_t buffer[512];
    constexpr DWORD flags = FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
    DWORD count = 0;
    for (const DWORD language : {DWORD{MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US)}, DWORD{0}})
        if (count == 0)
            count = ::FormatMessageW(flags, nullptr, error, language, buffer, std::size(buffer), nullptr);
    std::u16string text(buffer, buffer + count);
    text.erase(text.find_last_not_of(u" .\r\n") + 1);
    return text.empty() ? "error " + std::to_string(error) : win32::utf16ToUtf8(text);
}

namespace {

std::optional<UserFolders>& foldersOfTest() {
    static std::optional<UserFolders> folders;
    return folders;
}

fs::path knownFolder(const KNOWNFOLDERID& id) {
    wchar_t* text = nullptr;
    const bool found = ::SHGetKnownFolderPath(id, 0, nullptr, &text) == S_OK;
    const std::unique_ptr<wchar_t, void (*)(void*)> owner(text, ::CoTaskMemFree);
    return found ? fs::path(text) : fs::path();
}

class MutexLock : public InstanceLock {
  public:
    explicit MutexLock(Handle mutex) : mutex_(std::move(mutex)) {}

  private:
    Handle mutex_;
};

/// Who watches the console's signals. The handler's thread is the system's own.
struct StopWatch {
    std::mutex lock;  // onStop
    std::function<void()> onStop;
};

StopWatch& stopWatch() {
    static StopWatch watch;
    return watch;
}

/// Of the kinds of reparse points, those that lead to another folder: a folder of a cloud drive is one too,
/// and lies where it says.
bool isLink(const fs::path& folder) {
    WIN32_FIND_DATAW data{};
    const HANDLE search = ::FindFirstFileW(folder.c_str(), &data);
    if (search == INVALID_HANDLE_VALUE) return false;
    ::FindClose(search);
    return (data.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) &&
           (data.dwReserved0 == IO_REPARSE_TAG_MOUNT_POINT || data.dwReserved0 == IO_REPARSE_TAG_SYMLINK);
}

/// The long form of a path is the same path as the short one.
fs::path shortForm(std::wstring text) {
    constexpr std::wstring_view prefix = L"\\\\?\\", share = L"\\\\?\\UNC\\";
    if (text.starts_with(share))
        text.replace(0, share.size(), L"\\\\");
    else if (text.starts_with(prefix) && text.size() > prefix.size() + 1 && text[prefix.size() + 1] == L':')
        text.erase(0, prefix.size());
    return text;
}

BOOL WINAPI onConsoleSignal(DWORD signal) {
    StopWatch& watch = stopWatch();
    {
        const std::lock_guard guard(watch.lock);
        // The first one tells; one that comes while the program ends already changes nothing.
        if (const auto onStop = std::exchange(watch.onStop, {})) onStop();
    }
    // Behind the others the system ends the process as soon as the handler returns, or some seconds later.
    if (signal != CTRL_C_EVENT && signal != CTRL_BREAK_EVENT) ::Sleep(INFINITE);
    return TRUE;
}

}  // namespace

void setUserFolders(std::optional<UserFolders> folders) {
    foldersOfTest() = std::move(folders);
}

fs::path roamingAppData() {
    return foldersOfTest() ? foldersOfTest()->roaming : knownFolder(FOLDERID_RoamingAppData);
}

fs::path localAppData() {
    return foldersOfTest() ? foldersOfTest()->local : knownFolder(FOLDERID_LocalAppData);
}

fs::path homeFolder() {
    return foldersOfTest() ? foldersOfTest()->home : knownFolder(FOLDERID_Profile);
}

std::unique_ptr<InstanceLock> lockSingleInstance(std::string_view name) {
    const std::u16string full = u"Local\\$" + win32::utf8ToUtf16(name) + u"$";
    Handle mutex(::CreateMutexW(nullptr, FALSE, reinterpret_cast<const wchar_t*>(full.c_str())));
    // A mutex of that name that this user may not open is another's, too.
    const DWORD failure = ::GetLastError();
    if (failure == ERROR_ALREADY_EXISTS || failure == ERROR_ACCESS_DENIED) return nullptr;
    return std::make_unique<MutexLock>(std::move(mutex));
}

void tellLastWords(std::string_view text) {
    ::MessageBoxW(nullptr, reinterpret_cast<const wchar_t*>(win32::utf8ToUtf16(text).c_str()), L"Skylantern",
                  UINT{MB_OK} | UINT{MB_ICONERROR});
}

int lastFileError() {
    return static_cast<int>(::GetLastError());
}

void copyOver(const fs::path& from, const fs::path& to, std::error_code& error) {
    // The compiler's library cannot copy over a file on Windows.
    error.clear();
    if (!::CopyFileW(from.c_str(), to.c_str(), FALSE))
        error.assign(static_cast<int>(::GetLastError()), std::system_category());
}

fs::path linkTarget(const fs::directory_entry& entry, std::error_code& error) {
    error.clear();
    const fs::path& folder = entry.path();
    if (!isLink(folder)) return {};
    const Handle opened(::CreateFileW(folder.c_str(), 0,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                      OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    std::wstring text(32768, L'\0');
    const DWORD count =
        opened ? ::GetFinalPathNameByHandleW(opened.get(), text.data(), static_cast<DWORD>(text.size()),
                                             FILE_NAME_NORMALIZED)
               : 0;
    if (count == 0 || count >= text.size()) {
        error.assign(static_cast<int>(::GetLastError()), std::system_category());
        return {};
    }
    text.resize(count);
    return shortForm(std::move(text));
}

void watchStopSignals(std::function<void()> onStop) {
    StopWatch& watch = stopWatch();
    {
        const std::lock_guard guard(watch.lock);
        watch.onStop = std::move(onStop);
    }
    ::SetConsoleCtrlHandler(onConsoleSignal, TRUE);
}

void stopWatchingSignals() {
    StopWatch& watch = stopWatch();
    ::SetConsoleCtrlHandler(onConsoleSignal, FALSE);
    const std::lock_guard guard(watch.lock);
    watch.onStop = {};
}

int terminalColumns() {
    CONSOLE_SCREEN_BUFFER_INFO info{};
    if (!::GetConsoleScreenBufferInfo(::GetStdHandle(STD_OUTPUT_HANDLE), &info)) return 0;
    return info.srWindow.Right - info.srWindow.Left + 1;
}

MemoryUse memoryUse() {
    PROCESS_MEMORY_COUNTERS counters{};
    if (!::GetProcessMemoryInfo(::GetCurrentProcess(), &counters, sizeof counters)) return {};
    return {counters.WorkingSetSize / 1024, counters.PeakWorkingSetSize / 1024};
}

}  // namespace skl::platform
