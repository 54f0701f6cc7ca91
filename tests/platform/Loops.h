// Loops the kernel suites build their test shapes from.
#pragma once

#include "ndp/NDPGeometry2d.h"
#include "ndp/NDPPolygon.h"

// The axis-parallel rectangle from (x0, y0) to (x1, y1), counter-clockwise when x0 < x1 and y0 < y1.
inline ndp::CLoop* rectangle(double x0, double y0, double x1, double y1) {
    auto* loop = new ndp::CLoop;
    loop->AddCurve(new ndp::CLine2d({x0, y0}, {x1, y0}), false);
    loop->AddCurve(new ndp::CLine2d({x1, y0}, {x1, y1}), false);
    loop->AddCurve(new ndp::CLine2d({x1, y1}, {x0, y1}), false);
    loop->AddCurve(new ndp::CLine2d({x0, y1}, {x0, y0}), false);
    return loop;
}
