// The sample bundle as the application loads it, without a window: what it looks like, and what its page is told.
// JOYVANE_UPDATE_GOLDEN=1 makes the pictures anew.

#include "app/Bundle.h"
#include "app/SettingsPage.h"
#include "kit/dispatch/ManualClock.h"
#include "kit/uikit/AccessibilityTree.h"
#include "kit/uikit/Touches.h"
#include "kit/uikit/application.h"
#include "kit/uikit/snapshot.h"
#include "platform/uikit/UINavigationController.h"
#include "system/files/root.h"
#include "system/run_loop/PollLoop.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/golden.h"

#include <gtest/gtest.h>

namespace {

// Letters come from the machine's fonts; everything else is exact to a step or two.
constexpr testing_support::PictureTolerance tolerance{.channel = 3, .share = 0.001};

// A bundle is loaded once in a process.
const app::Bundle& bundle() {
    static const app::Bundle read = [] {
        std::string problem;
        auto result = app::readBundle(SAMPLE_BUNDLE, problem);
        EXPECT_EQ(problem, "");
        return result;
    }();
    return read;
}

Class principalClass() {
    static const Class found = [] {
        std::string problem;
        const Class loaded =
            app::loadPrincipalClass(bundle(), seat::checkModule(bundle().modulePath, bundle().seal), problem);
        EXPECT_EQ(problem, "");
        return loaded;
    }();
    return found;
}

class Sample {
public:
    explicit Sample(CGSize size = {375, 667}, double scale = 2)
        : page((seat::setRoot(m_root.path()), bundle()), principalClass(), size, scale),
          m_touches(page.scene(), &m_clock) {
        settle();
    }
    ~Sample() {
        page.close();
        settle();
        seat::setRoot({});
    }

    void settle() {
        m_loop.runReady();
        m_touches.settle();
        m_loop.runReady();
    }
    void tap(const std::string& name) {
        page.scene().accessibility().update();
        for (const auto& [identity, node] : page.scene().accessibility().nodes())
            if (node.name == name && node.isOnScreen) {
                m_touches.tap({CGRectGetMidX(node.extent), CGRectGetMidY(node.extent)});
                settle();
                return;
            }
        ADD_FAILURE() << "there is no " << name;
    }
    bool has(const std::string& name, const std::string& value) {
        settle();
        page.scene().accessibility().update();
        for (const auto& [identity, node] : page.scene().accessibility().nodes())
            if (node.name == name && node.value == value) return true;
        return false;
    }
    bool waitFor(const std::string& name, const std::string& value) {
        return m_loop.runUntil([&] { return has(name, value); });
    }
    // What the page was told, in its own words.
    std::string journal() const {
        const id told = objc_msgSend(*page.navigation()->viewControllers().front(), "journal", {});
        return told.string() ? *told.string() : "";
    }
    std::string difference(const std::string& name) {
        return testing_support::compareWithGolden(seat::snapshot(page.scene()), SAMPLE_PICTURES, name, SAMPLE_FAILURES,
                                                  tolerance);
    }

private:
    testing_support::TemporaryFolder m_root;
    seat::ManualClock m_clock;
    seat::PollLoop m_loop;

public:
    app::SettingsPage page;

private:
    seat::Touches m_touches;
};

using Shape = std::tuple<CGSize, double>;

std::string nameOf(const Shape& shape) {
    const auto [size, scale] = shape;
    std::string name = "page-";
    name.append(std::to_string(int(size.width))).append("x").append(std::to_string(int(size.height)));
    return name.append("@").append(std::to_string(int(scale))).append("x");
}

class SamplePicture : public testing::TestWithParam<Shape> {};

TEST_P(SamplePicture, IsAsDrawnBefore) {
    const auto [size, scale] = GetParam();
    Sample sample(size, scale);

    EXPECT_EQ(sample.difference(nameOf(GetParam())), "");
}

INSTANTIATE_TEST_SUITE_P(All, SamplePicture,
                         testing::Combine(testing::Values(CGSize{320, 480}, CGSize{375, 667}, CGSize{1024, 768}),
                                          testing::Values(1.0, 2.0, 3.0)));

TEST(SamplePictures, ControlsWithThePictureFromTheWorker) {
    Sample sample;
    sample.tap("Controls");
    ASSERT_TRUE(sample.waitFor("Sample picture", "drawn"));
    sample.settle();

    EXPECT_EQ(sample.difference("controls"), "");
}

TEST(SamplePictures, AlertOverTheDimmedPage) {
    Sample sample;
    sample.tap("Show Alert");

    EXPECT_EQ(sample.difference("alert"), "");
    sample.tap("Left");
}

TEST(SamplePictures, ThePageIsTheSameAfterTheWindowHasHadOtherShapes) {
    Sample sample;
    for (const auto& [size, scale] : {Shape{{1024, 768}, 1}, Shape{{320, 480}, 3}, Shape{{375, 667}, 2}}) {
        sample.page.scene().resize(size, scale);
        sample.settle();
    }

    EXPECT_EQ(sample.difference("page-375x667@2x"), "");
}

TEST(SampleJournal, ThePageHearsOfItsLifeInOrder) {
    Sample sample;
    EXPECT_EQ(sample.journal(), "didLoad willAppear didAppear");

    sample.tap("Controls");
    EXPECT_EQ(sample.journal(), "didLoad willAppear didAppear willDisappear didDisappear");
    sample.page.navigation()->popViewControllerAnimated(/*animated=*/false);
    sample.tap("Show Alert");
    sample.tap("Right");
    seat::applicationDidEnterBackground();
    sample.tap("A switch");

    EXPECT_EQ(sample.journal(), "didLoad willAppear didAppear willDisappear didDisappear willAppear didAppear "
                                "dismissed:1 background set:switch_row");
}

} // namespace
