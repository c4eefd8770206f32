// The services of the operating system that are the same everywhere, on the real one.
#include "platform/system.h"

#include "tests/support/temp_folder.h"

namespace skl::platform {
namespace {

namespace fs = std::filesystem;

class System : public test::TempFolderTest {};

TEST_F(System, AReplacedFileIsTheOldOrTheNewOne) {
    std::string error;
    ASSERT_TRUE(replaceFile("file.txt", "old", error)) << error;
    const std::string big(3'000'000, 'n');
    ASSERT_TRUE(replaceFile("file.txt", big, error)) << error;
    EXPECT_EQ(test::readFile("file.txt"), big);
    EXPECT_FALSE(fs::exists("file.txt.new"));

    EXPECT_FALSE(replaceFile("no/file.txt", "x", error));
#ifndef _WIN32
    EXPECT_EQ(error, "No such file or directory");
#endif
    EXPECT_FALSE(error.empty());
    error.clear();
    // The last step fails: the target is a folder that is not empty.
    test::writeFile("folder/inside", "kept");
    EXPECT_FALSE(replaceFile("folder", "x", error));
    EXPECT_FALSE(error.empty());
    EXPECT_EQ(test::readFile("folder/inside"), "kept");
    EXPECT_FALSE(fs::exists("folder.new")) << "nothing is left beside it";
}

TEST_F(System, MemoryInUseIsKnown) {
    const MemoryUse before = memoryUse();
    EXPECT_GT(before.nowKb, 500u);
    EXPECT_GE(before.peakKb, before.nowKb);
    std::string much(64 << 20, 'm');
    EXPECT_GT(memoryUse().nowKb, before.nowKb + (50u << 10)) << much.size();
}

}  // namespace
}  // namespace skl::platform
