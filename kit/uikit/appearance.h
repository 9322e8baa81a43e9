#pragma once

// The measures and colours that tables, bars and alerts share. Points.

#include "platform/uikit/UIColor.h"
#include "platform/uikit/UIFont.h"
#include "platform/uikit/UILabel.h"

#include <memory>
#include <optional>

namespace seat::appearance {

inline constexpr double rowHeight = 44; // at the usual text size; more: heightForText
inline constexpr double barHeight = 44;
inline constexpr double sideMargin = 16;     // from the window's edge to a card, from a card's edge to its text
inline constexpr double readableWidth = 600; // rows grow no wider
inline constexpr double cardCornerRadius = 10;
inline constexpr double labelGap = 8; // between a title and what stands beside it

// How the user wants programs to look.
struct Look {
    bool isDark = false;
    bool hasHighContrast = false;
    std::optional<CGColor> accent = std::nullopt; // of what can be tapped; nothing: our own
    friend bool operator==(const Look&, const Look&) = default;
};

// The colours below are the same objects whatever the look; what they consist of follows it. Text has a contrast of 4.5
// or more (7 where it shall be high) on each ground that it may stand on: page, card, pressed card and bar. The first
// look is a light one. Whoever shows what was painted before has all of it painted anew (WindowScene::repaint). Main
// thread.
void setLook(const Look& look);
const Look& look();

const std::shared_ptr<UIColor>& pageColor();    // behind grouped rows
const std::shared_ptr<UIColor>& cardColor();    // rows, alerts, screens without rows
const std::shared_ptr<UIColor>& pressedColor(); // a row under the finger, or selected
const std::shared_ptr<UIColor>& barColor();
const std::shared_ptr<UIColor>& panelColor(); // what lies over a page, with white text; lets a little of it through
const std::shared_ptr<UIColor>& textColor();
const std::shared_ptr<UIColor>& secondaryTextColor();
const std::shared_ptr<UIColor>& errorTextColor();
const std::shared_ptr<UIColor>& tintColor(); // what can be tapped
const std::shared_ptr<UIColor>& separatorColor();
const std::shared_ptr<UIColor>& markColor();     // chevrons, the track of a switch that is off: no text, so paler
const std::shared_ptr<UIColor>& switchOnColor(); // the track of a switch that is on
const std::shared_ptr<UIColor>& focusRingColor();
const std::shared_ptr<UIColor>& indicatorColor(); // of what is scrolled

// Fonts of what grows with the size that the user wants text to have. In bars and on buttons it grows half as much:
// they keep their height.
std::shared_ptr<UIFont> textFont(double pointSize);
std::shared_ptr<UIFont> boldTextFont(double pointSize);
std::shared_ptr<UIFont> controlFont();
std::shared_ptr<UIFont> boldControlFont();
// Of what is as high as one line of 17 points and the space around it, when the text is larger; whole fours, which are
// whole pixels at quarter scales too.
double heightForText(double usualHeight);
// The same for text of a line's height or more.
double heightAroundText(double textHeight);

// Where lines begin at the right, what stands beside each other does so the other way round. For the start, before
// anything is laid out.
void setRightToLeft(bool isRightToLeft);
bool isRightToLeft();
// A frame that was laid out from the left, in something of this width.
CGRect inDirection(CGRect frame, double width);
NSTextAlignment startAlignment(); // where lines begin
NSTextAlignment endAlignment();

// What is disabled is faded to this; its text keeps a contrast of 3 on page and card.
inline constexpr double disabledAlpha = 0.75;

// The thinnest line that is exactly as thick as a pixel, and the nearest place where it is crisp.
double hairline();
double roundToPixel(double points);

} // namespace seat::appearance
