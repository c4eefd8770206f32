// The services of a POSIX system: a full disk, the lock of the instance, signals.
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "platform/system.h"
#include "tests/support/temp_folder.h"

namespace skl::platform {
namespace {

namespace fs = std::filesystem;

class SystemPosix : public test::TempFolderTest {};

TEST_F(SystemPosix, AFullDiskLeavesTheOldFile) {
    std::string error;
    ASSERT_TRUE(replaceFile("file.txt", "old", error));
    const pid_t child = fork();
    if (child == 0) {
        // A limit on the size of files stands for the full disk.
        signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{1000, 1000};
        setrlimit(RLIMIT_FSIZE, &limit);
        _exit(replaceFile("file.txt", std::string(5000, 'x'), error) ? 1 : 0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0) << "the write was to fail";
    EXPECT_EQ(test::readFile("file.txt"), "old");
    EXPECT_FALSE(fs::exists("file.txt.new"));
}

TEST_F(SystemPosix, OnlyOneProcessHoldsTheInstance) {
    setenv("XDG_RUNTIME_DIR", root.c_str(), 1);
    auto mine = lockSingleInstance("skl-test");
    ASSERT_TRUE(mine);
    const auto otherProcessGetsIt = [] {
        const pid_t child = fork();
        if (child == 0) _exit(lockSingleInstance("skl-test") ? 1 : 0);
        int status = 0;
        waitpid(child, &status, 0);
        return status != 0;
    };
    EXPECT_FALSE(otherProcessGetsIt());
    EXPECT_TRUE(lockSingleInstance("skl-test-2")) << "another name is another lock";
    mine.reset();
    EXPECT_TRUE(otherProcessGetsIt()) << "the end of the holder frees it";
    setenv("XDG_RUNTIME_DIR", "/no/such/folder", 1);
    setenv("TMPDIR", root.c_str(), 1);
    EXPECT_TRUE(lockSingleInstance("skl-test")) << "the temporary folder serves instead";
    unsetenv("TMPDIR");
}

TEST_F(SystemPosix, ThreadsASignalIsToldOnceOnAnotherThread) {
    std::atomic<int> told{0};
    std::atomic<bool> otherThread{false};
    const auto self = std::this_thread::get_id();
    const auto waitFor = [](auto done) {
        const auto patience = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (!done() && std::chrono::steady_clock::now() < patience) std::this_thread::yield();
    };
    watchStopSignals([&] {
        otherThread = std::this_thread::get_id() != self;
        ++told;
    });
    kill(getpid(), SIGTERM);
    waitFor([&] { return told == 1; });
    EXPECT_EQ(told, 1);
    EXPECT_TRUE(otherThread);
    kill(getpid(), SIGINT);
    stopWatchingSignals();
    EXPECT_EQ(told, 1);

    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    close(ends[0]);
    EXPECT_EQ(write(ends[1], "x", 1), -1) << "a reader that has gone is an error, not the end";
    close(ends[1]);

    watchStopSignals([&] { ++told; });
    stopWatchingSignals();
    EXPECT_EQ(told, 1) << "the end of the watch is no signal";
}

}  // namespace
}  // namespace skl::platform
