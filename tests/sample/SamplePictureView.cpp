#include "tests/sample/SamplePictureView.h"

#include "platform/dispatch.h"
#include "platform/runtime/method.h"

NS_CLASS_IMPLEMENTATION(SamplePictureView, UIView)

namespace {

// A field of squares, each with its own colour. Any thread.
std::shared_ptr<UIImage> drawPicture(CGSize size) {
    constexpr int squares = 6;
    UIGraphicsBeginImageContextWithOptions(size, /*opaque=*/true, /*scale=*/0);
    const double width = size.width / squares;
    const double height = size.height / squares;
    for (int row = 0; row < squares; ++row)
        for (int column = 0; column < squares; ++column) {
            UIColor::colorWithHue_saturation_brightness_alpha(column / double{squares}, (row + 1.0) / squares, 1, 1)
                ->setFill();
            CGContextFillRect(UIGraphicsGetCurrentContext(), {{column * width, row * height}, {width, height}});
        }
    auto image = UIGraphicsGetImageFromCurrentImageContext();
    UIGraphicsEndImageContext();
    return image;
}

} // namespace

std::shared_ptr<SamplePictureView> SamplePictureView::initWithFrame(CGRect frame) {
    if (!UIView::initWithFrame(frame)) return nullptr;
    setBackgroundColor(UIColor::lightGrayColor());
    return self(this);
}

void SamplePictureView::layoutSubviews() {
    UIView::layoutSubviews();
    if (m_isAskedFor || CGRectIsEmpty(bounds())) return;
    m_isAskedFor = true;
    dispatch_async(dispatch_get_global_queue(DISPATCH_QUEUE_PRIORITY_DEFAULT, 0),
                   [weakSelf = std::weak_ptr(self(this)), size = bounds().size] {
                       dispatch_async(dispatch_get_main_queue(), [weakSelf, image = drawPicture(size)] {
                           const auto view = weakSelf.lock();
                           if (!view || !image) return;
                           view->m_isDrawn = true;
                           view->layer()->setContents(image->CGImage());
                       });
                   });
}
