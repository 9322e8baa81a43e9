// The page as it looks: every type in both modes, ambient on and off, three sizes, three scales.
// JOYVANE_UPDATE_GOLDEN=1 makes the pictures anew.

#include "tests/support/golden.h"
#include "kit/uikit/snapshot.h"
#include "settings/JoyvaneListController.h"
#include "tests/support/LoggedLines.h"
#include "tests/support/SettingsHost.h"

#include <gtest/gtest.h>

namespace {

struct Look {
    long type = 0;
    long mode = 0;
    bool ambient = false;
    CGSize size{375, 667};
    double scale = 2;
};

std::string nameOf(const Look& look) {
    return "type" + std::to_string(look.type) + (look.mode == 1 ? "-by-hand" : "") + (look.ambient ? "-ambient" : "") +
           "-" + std::to_string(int(look.size.width)) + "x" + std::to_string(int(look.size.height)) + "@" +
           std::to_string(int(look.scale)) + "x";
}

std::vector<Look> looks() {
    std::vector<Look> all;
    for (long type = 0; type <= 6; ++type)
        for (const long mode : {0, 1})
            if (type != 1 || mode != 1) all.push_back({.type = type, .mode = mode, .scale = 1});
    for (const CGSize size : {CGSize{320, 480}, CGSize{375, 667}, CGSize{1024, 768}})
        for (const double scale : {1.0, 2.0, 3.0}) {
            all.push_back({.type = 1, .mode = 1, .size = size, .scale = scale});
            all.push_back({.type = 1, .mode = 1, .ambient = true, .size = size, .scale = scale});
        }
    return all;
}

// Letters come from the machine's fonts; everything else is exact to a step or two.
constexpr testing_support::PictureTolerance tolerance{.channel = 3, .share = 0.001};

class PagePicture : public testing::TestWithParam<Look> {};

TEST_P(PagePicture, IsAsDrawnBefore) {
    const testing_support::LoggedLines quiet;
    const Look& look = GetParam();
    testing_support::SettingsHost app(look.size, look.scale);
    app.writePreferences(testing_support::dictionary({{"controller_type", NSNumber::numberWithInteger(look.type)},
                                                      {"connection_mode", NSNumber::numberWithInteger(look.mode)},
                                                      {"JVNAmbientColorKey", NSNumber::numberWithBool(look.ambient)}}));
    app.open(JoyvaneListController::alloc()->init());
    app.waitUntil([] { return false; }, 0.05);

    EXPECT_EQ(testing_support::compareWithGolden(seat::snapshot(app.scene()), PAGE_PICTURES, nameOf(look),
                                                 PAGE_FAILURES, tolerance),
              "");
}

INSTANTIATE_TEST_SUITE_P(All, PagePicture, testing::ValuesIn(looks()), [](const auto& look) {
    std::string name = nameOf(look.param);
    for (char& c : name)
        if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
    return name;
});

} // namespace
