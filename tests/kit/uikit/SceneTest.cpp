#include "tests/kit/uikit/SceneTest.h"

NS_CLASS_IMPLEMENTATION(Recorder, NSObject, method<&Recorder::gesture>("gesture:"),
                        method<&Recorder::valueChanged>("valueChanged:"),
                        method<&Recorder::editingEnded>("editingEnded:"), method<&Recorder::touchDown>("touchDown:"),
                        method<&Recorder::touchUpInside>("touchUpInside:"),
                        method<&Recorder::touchCancelled>("touchCancelled:"))
NS_CLASS_IMPLEMENTATION(TouchedView, UIView)

namespace {

const char* nameOf(UIGestureRecognizerState state) {
    switch (state) {
    case UIGestureRecognizerStatePossible:
        return "possible";
    case UIGestureRecognizerStateBegan:
        return "began";
    case UIGestureRecognizerStateChanged:
        return "changed";
    case UIGestureRecognizerStateEnded:
        return "ended";
    case UIGestureRecognizerStateCancelled:
        return "cancelled";
    case UIGestureRecognizerStateFailed:
        return "failed";
    }
    return "?";
}

} // namespace

std::string written(CGPoint point) {
    std::ostringstream text;
    text << point.x << ',' << point.y;
    return text.str();
}

std::string written(CGRect rect) {
    std::ostringstream text;
    text << rect.origin.x << ',' << rect.origin.y << ' ' << rect.size.width << 'x' << rect.size.height;
    return text.str();
}

std::shared_ptr<Recorder> Recorder::init() { return NSObject::init() ? self(this) : nullptr; }

void Recorder::write(const std::string& word) {
    if (!m_log.empty()) m_log += ' ';
    m_log += name.empty() ? word : name + ":" + word;
    if (const auto once = std::exchange(then, nullptr)) once();
}

std::string Recorder::take() { return std::exchange(m_log, {}); }

// "pan:changed(10,20)", or with the number of touches where there is none: "pan:ended/0".
void Recorder::gesture(const std::shared_ptr<UIGestureRecognizer>& recognizer) {
    std::string word = nameOf(recognizer->state());
    if (recognizer->numberOfTouches() > 0)
        word += "(" + written(recognizer->locationOfTouch_inView(0, recognizer->view().get())) + ")";
    else
        word += "/0";
    const bool isPan = std::dynamic_pointer_cast<UIPanGestureRecognizer>(recognizer) != nullptr;
    write((isPan ? "pan:" : "tap:") + word);
}

void Recorder::valueChanged(const std::shared_ptr<UIControl>&) { write("changed"); }
void Recorder::editingEnded(const std::shared_ptr<UIControl>&) { write("ended"); }
void Recorder::touchDown(const std::shared_ptr<UIControl>&) { write("down"); }
void Recorder::touchUpInside(const std::shared_ptr<UIControl>&) { write("up"); }
void Recorder::touchCancelled(const std::shared_ptr<UIControl>&) { write("cancel"); }

std::shared_ptr<TouchedView> TouchedView::initWithFrame(CGRect frame) {
    return UIView::initWithFrame(frame) ? self(this) : nullptr;
}

void TouchedView::write(const char* what, const UITouchList& touches) {
    if (recorder) recorder->write(name + ":" + what + "(" + written(touches.front()->locationInView(this)) + ")");
}

void TouchedView::touchesBegan_withEvent(const UITouchList& touches, UIEvent&) { write("began", touches); }
void TouchedView::touchesMoved_withEvent(const UITouchList& touches, UIEvent&) { write("moved", touches); }
void TouchedView::touchesEnded_withEvent(const UITouchList& touches, UIEvent&) { write("ended", touches); }
void TouchedView::touchesCancelled_withEvent(const UITouchList& touches, UIEvent&) { write("cancelled", touches); }
