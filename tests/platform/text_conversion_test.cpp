// Strictness of the conversion between UTF-8 and UTF-16.
#include "platform/text_conversion.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

TEST(TextConversion, BorderValuesGoThereAndBack) {
    const std::u16string borders(u"\u0001\u007F\u0080\u07FF\u0800\uD7FF\uE000\uFFFF\U00010000\U0010FFFF");
    EXPECT_EQ(win32::utf8ToUtf16(win32::utf16ToUtf8(borders)), borders);
    EXPECT_EQ(win32::utf16ToUtf8(u"a\u20AC\U0001F6E9"), "a\xE2\x82\xAC\xF0\x9F\x9B\xA9");
}

TEST(TextConversion, BadSequencesAreRefusedNeverReplaced) {
    const std::vector<std::pair<const char*, std::string>> bad{{"follower alone", "a\x80"},
                                                               {"cut off", "\xE2\x82"},
                                                               {"follower missing",
                                                                "\xC3"
                                                                "a"},
                                                               {"overlong of 2", "\xC0\xAF"},
                                                               {"overlong of 3", "\xE0\x9F\xBF"},
                                                               {"overlong of 4", "\xF0\x8F\xBF\xBF"},
                                                               {"surrogate", "\xED\xA0\x80"},
                                                               {"above the last", "\xF4\x90\x80\x80"},
                                                               {"no lead", "\xFF"}};
    for (const auto& [what, text] : bad) {
        try {
            win32::utf8ToUtf16(text);
            ADD_FAILURE() << what;
        } catch (const win32::Utf8ConversionException& error) {
            EXPECT_EQ(error.code(), 1113u);
            EXPECT_STREQ(error.what(), "Invalid UTF-8 sequence found in input string.");
        }
    }
    for (const std::u16string& text : {std::u16string(1, 0xD800), std::u16string{0xD800, u'a'},
                                       std::u16string(1, 0xDC00), std::u16string{0xDC00, 0xD800}}) {
        try {
            win32::utf16ToUtf8(text);
            ADD_FAILURE() << "half a surrogate pair";
        } catch (const win32::Utf8ConversionException& error) {
            EXPECT_EQ(error.code(), 1113u);
            EXPECT_STREQ(error.what(), "Invalid UTF-16 sequence found in input string.");
        }
    }
}

}  // namespace
