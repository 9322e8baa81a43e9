#include "kit/uikit/snapshot.h"
#include "tests/kit/settings_framework/pages.h"
#include "tests/support/golden.h"

#include <tuple>

namespace {

struct Size {
    double width;
    double height;
};

// A page with every kind of row, as large and as fine as windows come.
class PageLooks : public PageTest, public ::testing::WithParamInterface<std::tuple<Size, int>> {
protected:
    PageLooks() {
        const auto [size, scale] = GetParam();
        scene.resize({size.width, size.height}, scale);
        writeResource(
            group("first", "Controller",
                  "Choose what you play with. With “Connect by Hand” you connect and disconnect the controller "
                  "yourself.") +
            item("PSLinkListCell", "type", "Controller Type",
                 bound("type", "<integer>1</integer>") + choices({"PS3 Controller", "DualShock 4", "Keyboard"})) +
            item("PSLinkListCell", "mode", "A Title That Is Much Too Long To Fit Beside Its Value",
                 bound("mode", "<integer>0</integer>") + choices({"Automatic and Also Rather Long"})) +
            item("PSButtonCell", "pair", "Pair Controller", "<key>action</key><string>tapped:</string>") +
            group("second", "DualShock 4") + item("PSSwitchCell", "on", "Ambient LED Color", bound("on", "<true/>")) +
            item("PSSwitchCell", "off", "Force Extended Gamepad", bound("off", "<false/>")) + group("third", "") +
            item("PSStaticTextCell", "version", "Version", "<key>default</key><string>1.0</string>") +
            item("PSButtonCell", "disabled", "Connect Controller"));
        show();
        if (const auto connect = cell("disabled")) {
            connect->setUserInteractionEnabled(false);
            connect->textLabel()->setEnabled(false);
        }
    }
    static std::string name(const std::string& what) {
        const auto [size, scale] = GetParam();
        return what + "-" + std::to_string(int(size.width)) + "x" + std::to_string(int(size.height)) + "@" +
               std::to_string(scale) + "x";
    }
    // Text is drawn by whatever version of the font library is there, so that single pixels of it may differ.
    void expectLooks(const std::string& what) {
        EXPECT_EQ(testing_support::compareWithGolden(seat::snapshot(scene), GOLDEN_FOLDER, name(what), FAILURES_FOLDER,
                                                     {.channel = 40, .share = 0.02}),
                  "");
    }
};

TEST_P(PageLooks, EveryKindOfRow) { expectLooks("page"); }

// The states of rows need not be looked at in every size.
class RowLooks : public PageLooks {};

TEST_P(RowLooks, ListOfChoices) {
    touches.tap(*cell("type"));
    touches.settle();
    expectLooks("choices");
}

TEST_P(RowLooks, PressedRow) {
    touches.press(cell("pair")->convertPoint_toView({100, 20}, nullptr));
    touches.wait(0.3);
    expectLooks("pressed");
}

TEST_P(RowLooks, FocusedRow) {
    touches.key(43);
    touches.key(43);
    touches.settle();
    expectLooks("focused");
}

INSTANTIATE_TEST_SUITE_P(SizesAndScales, PageLooks,
                         ::testing::Combine(::testing::Values(Size{320, 480}, Size{375, 667}, Size{1024, 768}),
                                            ::testing::Values(1, 2, 3)));

INSTANTIATE_TEST_SUITE_P(OneSize, RowLooks, ::testing::Values(std::tuple(Size{375, 667}, 2)));

} // namespace
