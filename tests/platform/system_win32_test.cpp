// The services of Windows: the mutex of the instance, the user's folders, console signals, files that cannot
// be opened.
#include <windows.h>
// Behind windows.h.
#include <atomic>
#include <chrono>
#include <ctime>
#include <thread>

#include "core/charset.h"
#include "core/clock.h"
#include "core/text.h"
#include "platform/system.h"
#include "platform/win32/handle_win32.h"
#include "tests/support/temp_folder.h"

namespace skl::platform {
namespace {

namespace fs = std::filesystem;

class SystemWin32 : public test::TempFolderTest {};

TEST_F(SystemWin32, TheInstanceIsAMutexOfTheSession) {
    auto mine = lockSingleInstance("skl-test");
    ASSERT_TRUE(mine);
    EXPECT_FALSE(lockSingleInstance("skl-test"));
    EXPECT_TRUE(lockSingleInstance("skl-test-2")) << "another name is another lock";
    const Handle seen(::OpenMutexW(SYNCHRONIZE, FALSE, L"Local\\$skl-test$"));
    EXPECT_TRUE(seen);
    mine.reset();
    EXPECT_FALSE(lockSingleInstance("skl-test")) << "somebody still knows it";
}

TEST_F(SystemWin32, TheUsersFoldersAreThere) {
    setUserFolders({});
    for (const fs::path& folder : {roamingAppData(), localAppData(), homeFolder()}) {
        EXPECT_TRUE(folder.is_absolute() && fs::is_directory(folder)) << folder;
    }
    EXPECT_NE(roamingAppData(), localAppData());
}

TEST_F(SystemWin32, ThreadsABreakOnTheConsoleIsToldOnce) {
    std::atomic<int> told{0};
    std::atomic<bool> otherThread{false};
    const auto self = std::this_thread::get_id();
    watchStopSignals([&] {
        otherThread = std::this_thread::get_id() != self;
        ++told;
    });
    ::AllocConsole();  // where the test has none
    ASSERT_TRUE(::GenerateConsoleCtrlEvent(CTRL_BREAK_EVENT, 0));
    const ULONGLONG end = ::GetTickCount64() + 10000;
    while (told == 0 && ::GetTickCount64() < end) std::this_thread::yield();
    EXPECT_EQ(told, 1);
    EXPECT_TRUE(otherThread);
    stopWatchingSignals();
    EXPECT_EQ(told, 1);
}

TEST_F(SystemWin32, AFileThatIsHeldKeepsItsContent) {
    std::string error;
    ASSERT_TRUE(replaceFile(gf_pathFromText("f\xC3\xB6r.txt"), "old", error)) << error;
    EXPECT_TRUE(fs::exists(fs::path(u8"f\u00F6r.txt")));
    EXPECT_EQ(gf_pathText(fs::path(u8"f\u00F6r.txt")), "f\xC3\xB6r.txt");
    const Handle held(
        ::CreateFileW(L"f\u00F6r.txt", GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(held);
    EXPECT_FALSE(replaceFile(gf_pathFromText("f\xC3\xB6r.txt"), "new", error));
    EXPECT_FALSE(error.empty());
    EXPECT_EQ(test::readFile(fs::path(u8"f\u00F6r.txt")), "old");
    EXPECT_FALSE(fs::exists(fs::path(u8"f\u00F6r.txt.new")));
}

TEST_F(SystemWin32, AFailedOpeningHasTheSystemsNumber) {
    EXPECT_EQ(gf_detectCharset("none.txt"), Charset::noneFound);
    EXPECT_TRUE(test::logHas("Win32 error: 2"));
    EXPECT_EQ(gf_detectCharset("no/none.txt"), Charset::noneFound);
    EXPECT_TRUE(test::logHas("Win32 error: 3"));
}

TEST_F(SystemWin32, TheRaisedTimerWakesInTime) {
    gf_clock().raiseTimerResolution();
    const Nanos start = gf_steadyNow();
    for (int i = 0; i < 20; ++i)
        EXPECT_FALSE(gf_waitUntil(gf_steadyNow() + std::chrono::milliseconds(1), {}));
    const Nanos past = gf_steadyNow() - start;
    gf_clock().releaseTimerResolution();
    EXPECT_GE(past, std::chrono::milliseconds(20));
    EXPECT_LT(past, std::chrono::milliseconds(300)) << "15 ms a turn is the coarse timer";
    EXPECT_NEAR(static_cast<double>(gf_clock().utcNow().count()) * 1e-9,
                static_cast<double>(std::time(nullptr)), 2.0);
}

}  // namespace
}  // namespace skl::platform
