// LiveriesScanned.xml: what is written comes back, and what a damaged file gives.
#include "liveries/liveries_file.h"

#include <fmt/format.h>

#include "core/errors.h"
#include "core/folders.h"
#include "liveries/livery_scan.h"
#include "tests/support/temp_folder.h"

namespace skl {
namespace {

class LiveriesFile : public test::TempFolderTest {
  protected:
    void SetUp() override {
        TempFolderTest::SetUp();
        scannedLiveries.clear();
        fs::create_directories(paths::output);
    }
    void TearDown() override {
        scannedLiveries.clear();
        TempFolderTest::TearDown();
    }
    static std::string described() {
        std::string text;
        for (const auto& l : scannedLiveries)
            text += fmt::format("{}|{}|{}|{}|{}|{}\n", l.airline, l.model, l.title, l.regcode, l.cargo,
                                l.priority);
        return text;
    }
};

TEST_F(LiveriesFile, WrittenAndReadBack) {
    scannedLiveries = {{"KLM", "B738", "b  \"<&>' \xFC", "PH-BXA", 3, true},
                       {"DLH", "B744", "z", "", 2, false},
                       {"KLM", "B738", "B", "", 1, false}};
    gf_writeLiveriesFile();
    const std::string text = test::readFile(paths::liveriesScanned);
    EXPECT_LT(text.find("<meta>"), text.find("<liveries>"));
    EXPECT_NE(text.find("<liv airl=\"KLM\" type=\"B738\" cargo=\"true\" title=\"b  &quot;&lt;&amp;"),
              text.npos)
        << text;
    EXPECT_NE(text.find("atcid=\"PH-BXA\" />"), text.npos) << text;
    EXPECT_NE(text.find("<liv airl=\"DLH\" type=\"B744\" title=\"z\" />"), text.npos) << text;
    EXPECT_TRUE(test::logHas("3 liveries in output/LiveriesScanned.xml"));

    gf_readLiveriesFile();
    EXPECT_EQ(described(),
              "DLH|B744|z||false|0\nKLM|B738|B||false|0\nKLM|B738|b  \"<&>' \xFC|PH-BXA|true|0\n");
    EXPECT_TRUE(test::logHas("3 liveries read from output/LiveriesScanned.xml"));
}

TEST_F(LiveriesFile, NothingIsNotWritten) {
    gf_writeLiveriesFile();
    EXPECT_FALSE(fs::exists(paths::liveriesScanned));
}

TEST_F(LiveriesFile, Failures) {
    const std::pair<const char*, const char*> cases[] = {
        {nullptr, "51: File output/LiveriesScanned.xml not found"},
        {"", "51: File output/LiveriesScanned.xml not found"},
        {"<liveries><liv", "51: File output/LiveriesScanned.xml not found"},
        {"<meta/>", "52: output/LiveriesScanned.xml does not contain a <liveries> section"},
        {"<liveries/>", "533: output/LiveriesScanned.xml does not contain liveries"},
        {"<liveries><other/></liveries>", "533: output/LiveriesScanned.xml does not contain liveries"},
        {"<liveries><liv type=\"B738\" title=\"A\"/></liveries>",
         "999: Missing required attribute 'airl' in <liv>"},
        {"<liveries><liv airl=\"\" title=\"A\"/></liveries>",
         "999: Missing required attribute 'type' in <liv>"},
        {"<liveries><liv airl=\"KLM\" type=\"B738\"/></liveries>",
         "999: Missing required attribute 'title' in <liv>"},
    };
    for (const auto& [content, text] : cases) {
        if (content) test::writeFile(paths::liveriesScanned, content);
        scannedLiveries = {{"KLM", "B738", "left over", "", 1, false}};
        try {
            gf_readLiveriesFile();
            ADD_FAILURE() << text;
        } catch (const UserErrorException& error) {
            EXPECT_STREQ(error.what(), text);
        }
    }
}

TEST_F(LiveriesFile, CargoIsAWordOfTruth) {
    std::string rows;
    for (const char* cargo : {"1", "true", "T", "yes", "Y", "false", "0", ""})
        rows += fmt::format("<liv airl=\"A\" type=\"B\" title=\"{0}\" cargo=\"{0}\"/>", cargo);
    test::writeFile(paths::liveriesScanned, "<liveries>" + rows + "</liveries>");
    gf_readLiveriesFile();
    std::string seen;
    for (const auto& livery : scannedLiveries) seen += livery.title + (livery.cargo ? "+ " : "- ");
    EXPECT_EQ(seen, "- 0- 1+ T+ Y+ false- true+ yes+ ");
}

}  // namespace
}  // namespace skl
