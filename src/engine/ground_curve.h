// Corners on the ground: a quadratic Bezier curve in a flat local frame. Worker thread only.
#pragma once

#include "core/geodesy.h"
#include "engine/live_ac.h"

namespace skl {

/// Replaces the corner stream[1] by a curve from the present pose to stream[2]. Needs three points.
void lf_makeCurve(LiveAc& record);
/// Position (degrees) and course (radians, 0 to 2 pi) at t; false when the curve is unset or t is outside it.
bool lf_curveAt(const GroundCurve& curve, double t, LaLo& position, double& course);

/// The position alone, which costs no trigonometry.
bool lf_curvePosition(const GroundCurve& curve, double t, LaLo& position);
/// How fast the course changes at t, radians per unit of t; 0 where the curve has no direction.
double lf_courseRate(const GroundCurve& curve, double t);

}  // namespace skl
