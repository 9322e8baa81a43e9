#include "colourpicker/cursor_look.h"

#include "platform/uikit/UIColor.h"
#include "platform/uikit/UIScreen.h"
#include "platform/uikit/UIView.h"

namespace {
constexpr double colorInset = 5.5;
constexpr double editingDuration = 0.1;
constexpr double enlargedBack = 1.6;
constexpr double enlargedColor = 1.4;
} // namespace

std::shared_ptr<CALayer> makeCursorBackLayer() {
    const auto layer = CALayer::layer();
    layer->setFrame({{0, 0}, cursorLookSize});
    layer->setCornerRadius(cursorLookSize.height / 2);
    layer->setBorderColor(UIColor::colorWithWhite_alpha(0.65, 1)->CGColor());
    layer->setBorderWidth(1 / UIScreen::mainScreen()->scale());
    layer->setBackgroundColor(UIColor::colorWithWhite_alpha(1, 0.7)->CGColor());
    return layer;
}

std::shared_ptr<CALayer> makeCursorColorLayer(const CALayer& backLayer) {
    const auto layer = CALayer::layer();
    layer->setFrame(CGRectInset(backLayer.frame(), colorInset, colorInset));
    layer->setCornerRadius(layer->frame().size.height / 2);
    return layer;
}

void setCursorStep(CALayer& backLayer, CALayer& colorLayer, CursorStep step) {
    const bool enlarged = step == CursorStep::Enlarged;
    const auto scaled = [enlarged](double factor) {
        return enlarged ? CATransform3DMakeScale(factor, factor, 1) : CATransform3DIdentity;
    };
    backLayer.setTransform(scaled(enlargedBack));
    colorLayer.setTransform(scaled(enlargedColor));
}

void animateCursorEditing(bool editing, const std::function<void(CursorStep)>& show) {
    show(editing ? CursorStep::Normal : CursorStep::Enlarged);
    UIView::animateWithDuration_animations(editingDuration,
                                           [&] { show(editing ? CursorStep::Enlarged : CursorStep::Normal); });
}
