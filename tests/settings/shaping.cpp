// Which texts a frame shapes: those that it shows for the first time, and no others. What is shaped is remembered, so
// that what was shaped meanwhile is what there is more of.

#include "desktop/painting/text_cache.h"
#include "kit/quartz/pixels.h"
#include "tests/settings/PageTest.h"

namespace {

class Shaping : public PageTest {
protected:
    // Lays out what asked for it, and paints everything.
    void wholeFrame() {
        app.scene().prepareFrame();
        const CGRect all{{0, 0}, app.scene().size()};
        const auto width = static_cast<int>(app.scene().size().width);
        const auto height = static_cast<int>(app.scene().size().height);
        m_pixels.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
        app.scene().paint({m_pixels.data(), width, height, width * static_cast<std::ptrdiff_t>(sizeof(std::uint32_t))},
                          {&all, 1});
    }
    template <class Use> std::size_t shapedBy(Use use) {
        const std::size_t before = seat::cachedTextLayoutCount();
        use();
        return seat::cachedTextLayoutCount() - before;
    }

private:
    std::vector<std::uint32_t> m_pixels;
};

TEST_F(Shaping, FrameOfTheSamePageShapesNothing) {
    seat::forgetTextLayouts();
    show(2);
    wholeFrame();
    EXPECT_GT(seat::cachedTextLayoutCount(), 5U);

    EXPECT_EQ(shapedBy([&] { wholeFrame(); }), 0U);
}

TEST_F(Shaping, LabelThatChangesIsShapedAlone) {
    show(2);
    wholeFrame();
    const auto row = page->specifierForID("controller_type");
    row->setName("Another controller");

    const std::size_t shaped = shapedBy([&] {
        page->reloadSpecifier(row);
        wholeFrame();
    });

    EXPECT_GE(shaped, 1U);
    EXPECT_LE(shaped, 4U) << "to be measured and in its place, and so the value that has the rest of the row";
}

TEST_F(Shaping, RowsThatAreReloadedAsTheyWereShapeNothing) {
    show(2);
    wholeFrame();

    EXPECT_EQ(shapedBy([&] {
                  page->reloadSpecifiers();
                  app.settle();
                  wholeFrame();
              }),
              0U);
}

} // namespace
