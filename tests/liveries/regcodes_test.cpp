// Registration codes of all three sources, from their files to the tables that the matching uses.
#include "liveries/regcodes.h"

#include <gtest/gtest.h>

#include <fmt/format.h>

#include "core/folders.h"
#include "core/log.h"
#include "core/parameters.h"
#include "distribution/cipher_key.h"
#include "distribution/stream_cipher.h"
#include "liveries/catalogue.h"
#include "liveries/catalogue_views.h"
#include "liveries/livery_scan.h"
#include "tests/support/temp_folder.h"

namespace skl {
namespace {

using test::logCount;
using test::logHas;
using test::readFile;
using test::writeFile;

class RegcodesTest : public test::TempFolderTest {
  protected:
    void SetUp() override {
        TempFolderTest::SetUp();
        gf_startLog();
        gf_clearCatalogue();
        scannedLiveries.clear();
    }
    void TearDown() override {
        gf_clearCatalogue();
        scannedLiveries.clear();
        gf_closeLog();
        TempFolderTest::TearDown();
    }
    static void distribute(const std::string& rows) {
        writeFile("plain.xml", "<AIG-regcodes>" + rows + "</AIG-regcodes>");
        fs::create_directories(paths::input);
        gf_streamEncrypt(cipherKey, "plain.xml", paths::regcodesEnc);
    }
    static void install(const std::vector<std::pair<std::string, std::string>>& titles) {
        for (const auto& [title, atcId] : titles) {
            liveriesByAirline["KLM"]["B738"].push_back({title, false});
            scannedLiveries.push_back({.airline = "KLM", .model = "B738", .title = title, .regcode = atcId});
        }
    }
    static std::string titleOf(const std::string& reg) {
        const auto found = regcodeToTitle.find(reg);
        return found == regcodeToTitle.end() ? "-" : std::string(found->second);
    }
    /// "title[regs]" and a mark for special ones.
    static std::string shown(const std::vector<RegcodeRow>& rows) {
        std::string text;
        for (const RegcodeRow& row : rows) {
            text += row.title + '[';
            for (const std::string& reg : row.regs) text += reg + ' ';
            text += row.special ? "]# " : "] ";
        }
        return text;
    }
};

TEST_F(RegcodesTest, LinesOfTheUser) {
    struct Case {
        std::string line, rows, said;
    };
    for (const Case& c : {Case{"B738 KLM", "B738 KLM[] ", ""},
                          {"", "", ""},
                          {"  ", "", ""},
                          {"B738 KLM;PH-AAA", "B738 KLM[PH-AAA ]# ", ""},
                          {"B738 KLM; PH-AAA , PH-AAB ", "B738 KLM[PH-AAA PH-AAB ] ", ""},
                          {"B738 KLM;PH-AAA,PH-AAB;#", "B738 KLM[PH-AAA PH-AAB ]# ", ""},
                          {"B738 KLM;PH-AAA,PH-AAB;x", "B738 KLM[PH-AAA PH-AAB ] ", ""},
                          {"B738 KLM;PH-AAA;", "B738 KLM[PH-AAA ]# ", ""},
                          {"B738 KLM;", "", ""},
                          {"B738 KLM;,;#", "", ""},
                          {"B738 KLM;AB", "", "wrong regcode length 'AB' in "},
                          {"B738 KLM;ABCDEFGHIJKLM", "", "wrong regcode length 'ABCDEFGHIJKLM' in "},
                          {"B738 KLM;AB,PH-AAA", "B738 KLM[PH-AAA ] ", "wrong regcode length 'AB' in "},
                          {"B738 KLM;AB,CD", "", " ; regs empty?"},
                          {"a;b;c;d", "", ": wrong format 'a;b;c;d'"}}) {
        writeFile("my/x.txt", c.line + "\r\n");
        std::vector<RegcodeRow> rows;
        EXPECT_TRUE(gf_readMyRegcodes("my", rows));
        EXPECT_EQ(shown(rows), c.rows) << c.line;
        EXPECT_TRUE(c.said.empty() || logHas(c.said)) << c.line;
    }
}

TEST_F(RegcodesTest, FilesOfTheUser) {
    writeFile("my/b.TXT", "two;REG2");
    writeFile("my/a.txt", "\xef\xbb\xbfone \xc3\xa9;REG1");
    writeFile("my/c.Txt", std::string("\xff\xfet\0h\0r\0e\0e\0", 12));
    writeFile("my/d.csv", "not;read");
    writeFile("my/e.txt", "");
    writeFile("my/below/f.txt", "not;read");
    std::vector<RegcodeRow> rows;
    EXPECT_TRUE(gf_readMyRegcodes("my", rows));
    EXPECT_EQ(shown(rows), "one \xc3\xa9[REG1 ]# two[REG2 ]# three[] ");
    EXPECT_TRUE(logHas("Processing regcodes file 'my/a.txt'"));
    EXPECT_TRUE(logHas("3 liveries"));
    writeFile("my/b2.txt", "\xff\xfe\xd8");  // half of a character
    rows.clear();
    gf_readMyRegcodes("my", rows);
    EXPECT_EQ(rows.size(), 3u) << "the other files still count";
    EXPECT_FALSE(gf_readMyRegcodes("nowhere", rows));
    EXPECT_TRUE(logHas("===> Error reading regcode files in nowhere, what: "));
}

TEST_F(RegcodesTest, TheDistributedFile) {
    std::vector<RegcodeRow> rows;
    EXPECT_FALSE(gf_readAigRegcodes(rows));
    writeFile(
        paths::regcodesXml,
        "<AIG-regcodes><livery reg='A'/><livery title='one' reg=' A , B ,'/><livery title='one' reg='C'/>"
        "<livery title='two' special='yes'/></AIG-regcodes>");
    EXPECT_FALSE(gf_readAigRegcodes(rows)) << "a title twice";
    EXPECT_EQ(shown(rows), "one[A B ] two[]# ");
    EXPECT_TRUE(logHas("===> SAME AS PREVIOUS title 'one'"));
    EXPECT_TRUE(logHas("2 liveries read from input/AIG-regcodes.xml"));
}

TEST_F(RegcodesTest, TitlesWithoutARegistrationAreBanned) {
    gf_readDontUseTitles();
    EXPECT_TRUE(dontUseTitles.empty()) << "no source at all";
    distribute("<livery title='bad'/><livery title='good' reg='PH-AAA'/>");
    writeFile(paths::myRegcodes / "x.txt", "worse\nfine;PH-AAB\n");
    gf_readDontUseTitles();
    EXPECT_EQ(dontUseTitles, (StringSet{"bad", "worse"}));
    EXPECT_FALSE(fs::exists(paths::regcodesXml));
    EXPECT_TRUE(logHas("1 don't use title read from files in input/my_regcodes"));
    writeFile(paths::regcodesEnc, "no cipher");
    gf_readDontUseTitles();
    EXPECT_EQ(dontUseTitles, StringSet{"worse"}) << "the other source still counts";
}

TEST_F(RegcodesTest, LaterSourcesOverrule) {
    install({{"one", "PH-AAA"}, {"two", "PH-AAA"}, {"three", "PH-AAC"}, {"four", ""}});
    scannedLiveries.push_back({.airline = "KLM", .model = "B738", .title = "gone", .regcode = "PH-XXX"});
    distribute(
        "<livery title='two' reg='PH-AAA,PH-AAB'/><livery title='missing' reg='PH-ZZZ' special='1'/>"
        "<livery title='four' reg='PH-AAD' special='1'/><livery title='three' reg='PH-AAC'/>");
    writeFile(paths::myRegcodes / "x.txt", "three;PH-AAA,PH-AAE\n");
    gf_collectInlineRegcodes();
    EXPECT_EQ(titleOf("PH-AAA"), "one") << "the first stays";
    EXPECT_EQ(readFile("output/errors/InlineRegcodes.txt"),
              "PH-AAA 'two' => already in use by 'one'\n"
              "==> [KLM B738] PH-XXX 'gone' not available, system error, should not happen?\n");
    gf_applyOfflineRegcodes();
    const std::pair<const char*, const char*> expected[] = {{"PH-AAA", "three"}, {"PH-AAB", "two"},
                                                            {"PH-AAC", "three"}, {"PH-AAD", "four"},
                                                            {"PH-AAE", "three"}, {"PH-ZZZ", "-"}};
    for (const auto& [reg, title] : expected) EXPECT_EQ(titleOf(reg), title) << reg;
    EXPECT_EQ(readFile("output/info/OfflineRegcodes.txt"),
              "Processing file input/AIG-regcodes.enc\n"
              "   regcode PH-AAA for 'two', instead of the same for 'one'\n"
              "2 new regcodes added, 1 regcode replaced, 1 regcode defined as special\n"
              "Processing files in input/my_regcodes\n"
              "   regcode PH-AAA for 'three', instead of the same for 'two'\n"
              "1 new regcode added, 1 regcode replaced\n");
    EXPECT_TRUE(lf_isSpecial("four"));
    EXPECT_FALSE(lf_isSpecial("two"));
    EXPECT_TRUE(logHas("1 special liveries"));
    EXPECT_FALSE(fs::exists(paths::regcodesXml));
    gf_clearCatalogue();
    fs::remove(paths::regcodesEnc);
    fs::remove_all(paths::myRegcodes);
    gf_applyOfflineRegcodes();
    EXPECT_FALSE(fs::exists("output/info/OfflineRegcodes.txt")) << "no report of sources that are gone";
}

}  // namespace
}  // namespace skl
