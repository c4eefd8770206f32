// The table of controls: complete, no id twice, each with a tip that the manual repeats.
#include "panel/control_table.h"

#include <gtest/gtest.h>

#include <set>

#include "core/parameters.h"
#include "tests/support/temp_folder.h"

namespace skl {
namespace {

TEST(ControlTable, EachControlOnceWithATipOfTheManual) {
    const std::string manual = test::readFile(SKYLANTERN_SOURCE_DIR "/docs/manual.md");
    std::set<int> ids;
    for (const PanelControl& control : gf_panelControls()) {
        const std::string name = gf_controlName(control);
        EXPECT_TRUE(ids.insert(control.parameter.controlId).second) << name;
        EXPECT_EQ(gf_panelControl(control.parameter.controlId), &control);
        const std::string tip = control.tip;
        ASSERT_FALSE(tip.empty()) << name;
        EXPECT_EQ(tip.back(), '.') << name;
        EXPECT_NE(manual.find("| `" + name + "` | " + tip + " |"), std::string::npos) << name << ": " << tip;
    }
    EXPECT_EQ(ids.size(), 42u);
}

TEST(ControlTable, AControlShowsItsParameter) {
    gf_resetParameters();
    RANGE.value = 33;  // between two entries of the list
    const auto range = gf_controlState(*gf_panelControl(RANGE.controlId));
    EXPECT_EQ(range.text, "33");
    EXPECT_EQ(range.items.size(), RANGE.allowed.size());
    EXPECT_FALSE(range.enabled);
    LOG.value = false;
    LOG.enabled = true;
    const auto log = gf_controlState(*gf_panelControl(LOG.controlId));
    EXPECT_FALSE(log.checked);
    EXPECT_TRUE(log.enabled);
    EXPECT_EQ(gf_controlState(*gf_panelControl(SIM_CHOICE.controlId)).text, "MSFS 2020");
    EXPECT_EQ(gf_controlSpec(*gf_panelControl(rereadButton.controlId)).caption, "Re-read");
    EXPECT_EQ(gf_panelControl(1), nullptr);
}

}  // namespace
}  // namespace skl
