// Loops and planes the kernel suites build their test shapes from.
#pragma once

#include "ndp/NDPGeometry2d.h"
#include "ndp/NDPPlane.h"
#include "ndp/NDPPolygon.h"

#include <gtest/gtest.h>

constexpr double kPi = 3.14159265358979323846;

// The axis-parallel rectangle from (x0, y0) to (x1, y1), counter-clockwise when x0 < x1 and y0 < y1.
inline ndp::CLoop* rectangle(double x0, double y0, double x1, double y1) {
    auto* loop = new ndp::CLoop;
    loop->AddCurve(new ndp::CLine2d({x0, y0}, {x1, y0}), false);
    loop->AddCurve(new ndp::CLine2d({x1, y0}, {x1, y1}), false);
    loop->AddCurve(new ndp::CLine2d({x1, y1}, {x0, y1}), false);
    loop->AddCurve(new ndp::CLine2d({x0, y1}, {x0, y0}), false);
    return loop;
}

// The full circle of radius r about (cx, cy), counter-clockwise.
inline ndp::CLoop* circle(double cx, double cy, double r) {
    auto* loop = new ndp::CLoop;
    loop->AddCurve(new ndp::CArc2d({cx, cy}, r, 0.0, 2 * kPi), false);
    return loop;
}

// A slot from the origin: straight sides of length `length`, half-circle ends of radius `radius`
// (drawn with the arc value arcValue), counter-clockwise.
inline ndp::CLoop* slot(double length, double radius, double arcValue) {
    auto* loop = new ndp::CLoop;
    loop->AddCurve(new ndp::CLine2d({0, 0}, {length, 0}), false);
    loop->AddCurve(new ndp::CArc2d({length, 0}, {length, 2 * radius}, arcValue, 1), false);
    loop->AddCurve(new ndp::CLine2d({length, 2 * radius}, {0, 2 * radius}), false);
    loop->AddCurve(new ndp::CArc2d({0, 2 * radius}, {0, 0}, arcValue, 1), false);
    return loop;
}

inline ndp::CPlane plane(const ndp::CVector3& point, const ndp::CVector3& normal) {
    ndp::CPlane p;
    EXPECT_TRUE(p.Create(point, normal));
    return p;
}
