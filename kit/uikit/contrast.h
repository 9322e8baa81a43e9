#pragma once

#include "platform/quartz/CGColor.h"

#include <span>

namespace seat {

// How well two opaque colours are told apart, from 1 (not at all) to 21 (black and white).
double contrast(const CGColor& a, const CGColor& b);

// The opaque colour that is seen where `over`, faded to `alpha`, is painted on `under`.
CGColor blended(const CGColor& over, double alpha, const CGColor& under);

// The colour, made darker or lighter by as little as gives it the ratio to each of the grounds; black or white,
// whatever is better, where that cannot be. The grounds are all dark or all light.
CGColor readable(const CGColor& wanted, std::span<const CGColor> grounds, double ratio);

} // namespace seat
