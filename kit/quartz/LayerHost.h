#pragma once

#include "platform/quartz/CGGeometry.h"

namespace seat {

// Who shows a layer tree. Main thread only.
class LayerHost {
public:
    virtual ~LayerHost() = default;
    // What is shown has changed there; never empty, edges on device pixels. May be called many times a frame.
    virtual void layerNeedsRepaint(CGRect inRootPoints) = 0;
    // A layer of the tree has begun to move: advanceAnimations() is to be called before each frame while it says so.
    virtual void animationsStarted() = 0;
};

} // namespace seat
