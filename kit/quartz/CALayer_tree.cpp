// The tree of layers, and who shows it.

#include "kit/quartz/LayerInternals.h"
#include "kit/quartz/animation.h"
#include "kit/quartz/repaint.h"

#include <algorithm>

const std::vector<std::shared_ptr<CALayer>>& CALayer::sublayers() const { return m_layer->sublayers; }
CALayer* CALayer::superlayer() const { return m_layer->superlayer; }

void CALayer::addSublayer(const std::shared_ptr<CALayer>& layer) {
    insertSublayer_atIndex(layer, static_cast<unsigned>(m_layer->sublayers.size()));
}

void CALayer::insertSublayer_atIndex(const std::shared_ptr<CALayer>& layer, unsigned index) {
    if (!layer) return;
    for (const CALayer* ancestor = this; ancestor; ancestor = ancestor->superlayer())
        if (ancestor == layer.get()) return; // a layer cannot stand in itself
    // The argument may be the very element that is taken out.
    const auto kept = layer; // NOLINT(performance-unnecessary-copy-initialization)
    LayerInternals::takeOut(*kept);
    auto& sublayers = m_layer->sublayers;
    const auto at = std::min<std::size_t>(index, sublayers.size());
    sublayers.insert(sublayers.begin() + static_cast<std::ptrdiff_t>(at), kept);
    kept->m_layer->superlayer = this;
    if (!LayerInternals::host(*this)) LayerInternals::cancelAnimations(*kept);
    seat::reportRepaint(*kept, seat::Reach::Tree);
}

void CALayer::removeFromSuperlayer() {
    const auto kept = LayerInternals::takeOut(*this);
    if (kept) LayerInternals::cancelAnimations(*this);
}

void LayerInternals::setHost(CALayer& root, seat::LayerHost* host) {
    state(root).host = host;
    if (!host) cancelAnimations(root);
}

seat::LayerHost* LayerInternals::host(const CALayer& layer) {
    const CALayer* root = &layer;
    while (const CALayer* const superlayer = root->m_layer->superlayer) root = superlayer;
    return root->m_layer->host;
}

std::shared_ptr<CALayer> LayerInternals::takeOut(CALayer& layer) {
    CALayer* const superlayer = layer.m_layer->superlayer;
    if (!superlayer) return nullptr;
    seat::reportRepaint(layer, seat::Reach::Tree);
    auto& siblings = superlayer->m_layer->sublayers;
    const auto at = std::find_if(siblings.begin(), siblings.end(),
                                 [&layer](const std::shared_ptr<CALayer>& sibling) { return sibling.get() == &layer; });
    auto kept = std::move(*at);
    siblings.erase(at);
    layer.m_layer->superlayer = nullptr;
    return kept;
}

void LayerInternals::cancelAnimations(CALayer& layer) {
    auto& state = *layer.m_layer;
    if (state.animations) {
        for (const auto& animation : state.animations->running) animation.group->cutShort();
        state.animations.reset();
        seat::removeAnimatedLayer(layer);
    }
    for (const auto& sublayer : state.sublayers) cancelAnimations(*sublayer);
}
