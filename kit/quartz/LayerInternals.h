#pragma once

// What the files of this folder know of a layer.

#include "kit/quartz/LayerAnimations.h"
#include "kit/quartz/LayerHost.h"
#include "kit/quartz/LayerValues.h"
#include "platform/quartz/CALayer.h"

#include <optional>

class CAGradientLayer;

// Reached only through LayerInternals.
struct CALayer::State {
    seat::LayerValues model;
    // As it was set; a frame derived from bounds and position could differ in the last digit.
    std::optional<CGRect> exactFrame;
    bool hidden = false;
    bool masksToBounds = false;
    CGImageRef contents;
    std::vector<std::shared_ptr<CALayer>> sublayers;
    CALayer* superlayer = nullptr;                     // non-owning: the superlayer owns this one
    CALayerDelegate* delegate = nullptr;               // non-owning
    const CAGradientLayer* gradient = nullptr;         // this very layer, when it is one
    seat::LayerHost* host = nullptr;                   // non-owning; root layers only
    std::unique_ptr<seat::LayerAnimations> animations; // while some run
};

struct CALayer::Internals {
    using State = CALayer::State;

    static CALayer::State& state(CALayer& layer) { return *layer.m_layer; }
    static const CALayer::State& state(const CALayer& layer) { return *layer.m_layer; }

    // What is drawn now: the model, or what stands between two models.
    static const seat::LayerValues& shown(const CALayer& layer) {
        const auto& animations = layer.m_layer->animations;
        return animations ? animations->shown : layer.m_layer->model;
    }

    // On the root layer, by whoever shows the tree; non-owning, nullptr when it is shown no more.
    static void setHost(CALayer& root, seat::LayerHost* host);
    // nullptr while the layer is in no tree that is shown.
    static seat::LayerHost* host(const CALayer& layer);

    // Takes the layer from its superlayer; nil when it stands in none.
    static std::shared_ptr<CALayer> takeOut(CALayer& layer);

    // Ends what runs in the layer and below; what is drawn is the model at once.
    static void cancelAnimations(CALayer& layer);
};
using LayerInternals = CALayer::Internals;
