#pragma once

#include "platform/quartz/CAGradientLayer.h"
#include "platform/quartz/CALayer.h"
#include "platform/quartz/CATransaction.h"
#include "platform/quartz/CATransform3D.h"
#include "platform/quartz/CGAffineTransform.h"
#include "platform/quartz/CGColor.h"
#include "platform/quartz/CGContext.h"
#include "platform/quartz/CGGeometry.h"
#include "platform/quartz/CGImage.h"
#include "platform/quartz/CGPath.h"
