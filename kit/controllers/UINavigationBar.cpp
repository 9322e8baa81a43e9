#include "kit/controllers/UINavigationBar.h"

#include "kit/controllers/NavigationBarInternals.h"
#include "kit/controllers/TextButton.h"
#include "kit/foundation/translation.h"
#include "kit/quartz/geometry.h"
#include "kit/quartz/text_runs.h"
#include "kit/quartz/text_size.h"
#include "kit/seat.h"
#include "kit/uikit/appearance.h"
#include "platform/uikit/UINavigationController.h"

#include <algorithm>
#include <cmath>

using namespace seat;
using namespace seat::appearance;

NS_CLASS_IMPLEMENTATION(UINavigationBar, UIView)

namespace {

constexpr double changeDuration = 0.35;
constexpr double backMargin = 8;
constexpr double gap = 8;

// Title and back button of one screen.
class BarItem final : public UIView {
    NS_CLASS(BarItem)
public:
    std::shared_ptr<BarItem> initWithItem(const NavigationBarInternals::Item& item) {
        if (!UIView::initWithFrame(CGRectZero)) return nullptr;
        m_title = UILabel::alloc()->initWithFrame(CGRectZero);
        m_title->setText(item.title);
        m_title->setFont(boldControlFont());
        m_title->setTextAlignment(NSTextAlignmentCenter);
        if (item.backTitle) {
            m_back = TextButton::alloc()->initWithTitle_kind(
                item.backTitle->empty() ? translated("Back") : *item.backTitle, TextButton::Kind::Back);
            m_back->setAccessibilityLabel(
                item.backTitle->empty() ? translated("Back") : filled(translated("Back to %1"), {*item.backTitle}));
            m_back->addTarget_action_forControlEvents(item.controller.lock(), "goBack", UIControlEventTouchUpInside);
            addSubview(m_back);
        }
        addSubview(m_title);
        m_button = item.button;
        if (m_button) addSubview(m_button);
        return self(this);
    }

    const std::string& title() const { return m_title->text(); }

    // The title stands in the middle of the bar, or as near to it as the buttons let it.
    void layoutSubviews() override {
        const CGSize size = bounds().size;
        double left = sideMargin;
        double right = size.width - sideMargin;
        // It may stand in another screen's item by now.
        if (m_button && m_button->superview().get() == this) {
            const double width =
                std::min(std::ceil(m_button->sizeThatFits(size).width), size.width / (controlTextScale() > 1 ? 2 : 3));
            m_button->setFrame(inDirection(CGRectMake(right - width, 0, width, size.height), size.width));
            right -= width + gap;
        }
        fitTitle(right - left);
        double titleWidth = std::ceil(m_title->sizeThatFits({1e6, 1e6}).width);
        if (m_back) {
            m_back->setTitleHidden(false);
            const double whole = backMargin + m_back->sizeThatFits(size).width + gap + titleWidth;
            if (controlTextScale() > 1 && whole > right) {
                m_back->setTitleHidden(true);
                fitTitle(right - backMargin - m_back->sizeThatFits(size).width - gap);
                titleWidth = std::ceil(m_title->sizeThatFits({1e6, 1e6}).width);
            }
            // A long way back gives room to the title, but never more than it takes to tell what it is.
            const double room = std::max(size.width * 0.3, right - titleWidth - backMargin - gap);
            const double width = std::min({m_back->sizeThatFits(size).width, room, size.width / 2});
            m_back->setFrame(inDirection(CGRectMake(backMargin, 0, width, size.height), size.width));
            left = backMargin + width + gap;
        }
        const double width = std::min(titleWidth, std::max(0.0, right - left));
        const double centred = std::floor((size.width - width) / 2);
        const double at = std::clamp(centred, left, std::max(left, right - width));
        m_title->setFrame(inDirection(CGRectMake(at, 0, width, size.height), size.width));
    }

private:
    BarItem() = default;

    // Larger text than usual is as large as there is room for.
    void fitTitle(double room) {
        auto font = boldControlFont();
        if (controlTextScale() > 1) {
            const auto runs = textRuns(m_title->text(), font, nullptr);
            const double natural = measureText(runs, 1e6, /*lines=*/1).size.width;
            const double usual = font->pointSize() / controlTextScale();
            if (natural > room)
                font = UIFont::boldSystemFontOfSize(std::max(usual, std::floor(font->pointSize() * room / natural)));
        }
        if (m_title->font() != font) m_title->setFont(font);
    }

    std::shared_ptr<UILabel> m_title;
    std::shared_ptr<TextButton> m_back; // nil at the root
    std::shared_ptr<UIView> m_button;   // nil: none
};

NS_CLASS_IMPLEMENTATION(BarItem, UIView)

} // namespace

struct UINavigationBar::State {
    std::shared_ptr<UIView> line;
    std::shared_ptr<BarItem> item;
};

UINavigationBar::UINavigationBar() : m_bar(std::make_unique<State>()) {}
UINavigationBar::~UINavigationBar() = default;

std::shared_ptr<UINavigationBar> UINavigationBar::initWithFrame(CGRect frame) {
    if (!UIView::initWithFrame(frame)) return nullptr;
    setBackgroundColor(barColor());
    m_bar->line = UIView::alloc()->initWithFrame(CGRectZero);
    m_bar->line->setBackgroundColor(separatorColor());
    addSubview(m_bar->line);
    return self(this);
}

void UINavigationBar::layoutSubviews() {
    const CGSize size = bounds().size;
    m_bar->line->setFrame(CGRectMake(0, size.height - hairline(), size.width, hairline()));
    if (m_bar->item) m_bar->item->setFrame(bounds());
}

UIAccessibilityRole UINavigationBar::accessibilityRole() const { return UIAccessibilityRole::NavigationBar; }

std::string UINavigationBar::accessibilityLabel() const { return m_bar->item ? m_bar->item->title() : std::string(); }

void NavigationBarInternals::show(UINavigationBar& bar, const Item& item, Direction direction, bool animated) {
    const auto former = bar.m_bar->item;
    const auto coming = BarItem::alloc()->initWithItem(item);
    bar.m_bar->item = coming;
    coming->setFrame(bar.bounds());
    bar.addSubview(coming);
    if (!animated || !former) {
        if (former) former->removeFromSuperview();
        return;
    }
    const double way = bar.bounds().size.width * ((direction == Direction::Forward) != isRightToLeft() ? 0.4 : -0.4);
    const CGPoint middle = coming->center();
    coming->layoutIfNeeded();
    coming->setCenter({middle.x + way, middle.y});
    coming->setAlpha(0);
    former->setUserInteractionEnabled(false);
    UIView::animateWithDuration_animations_completion(
        changeDuration,
        [&] {
            coming->setCenter(middle);
            coming->setAlpha(1);
            former->setCenter({middle.x - way, middle.y});
        },
        [former](bool) { former->removeFromSuperview(); });
    // Sooner than the other comes: the texts must not be read through each other.
    UIView::animateWithDuration_animations(changeDuration / 3, [&] { former->setAlpha(0); });
}
