#include "platform/quartz/CAGradientLayer.h"
#include "tests/kit/quartz/Surface.h"

#include <gtest/gtest.h>

namespace {

TEST(LayerTree, AddingTakesALayerFromWhereItWas) {
    const auto first = CALayer::layer(), second = CALayer::layer(), child = CALayer::layer();
    first->addSublayer(child);
    second->addSublayer(child);
    EXPECT_TRUE(first->sublayers().empty());
    EXPECT_EQ(second->sublayers().size(), 1U);
    EXPECT_EQ(child->superlayer(), second.get());
}

TEST(LayerTree, IndexBeyondTheEndAppendsAndNilIsIgnored) {
    const auto root = CALayer::layer(), a = CALayer::layer(), b = CALayer::layer(), c = CALayer::layer();
    root->insertSublayer_atIndex(a, 9);
    root->insertSublayer_atIndex(b, 0);
    root->insertSublayer_atIndex(c, 1);
    root->insertSublayer_atIndex(nullptr, 0);
    root->addSublayer(nullptr);
    EXPECT_EQ(root->sublayers(), (std::vector{b, c, a}));
}

TEST(LayerTree, InsertingALayerAgainMovesIt) {
    const auto root = CALayer::layer(), a = CALayer::layer(), b = CALayer::layer();
    root->addSublayer(a);
    root->addSublayer(b);
    root->insertSublayer_atIndex(root->sublayers()[1], 0);
    EXPECT_EQ(root->sublayers(), (std::vector{b, a}));
}

TEST(LayerTree, LayerCannotStandInItselfOrInWhatItHolds) {
    const auto root = CALayer::layer(), child = CALayer::layer();
    root->addSublayer(child);
    child->addSublayer(root);
    root->addSublayer(root);
    EXPECT_EQ(root->superlayer(), nullptr);
    EXPECT_EQ(root->sublayers().size(), 1U);
    EXPECT_TRUE(child->sublayers().empty());
}

TEST(LayerTree, SublayerOutlivesItsSuperlayerAlone) {
    const auto child = CALayer::layer();
    {
        const auto root = CALayer::layer();
        root->addSublayer(child);
    }
    EXPECT_EQ(child->superlayer(), nullptr);
    child->setFrame({{0, 0}, {1, 1}});
    child->removeFromSuperlayer();
}

TEST(LayerTree, RemovedLayerLivesAsLongAsSomebodyHoldsIt) {
    const auto root = CALayer::layer();
    std::weak_ptr<CALayer> weak;
    {
        const auto child = CALayer::layer();
        weak = child;
        root->addSublayer(child);
    }
    EXPECT_FALSE(weak.expired());
    weak.lock()->removeFromSuperlayer();
    EXPECT_TRUE(weak.expired());
}

TEST(LayerTree, LayerMadeFromAnotherTakesNothingOver) {
    const auto other = test::layerWithFrame({{1, 2}, {3, 4}}, test::rgb(1, 0, 0));
    other->setCornerRadius(5);
    const auto layer = CALayer::alloc()->initWithLayer(other);
    const auto gradient = CAGradientLayer::alloc()->initWithLayer(other);
    for (const CALayer* fresh : {layer.get(), static_cast<CALayer*>(gradient.get())}) {
        EXPECT_EQ(fresh->frame(), CGRectZero);
        EXPECT_EQ(fresh->backgroundColor(), nullptr);
        EXPECT_EQ(fresh->cornerRadius(), 0);
        EXPECT_EQ(fresh->opacity(), 1);
    }
}

} // namespace
