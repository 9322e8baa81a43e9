#include "kit/quartz/geometry.h"
#include "tests/kit/uikit/SceneTest.h"

namespace {

class Labels : public SceneTest {
protected:
    Labels() {
        label = add<UILabel>({{10, 10}, {200, 30}});
        label->setText("Connect Controller");
        scene.prepareFrame();
    }
    std::string damage() {
        std::string text;
        for (const CGRect& rect : scene.prepareFrame()) text += written(rect) + ";";
        return text;
    }

    std::shared_ptr<UILabel> label;
};

} // namespace

TEST_F(Labels, NewTextRepaintsTheLabelAlone) {
    EXPECT_EQ(damage(), "");
    label->setText("Connect Controller");
    EXPECT_EQ(damage(), "");
    label->setText("Disconnect Controller");
    EXPECT_EQ(damage(), "10,10 200x30;");
    label->setEnabled(false);
    EXPECT_EQ(damage(), "10,10 200x30;");
}

TEST_F(Labels, OtherAttributedTextThatLooksTheSameRepaintsNothing) {
    const auto text = [](double gray) {
        return NSMutableAttributedString::alloc()->initWithString_attributes(
            "45", {UIFont::systemFontOfSize(14), UIColor::colorWithWhite_alpha(gray, 1)});
    };
    label->setAttributedText(text(0.5));
    EXPECT_EQ(damage(), "10,10 200x30;");

    label->setAttributedText(text(0.5));
    EXPECT_EQ(damage(), "");

    label->setAttributedText(text(0.25));
    EXPECT_EQ(damage(), "10,10 200x30;");
}

TEST_F(Labels, EitherKindOfTextReplacesTheOther) {
    const auto rich = NSAttributedString::alloc()->initWithString_attributes("45", {});
    label->setAttributedText(rich);
    EXPECT_EQ(label->attributedText(), rich);
    EXPECT_EQ(label->text(), "45");

    label->setText("plain");
    EXPECT_EQ(label->attributedText(), nullptr);
    EXPECT_EQ(label->text(), "plain");
}

TEST_F(Labels, OneLineWantsItsWholeWidthAndSeveralWrap) {
    const CGSize one = label->sizeThatFits({20, 10});
    EXPECT_GT(one.width, 100);

    label->setNumberOfLines(0);
    const CGSize wrapped = label->sizeThatFits({100, 1000});
    EXPECT_LE(wrapped.width, 100);
    EXPECT_GT(wrapped.height, 1.5 * one.height);
}

TEST_F(Labels, SizeToFitFollowsTheText) {
    label->sizeToFit();
    const double longer = label->frame().size.width;
    label->setText("Hi");
    label->sizeToFit();

    EXPECT_LT(label->frame().size.width, longer);
    EXPECT_EQ(label->frame().origin, CGPointMake(10, 10));
    EXPECT_EQ(label->intrinsicContentSize(), label->frame().size);
}

TEST_F(Labels, LabelTakesNoTouchesAndIsStaticText) {
    EXPECT_EQ(scene.window()->hitTest_withEvent({20, 20}, nullptr), scene.window());
    EXPECT_EQ(label->accessibilityRole(), UIAccessibilityRole::StaticText);
    EXPECT_EQ(label->accessibilityLabel(), "Connect Controller");
}
