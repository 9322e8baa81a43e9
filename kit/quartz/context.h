#pragma once

// The one kind of context: a canvas with points, colours and a stack of states.

#include "kit/quartz/Canvas.h"
#include "platform/quartz/CGContext.h"

#include <vector>

class CGContext {
public:
    struct State {
        CGAffineTransform toPixels;
        seat::Clip clip;
        CGColorRef fillColor;
        CGColorRef strokeColor;
        double lineWidth = 1;
        double alpha = 1;
    };

    // The canvas must outlive the context; its clip as it is now is the widest that the context draws in.
    CGContext(seat::Canvas& canvas, const CGAffineTransform& toPixels);
    // Gives the canvas back its clip.
    ~CGContext();
    CGContext(const CGContext&) = delete;
    CGContext& operator=(const CGContext&) = delete;

    seat::Canvas& canvas() { return m_canvas; }
    State& state() { return m_state; }
    void save() { m_saved.push_back(m_state); }
    void restore();
    void clipTo(CGRect rect);

private:
    seat::Canvas& m_canvas;
    seat::Clip m_outerClip;
    State m_state;
    std::vector<State> m_saved;
};
