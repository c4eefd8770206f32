// Detection of character sets, and the lines of files in each of them.
#include "core/charset.h"

#include <stdexcept>

#include "core/messages.h"
#include "panel/panel_state.h"
#include "platform/text_conversion.h"
#include "tests/support/temp_folder.h"

namespace skl {
namespace {

using test::logHas;
using test::writeFile;
using Lines = std::vector<std::string>;

std::string bytes(std::initializer_list<int> values) {
    std::string text;
    for (int value : values) text.push_back(static_cast<char>(value));
    return text;
}

class CharsetTest : public test::TempFolderTest {};

TEST_F(CharsetTest, Detection) {
    struct Case {
        const char* what;
        std::string content;
        Charset expected;
    };
    const std::string filler(1026, 'x');
    const std::vector<Case> cases{
        {"empty", "", Charset::noneFound},
        {"one byte", "a", Charset::noneFound},
        {"ascii", "ab", Charset::utf8WithoutBom},
        {"two bytes of a mark of three", bytes({0xEF, 0xBB}), Charset::ansi},
        {"mark alone", bytes({0xEF, 0xBB, 0xBF}), Charset::utf8WithBom},
        {"little endian", bytes({0xFF, 0xFE}), Charset::unicode},
        {"little endian before anything else", bytes({0xFF, 0xFE, 0xFF}), Charset::unicode},
        {"big endian", bytes({0xFE, 0xFF, 0, 'a'}), Charset::unicodeBigEndian},
        {"sequences of 2, 3 and 4", "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x9B\xA9", Charset::utf8WithoutBom},
        {"Latin-1", "Z\xFCrich", Charset::ansi},
        {"follower first", bytes({0x80, 'a'}), Charset::ansi},
        {"lead that none has", bytes({0xF8, 0x80, 0x80, 0x80, 0x80}), Charset::ansi},
        {"sequence cut by the end of the file", bytes({'a', 0xE2, 0x82}), Charset::ansi},
        {"sequence cut by the end of what is looked at", filler + "\xC3\xA4", Charset::ansi},
        {"the same a byte earlier", filler.substr(1) + "\xC3\xA4", Charset::utf8WithoutBom},
        {"bad bytes behind what is looked at", filler + "x\xFF\xFF", Charset::utf8WithoutBom}};
    for (const auto& [what, content, expected] : cases) {
        writeFile("file.txt", content);
        EXPECT_EQ(gf_charsetName(gf_detectCharset("file.txt")), gf_charsetName(expected)) << what;
    }
    EXPECT_EQ(gf_detectCharset("gone.txt"), Charset::noneFound);
    EXPECT_TRUE(logHas("Cannot open file gone.txt for character encoding. Win32 error: 2"));
    std::filesystem::create_directory("folder");
    EXPECT_EQ(gf_detectCharset("folder"), Charset::noneFound);
}

std::string wide(std::u16string_view text, bool bigEndian) {
    std::string result;
    for (char16_t unit : text) {
        const auto low = static_cast<char>(unit & 0xFF), high = static_cast<char>(unit >> 8);
        result.push_back(bigEndian ? high : low);
        result.push_back(bigEndian ? low : high);
    }
    return result;
}

TEST_F(CharsetTest, TheSameLinesInEachSetAndWithEachLineEnd) {
    const Lines expected{"first \xC3\xA4", "", "\xF0\x9F\x9B\xA9 last"};
    for (const bool crLf : {false, true})
        for (const bool endsWithLine : {false, true}) {
            std::string text = expected[0] + "\n\n" + expected[2] + (endsWithLine ? "\n" : "");
            if (crLf)
                for (size_t at = 0; (at = text.find('\n', at)) != std::string::npos; at += 2)
                    text.insert(at, "\r");
            const std::u16string units = win32::utf8ToUtf16(text);
            for (const auto& content : Lines{text, "\xEF\xBB\xBF" + text, wide(u"\uFEFF" + units, false),
                                             wide(u"\uFEFF" + units, true)}) {
                writeFile("file.txt", content);
                const Charset charset = gf_detectCharset("file.txt");
                Lines lines{"before"};
                ASSERT_TRUE(gf_readLines(charset, "file.txt", lines));
                lines.erase(lines.begin());
                EXPECT_EQ(lines, expected) << gf_charsetName(charset) << crLf << endsWithLine;
            }
        }
}

TEST_F(CharsetTest, AnsiBytesStayAndOnlyOneCarriageReturnGoes) {
    writeFile("file.txt", "Z\xFCrich\r\r\n\r\n");
    Lines lines;
    ASSERT_TRUE(gf_readLines(gf_detectCharset("file.txt"), "file.txt", lines));
    EXPECT_EQ(lines, (Lines{"Z\xFCrich\r", ""}));
}

TEST_F(CharsetTest, AHalfSurrogateIsAMessageAndUnknownSetsAreErrors) {
    gf_resetMessages();
    writeFile("file.txt", wide(u"\uFEFFgood\nx\xD800y\n", false));
    Lines lines;
    EXPECT_FALSE(gf_readLines(Charset::unicode, "file.txt", lines));
    EXPECT_EQ(lines, Lines{"good"});
    EXPECT_EQ(gf_panelText(&PanelState::statusText), "conversion from error from utf16 to utf8, code: 1113");
    EXPECT_TRUE(logHas("utf8, code: 1113"));
    EXPECT_FALSE(gf_readLines(Charset::ansi, "gone.txt", lines));
    try {
        gf_readLines(Charset::noneFound, "file.txt", lines);
        FAIL() << "read without a character set";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "file file.txt has unknown charset: none_found");
    }
}

}  // namespace
}  // namespace skl
