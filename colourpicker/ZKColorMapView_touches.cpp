// Taps and drags on the colour map, and how a hue and a saturation come of them.

#include "colourpicker/HSVColor.h"
#include "colourpicker/ZKColorCursor.h"
#include "colourpicker/ZKColorMapView.h"
#include "colourpicker/finger.h"

namespace {
// Of all maps of the process.
CGPoint lastPanLocation;
} // namespace

void ZKColorMapView::handleTap(const std::shared_ptr<UITapGestureRecognizer>& recognizer) {
    if (const auto point = tappedPoint(recognizer, this)) tappedAtPoint(*point);
}

void ZKColorMapView::handlePan(const std::shared_ptr<UIPanGestureRecognizer>& recognizer) {
    const auto step = panStep(recognizer, this);
    if (!step) return;
    if (step->point)
        pannedToPoint_ended(*step->point, step->ended);
    else
        panLifted_ended(step->ended);
}

void ZKColorMapView::tappedAtPoint(CGPoint point) { update_sendUpdates(point, /*sendUpdates*/ true); }

void ZKColorMapView::pannedToPoint_ended(CGPoint point, bool ended) {
    lastPanLocation = point;
    update_sendUpdates(point, ended);
    setCursorEditing(true);
}

// A pan usually ends when its last touch has gone: what it reports then is where that touch was last.
void ZKColorMapView::panLifted_ended(bool ended) {
    setCursorEditing(false);
    update_sendUpdates(lastPanLocation, ended);
}

void ZKColorMapView::setCursorEditing(bool editing) {
    if (m_colorCursor && m_colorCursor->respondsToSelector("setEditing:")) m_colorCursor->setEditing(editing);
}

// A point outside the view is dropped, not moved in. The end of editing goes out before the new value does: who listens
// to it still reads the value reported before.
void ZKColorMapView::update_sendUpdates(CGPoint point, bool sendUpdates) {
    const TileGrid tiles = grid();
    const auto at = tiles.tileAtPoint(point);
    if (!at) return;
    m_color = colorFromHSV({tiles.hueOfColumn(at->column), tiles.saturationOfRow(at->row), brightness()});
    updateColorCursor();
    if (sendUpdates) sendActionsForControlEvents(UIControlEventEditingDidEnd);
    sendActionsForControlEvents(UIControlEventValueChanged);
}
