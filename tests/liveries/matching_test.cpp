// The matching ladder: tables of requests against a small catalogue, and rules that hold for every request.
#include <fmt/format.h>

#include <map>
#include <set>

#include "core/parameters.h"
#include "core/random.h"
#include "engine/engine_state.h"
#include "liveries/catalogue.h"
#include "liveries/category_report.h"
#include "liveries/livery_scan.h"
#include "liveries/reference_db.h"
#include "liveries/similar_types.h"
#include "tests/support/temp_folder.h"

namespace skl {
namespace {

struct Row {
    const char* airline;
    const char* type;
    const char* title;
    bool cargo = false;
};

void buildCatalogue(const std::vector<Row>& rows) {
    gf_clearCatalogue();
    for (const auto& row : rows) liveriesByAirline[row.airline][row.type].push_back({row.title, row.cargo});
    for (const auto& row : rows) {
        titlesByAirlineType[row.cargo][row.airline][row.type].push_back(row.title);
        titlesByType[row.cargo][row.type].push_back(row.title);
    }
    lf_buildSimilarTypes();
    for (int category = 0; category < categoryCount; ++category)
        gf_reportCategory(static_cast<AcCategory>(category));
}

const std::vector<Row> fullCatalogue{
    {"KLM", "B738", "KLM 738"},         {"KLM", "B739", "KLM 739"},  {"KLM", "B744", "KLM 744"},
    {"UPS", "B744", "UPS 744F", true},  {"ZZZ", "B744", "ZZZ 744"},  {"ZZZ", "A333", "ZZZ 333"},
    {"ZZZ", "B738", "ZZZ 738"},         {"KLM", "E190", "KLM E190"}, {"KLM", "C56X", "KLM C56X"},
    {"DLH", "A320", "DLH 320 FSLTL_A"}, {"ZZZ", "C172", "ZZZ 172"},  {"PVT", "P28A", "PVT 28A"},
    {"PVT", "C25A", "PVT C25A"},        {"PVT", "EC35", "PVT EC35"}, {"PVT", "C208", "PVT C208F", true},
    {"ZZZ", "F16", "ZZZ F16"},          {"ABC", "SR20", "ABC SR20"},
};

class Matching : public test::TempFolderTest {
  protected:
    void SetUp() override {
        TempFolderTest::SetUp();
        gf_clearDbase();
        largeTypes = {"B738", "B739", "A320", "E190"};
        heavyTypes = {"B744", "B748", "A333"};
        buzjetTypes = {"C56X", "C25A", "C25B"};
        highPerfTypes = {"F16", "F18"};
        rotorcraftTypes = {"EC35", "H60"};
        similarRows = {{"A320", "C56X", "B738", "B739"}, {"C172", "P28A"}, {"SR20", "SR22"}, {"F16", "F18"}};
        dbaseRecords["PH-OPR"] = {.airl = "KLM", .type = "B738", .opr = "DLH", .cargo = false};
        RANDOM.value = false;
        MATCHING_DEPTH.value = 4;
        matchCounters = {};
        buildCatalogue(fullCatalogue);
    }
    void TearDown() override {
        gf_clearUncreatable();
        gf_clearCatalogue();
        unmatchedKeys.clear();
        gf_clearDbase();
        TempFolderTest::TearDown();
    }
    static LiveAc request(const std::string& airline, const std::string& model,
                          const std::string& regcode = "", bool cargo = false) {
        LiveAc record;
        record.airline = airline;
        record.model = model;
        record.regcode = regcode;
        record.cargo = cargo;
        record.category = gf_category(model);
        return record;
    }
    /// "step title", or empty.
    static std::string live(LiveAc record, int depth = 4) {
        MATCHING_DEPTH.value = depth;
        matchCounters = {};
        gf_matchLiveLivery(record);
        for (size_t i = 0; i < 6; ++i)
            if (matchCounters[i]) return fmt::format("{} {}", i + 1, record.title);
        return std::string(record.title);
    }
    static std::string parked(LiveAc record, bool cargo = false, int depth = 4) {
        MATCHING_DEPTH.value = depth;
        return gf_matchStaticLivery(record, cargo, "A1") ? std::string(record.title) : "";
    }
};

TEST_F(Matching, LadderOfLiveAircraft) {
    regcodeToTitle["PH-BXA"] = titlesByType[0].at("B739").front();
    struct Case {
        const char *airline, *model, *regcode;
        bool cargo;
        const char* byDepth[4];  ///< depth 1 to 4
    };
    const Case cases[] = {
        {"DLH", "A320", "PH-BXA", false, {"1 KLM 739", "1 KLM 739", "1 KLM 739", "1 KLM 739"}},
        {"DLH", "A320", "PHBXA", false, {"", "2 DLH 320 FSLTL_A", "2 DLH 320 FSLTL_A", "2 DLH 320 FSLTL_A"}},
        {"KLM", "B744", "", true, {"", "2 KLM 744", "2 KLM 744", "2 KLM 744"}},
        {"UPS", "B744", "", true, {"", "2 UPS 744F", "2 UPS 744F", "2 UPS 744F"}},
        {"UPS", "B744", "", false, {"", "", "", "4 ZZZ 744"}},
        // The operator's airline of the database, at its own type and at a similar one.
        {"QQQ", "B738", "PH-OPR", false, {"", "2 KLM 738", "2 KLM 738", "2 KLM 738"}},
        {"QQQ", "A320", "PH-OPR", false, {"", "", "3 KLM 738", "3 KLM 738"}},
        // A business jet is similar in the table, but of another category.
        {"KLM", "A320", "", false, {"", "", "3 KLM 738", "3 KLM 738"}},
        {"QQQ", "B748", "", false, {"", "", "", ""}},
        {"QQQ", "A333", "", false, {"", "", "", "4 ZZZ 333"}},
        {"", "B738", "PH-OPR", false, {"", "", "", "4 ZZZ 738"}},
        {"PVT", "C172", "", false, {"", "4 ZZZ 172", "4 ZZZ 172", "4 ZZZ 172"}},
        {"QQQ", "C172", "", false, {"", "", "4 ZZZ 172", "4 ZZZ 172"}},
        {"QQQ", "P28A", "", false, {"", "", "5 PVT 28A", "5 PVT 28A"}},
        {"QQQ", "SR22", "", false, {"", "", "6 ABC SR20", "6 ABC SR20"}},
        {"QQQ", "SR22", "", true, {"", "", "", ""}},
        {"QQQ", "C208", "", true, {"", "", "5 PVT C208F", "5 PVT C208F"}},
        {"QQQ", "C25B", "", false, {"", "", "6 PVT C25A", "6 PVT C25A"}},
        {"QQQ", "H60", "", false, {"", "", "6 PVT EC35", "6 PVT EC35"}},
        {"QQQ", "F18", "", false, {"", "", "", ""}},
        {"QQQ", "F16", "", false, {"", "", "", "4 ZZZ F16"}},
    };
    for (const auto& test : cases)
        for (int depth = 1; depth <= 4; ++depth)
            EXPECT_EQ(live(request(test.airline, test.model, test.regcode, test.cargo), depth),
                      test.byDepth[depth - 1])
                << test.airline << ' ' << test.model << ' ' << test.regcode << " depth " << depth;
}

TEST_F(Matching, LadderOfParkedAircraft) {
    // No test of the category: the business jet comes first.
    EXPECT_EQ(parked(request("KLM", "A320")), "KLM C56X");
    // The second try walks the list of the aircraft's own airline.
    EXPECT_EQ(parked(request("QQQ", "A320", "PH-OPR"), false, 3), "");
    EXPECT_EQ(parked(request("", "B738", "PH-OPR"), false, 2), "KLM 738");
    EXPECT_EQ(parked(request("UPS", "B744"), true), "UPS 744F");
    EXPECT_EQ(parked(request("UPS", "B744", "", true), false, 3), "");
    EXPECT_EQ(parked(request("QQQ", "SR22")), "ABC SR20");
    auto held = request("QQQ", "SR22");
    held.title = "held";
    EXPECT_EQ(parked(held, true), "held");
    EXPECT_EQ(matchCounters, (std::array<uint64_t, 6>{}));
    for (const char* line : {"          UPS B744 =2= UPS 744F", "          QQQ SR22 =6= ABC SR20",
                             "          QQQ SR22 =s= held", "A1      : "})
        EXPECT_EQ(test::logCount(line), *line == 'A' ? 2 : 1) << line;
}

TEST_F(Matching, LogLineAndFsltlMark) {
    auto record = request("DLH", "A320");
    gf_matchLiveLivery(record);
    EXPECT_TRUE(record.isFsltl);
    EXPECT_TRUE(test::logHas("          DLH A320 =2= DLH 320 FSLTL_A"));
    LOG.value = false;
    record = request("KLM", "B744");
    gf_matchLiveLivery(record);
    EXPECT_FALSE(record.isFsltl);
    EXPECT_FALSE(test::logHas("KLM 744"));
}

TEST_F(Matching, SpecialLiveriesAreAvoided) {
    buildCatalogue({{"KLM", "B738", "a"}, {"KLM", "B738", "b"}, {"KLM", "B738", "c"}});
    gf_addSpecialTitle("a");
    EXPECT_EQ(live(request("KLM", "B738")), "2 b");
    gf_addSpecialTitle("b");
    RANDOM.value = true;
    for (int i = 0; i < 200; ++i) EXPECT_EQ(live(request("KLM", "B738")), "2 c");
    gf_addSpecialTitle("c");
    std::set<std::string> seen;
    for (int i = 0; i < 200; ++i) seen.insert(live(request("KLM", "B738")));
    EXPECT_EQ(seen, (std::set<std::string>{"2 a", "2 b", "2 c"}));
    RANDOM.value = false;
    EXPECT_EQ(live(request("KLM", "B738")), "2 a");
}

TEST_F(Matching, RandomChoiceReachesEveryTitle) {
    buildCatalogue({{"KLM", "B738", "a"}, {"KLM", "B738", "b"}, {"KLM", "B739", "c"}, {"KLM", "E190", "d"}});
    similarRows = {{"A320", "B738", "B739", "E190"}};
    lf_buildSimilarTypes();
    RANDOM.value = true;
    gf_seedRandom(1);
    std::map<std::string, int> seen;
    for (int i = 0; i < 400; ++i) ++seen[live(request("KLM", "B738"))];
    EXPECT_EQ(seen.size(), 2u);
    EXPECT_GT(seen["2 a"], 120);
    EXPECT_GT(seen["2 b"], 120);
    seen.clear();
    for (int i = 0; i < 300; ++i) ++seen[live(request("KLM", "A320"))];
    EXPECT_EQ(seen.size(), 4u);
}

TEST_F(Matching, RefusedTitleEndsTheSearch) {
    const auto& title = titlesByAirlineType[0].at("KLM").at("B744").front();
    EXPECT_EQ(gf_addUncreatable(title, "B744 KLM"), 1u);
    EXPECT_EQ(gf_addUncreatable(title, "B744 KLM"), 1u);
    EXPECT_EQ(live(request("KLM", "B744")), "");
    EXPECT_EQ(parked(request("KLM", "B744")), "");
    gf_clearUncreatable();
    EXPECT_EQ(live(request("KLM", "B744")), "2 KLM 744");
}

/// Every category, cargo or not, each depth, live and parked: no crash, and the rules that always hold.
TEST_F(Matching, RulesOfEveryRequest) {
    const std::vector<Row> catalogues[] = {{}, {{"KLM", "B738", "KLM 738"}}, fullCatalogue};
    for (const bool random : {false, true}) {
        RANDOM.value = random;
        for (const auto& catalogue : catalogues) {
            buildCatalogue(catalogue);
            std::map<std::string, Row> rows;
            for (const auto& row : catalogue) rows[row.title] = row;
            for (const char* airline : {"", "PVT", "KLM", "UPS", "ZZZ", "QQQ"})
                for (const char* model :
                     {"B738", "A320", "B748", "B744", "C56X", "C25B", "SR22", "C208", "F18", "H60", ""})
                    for (const bool cargo : {false, true})
                        for (int depth = 1; depth <= 4; ++depth) {
                            const auto hit = live(request(airline, model, "", cargo), depth);
                            const auto still = parked(request(airline, model), cargo, depth);
                            const auto what = fmt::format("{} {} {} {} -> {} / {}", airline, model, cargo,
                                                          depth, hit, still);
                            EXPECT_TRUE(depth > 1 || (hit + still).empty()) << what;
                            if (hit.empty()) continue;
                            const int step = hit[0] - '0';
                            const Row& row = rows.at(hit.substr(2));
                            EXPECT_TRUE(cargo || !row.cargo) << what;
                            EXPECT_TRUE(step < 5 || row.cargo == cargo) << what;
                            EXPECT_TRUE(step == 3 || step == 6 || std::string(row.type) == model) << what;
                            EXPECT_TRUE(step != 2 || std::string(row.airline) == airline) << what;
                            const auto category = gf_category(model);
                            EXPECT_TRUE(step == 6 || gf_category(row.type) == category) << what;
                            EXPECT_TRUE(step <= 4 || category == AcCategory::Light ||
                                        category == AcCategory::Buzjets || category == AcCategory::Rotorcraft)
                                << what;
                        }
        }
    }
}

TEST_F(Matching, Summary) {
    unmatchedKeys = {"QQQ B748 N2", "QQQ B748 N1"};
    gf_logMatchSummary();
    EXPECT_FALSE(test::logHas("summary"));
    EXPECT_TRUE(test::logHas("No match found")) << "most wanted when nothing matched";
    matchCounters = {3, 0, 0, 0, 0, 1};
    gf_addUncreatable("y", "B744 KLM");
    gf_addUncreatable("x", "A320 DLH");
    const size_t before = test::logLines().size();
    gf_logMatchSummary();
    auto lines = test::logLines();
    lines.erase(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(before));
    const std::string stars(31, '*');
    EXPECT_EQ(lines, (std::vector<std::string>{"",
                                               stars + " live traffic livery matching summary " + stars,
                                               "Matches at step: ",
                                               "  1: 3",
                                               "  2: 0",
                                               "  3: 0",
                                               "  4: 0",
                                               "  5: 0",
                                               "  6: 1",
                                               "",
                                               "Could not be created by MSFS:",
                                               "  A320 DLH",
                                               "  B744 KLM",
                                               std::string(100, '*'),
                                               "",
                                               "",
                                               "No match found for:",
                                               "QQQ B748 N1",
                                               "QQQ B748 N2",
                                               ""}));
    LOG.value = false;
    gf_logUnmatched();
    EXPECT_EQ(test::logCount("No match found"), 2) << "not without LOG";
}

}  // namespace
}  // namespace skl
