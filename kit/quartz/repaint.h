#pragma once

#include "platform/quartz/CGGeometry.h"

class CALayer;

namespace seat {

enum class Reach {
    Layer, // what the layer itself draws
    Tree,  // with all that stands in it
};

// Tells the host of the layer's tree, if there is one, where the layer is shown now.
void reportRepaint(const CALayer& layer, Reach reach);
void reportRepaint(const CALayer& layer, CGRect rectInLayer);

// Where the layer was shown before a change, and where after it.
class RepaintAround {
public:
    RepaintAround(const CALayer& layer, Reach reach) : m_layer(layer), m_reach(reach) { reportRepaint(layer, reach); }
    ~RepaintAround() { reportRepaint(m_layer, m_reach); }
    RepaintAround(const RepaintAround&) = delete;
    RepaintAround& operator=(const RepaintAround&) = delete;

private:
    const CALayer& m_layer;
    Reach m_reach;
};

} // namespace seat
