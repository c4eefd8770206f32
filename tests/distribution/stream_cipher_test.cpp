#include "distribution/stream_cipher.h"

#include <gtest/gtest.h>
#include <sodium.h>

#include <stdexcept>

#include "distribution/cipher_key.h"
#include "tests/support/temp_folder.h"

namespace skl {
namespace {

using test::logCount;
using test::logHas;
using test::readFile;
using test::writeFile;
namespace fs = std::filesystem;

class StreamCipher : public test::TempFolderTest {
  protected:
    void SetUp() override {
        TempFolderTest::SetUp();
        fs::create_directory("input");
    }

    /// Text without a period, so that swapped or repeated chunks would show.
    static std::string textOf(size_t size) {
        std::string text(size, ' ');
        uint32_t x = 1;
        for (char& c : text) c = static_cast<char>((x = x * 1664525u + 1013904223u) >> 24);
        return text;
    }

    std::string encipher(const std::string& text) {
        writeFile("plain", text);
        gf_streamEncrypt(cipherKey, "plain", "input/x.enc");
        return readFile("input/x.enc");
    }
};

TEST_F(StreamCipher, GivesBackEverySizeInChunksOf4113Bytes) {
    const struct {
        size_t plain, file;
    } cases[] = {
        {0, 24 + 17},          // one empty chunk, which is the final one
        {1, 24 + 18},          //
        {4095, 24 + 4112},     //
        {4096, 24 + 4113},     // no empty chunk behind a full one
        {4097, 24 + 4131},     //
        {8192, 24 + 2 * 4113}  //
    };
    for (const auto& c : cases) {
        const auto text = textOf(c.plain);
        EXPECT_EQ(encipher(text).size(), c.file) << c.plain;
        EXPECT_TRUE(gf_streamDecrypt("input/x.enc", "input/x.xml")) << c.plain;
        EXPECT_EQ(readFile("input/x.xml"), text) << c.plain;
    }
    EXPECT_FALSE(fs::exists("input/x.enc.part"));
}

// The layout itself: a file made with the library alone, chunk by chunk, has to open.
TEST_F(StreamCipher, OpensAFileMadeByTheBareLibraryAndIgnoresWhatFollowsTheFinalChunk) {
    ASSERT_GE(sodium_init(), 0);
    crypto_secretstream_xchacha20poly1305_state state;
    std::string file(24, '\0');
    crypto_secretstream_xchacha20poly1305_init_push(&state, reinterpret_cast<unsigned char*>(file.data()),
                                                    cipherKey.data());
    const auto text = textOf(4096 + 10);
    for (size_t start : {0, 4096}) {
        const auto piece = text.substr(start, 4096);
        std::string cipher(piece.size() + 17, '\0');
        crypto_secretstream_xchacha20poly1305_push(
            &state, reinterpret_cast<unsigned char*>(cipher.data()), nullptr,
            reinterpret_cast<const unsigned char*>(piece.data()), piece.size(), nullptr, 0, start ? 3 : 0);
        file += cipher;
    }
    writeFile("input/x.enc", file);
    EXPECT_TRUE(gf_streamDecrypt("input/x.enc", "input/x.xml"));
    EXPECT_EQ(readFile("input/x.xml"), text);

    // A final chunk of full size, with bytes behind it.
    writeFile("input/x.enc", encipher(textOf(4096)) + "more");
    EXPECT_TRUE(gf_streamDecrypt("input/x.enc", "input/x.xml"));
    EXPECT_EQ(readFile("input/x.xml"), textOf(4096));
}

TEST_F(StreamCipher, FailsOnDamageAndLeavesNoPlainFile) {
    const auto whole = encipher(textOf(9000));
    auto flipped = [&](size_t at) {
        auto bytes = whole;
        bytes[at] = static_cast<char>(bytes[at] ^ 0x10);
        return bytes;
    };
    const struct {
        const char* what;
        std::string bytes;
    } cases[] = {
        {"bit in the header", flipped(3)},
        {"bit in the first chunk", flipped(100)},
        {"bit in the last chunk", flipped(whole.size() - 1)},
        {"partial chunk", whole.substr(0, 24 + 4113 + 2000)},
        {"chunk below the tag's size", whole.substr(0, 24 + 5)},
        {"chunk missing in the middle", whole.substr(0, 24) + whole.substr(24 + 4113)},
    };
    int failures = 0;
    for (const auto& c : cases) {
        writeFile("input/x.enc", c.bytes);
        writeFile("input/x.xml", "an older one");
        EXPECT_FALSE(gf_streamDecrypt("input/x.enc", "input/x.xml")) << c.what;
        EXPECT_FALSE(fs::exists("input/x.xml")) << c.what;
        EXPECT_EQ(logCount("gf_streamDecrypt exception: Decryption failed"), ++failures) << c.what;
    }
}

TEST_F(StreamCipher, AnotherKeyOpensNothing) {
    encipher("text");
    auto other = cipherKey;
    other[31] ^= 1;
    EXPECT_THROW(lf_streamDecrypt(other, "input/x.enc", "input/x.xml"), std::runtime_error);
    EXPECT_NO_THROW(lf_streamDecrypt(cipherKey, "input/x.enc", "input/x.xml"));
}

// What a failed download leaves is told by the XML reader, as an empty document.
TEST_F(StreamCipher, EmptyAndCutFilesGiveAnEmptyOrShorterText) {
    const auto text = textOf(9000);
    const auto whole = encipher(text);
    const struct {
        size_t bytes, plain;
    } cases[] = {{0, 0}, {10, 0}, {24, 0}, {24 + 4113, 4096}, {24 + 2 * 4113, 8192}};
    for (const auto& c : cases) {
        writeFile("input/x.enc", whole.substr(0, c.bytes));
        EXPECT_TRUE(gf_streamDecrypt("input/x.enc", "input/x.xml")) << c.bytes;
        EXPECT_EQ(readFile("input/x.xml"), text.substr(0, c.plain)) << c.bytes;
    }
}

TEST_F(StreamCipher, NamesTheFileThatDoesNotOpen) {
    EXPECT_FALSE(gf_streamDecrypt("input/none.enc", "input/x.xml"));
    EXPECT_TRUE(logHas("gf_streamDecrypt exception: Could not open input file: input/none.enc"));
    fs::create_directory("input/folder.enc");
    EXPECT_FALSE(gf_streamDecrypt("input/folder.enc", "input/x.xml"));
    EXPECT_TRUE(logHas("Could not open input file: input/folder.enc"));
    encipher("text");
    EXPECT_FALSE(gf_streamDecrypt("input/x.enc", "nowhere/x.xml"));
    EXPECT_TRUE(logHas("Could not open output file: nowhere/x.xml"));
}

TEST_F(StreamCipher, AFailedEncipheringKeepsTheOldFile) {
    const auto old = encipher("text");
    EXPECT_THROW(gf_streamEncrypt(cipherKey, "none", "input/x.enc"), std::runtime_error);
    EXPECT_EQ(readFile("input/x.enc"), old);
    EXPECT_FALSE(fs::exists("input/x.enc.part"));
}

TEST_F(StreamCipher, RemovesATemporaryIfItIsThereAndSaysWhenItCannot) {
    gf_removeTemporary("input/none.xml");
    EXPECT_FALSE(logHas("Warning"));
    writeFile("input/full/file", "");
    gf_removeTemporary("input/full");
    EXPECT_TRUE(logHas("===> Warning: could not remove input/full, errorcode: "));
}

}  // namespace
}  // namespace skl
