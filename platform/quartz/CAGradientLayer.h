#pragma once

#include "platform/quartz/CALayer.h"

// Fills its bounds (rounded by the corner radius) with a gradient of evenly spaced colours between two points, given in
// fractions of the bounds: by default from the middle of the top edge to the middle of the bottom one.
// Beyond the two points the outer colours go on, and so does the first one where the points are the same. One colour
// fills evenly; a nil colour is fully clear; without colours nothing is painted.
class CAGradientLayer final : public CALayer {
    NS_CLASS(CAGradientLayer)
public:
    ~CAGradientLayer() override;

    // Without colours; a fresh one also where another layer is given.
    std::shared_ptr<CAGradientLayer> init();
    std::shared_ptr<CAGradientLayer> initWithLayer(const std::shared_ptr<CALayer>& layer);

    // Changes at once, also inside an animation block.
    const std::vector<CGColorRef>& colors() const { return m_colors; }
    void setColors(std::vector<CGColorRef> colors);
    // Fractions of the bounds, from the top left; they may lie outside.
    CGPoint startPoint() const { return m_startPoint; }
    void setStartPoint(CGPoint point);
    CGPoint endPoint() const { return m_endPoint; }
    void setEndPoint(CGPoint point);

private:
    CAGradientLayer();

    std::vector<CGColorRef> m_colors;
    CGPoint m_startPoint{0.5, 0};
    CGPoint m_endPoint{0.5, 1};
};
