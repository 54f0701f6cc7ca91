// SKRIfcProfileTable: the parametric IFC profiles of the section types, one row a type.
#include "exchange/SKRIfcProfileTable.h"

#include "exchange/SKRIfcEntities.h"

#include <cmath>
#include <iterator>

namespace skr {
namespace exchange {
namespace {

using Values = QMap<QString, double>;

// The slopes of the inner flange faces of hot-rolled I-beams (1 in 6) and channels (1 in 10).
const double kIBeamFlangeSlope = std::atan(1.0 / 6);
const double kChannelFlangeSlope = std::atan(1.0 / 10);

// A radius: $ when there is none.
StepArg radius(double r, double scale) { return r > 0 ? stepReal(r * scale) : stepUnset(); }

// The profile's own placement: the origin, which is its bounding-box centre.
StepRef centred(SKRStepWriter& w) { return ifc::Axis2Placement2D(w, ifc::CartesianPoint2(w, 0, 0), StepRef()); }

// The outer corner radius of a cold-formed hollow section, as its outline draws it.
double hollowCornerRadius(double t) { return t <= 6 ? 2 * t : t <= 10 ? 2.5 * t : 3 * t; }

StepRef slopedI(SKRStepWriter& w, const QString& n, const Values& v, double s) {
    return ifc::IShapeProfileDef(w, n, centred(w), v["b"] * s, v["h"] * s, v["d"] * s, v["t"] * s,
                                 radius(v.value("r"), s), radius(v.value("r1"), s), stepReal(kIBeamFlangeSlope));
}
StepRef slopedChannel(SKRStepWriter& w, const QString& n, const Values& v, double s) {
    return ifc::UShapeProfileDef(w, n, centred(w), v["h"] * s, v["b"] * s, v["d"] * s, v["t"] * s,
                                 radius(v.value("r"), s), radius(v.value("r1"), s), stepReal(kChannelFlangeSlope));
}
// Angles: the toe radius is a third of the thickness.
StepRef equalAngle(SKRStepWriter& w, const QString& n, const Values& v, double s) {
    return ifc::LShapeProfileDef(w, n, centred(w), v["b"] * s, stepReal(v["b"] * s), v["d"] * s,
                                 radius(v.value("r"), s), radius(v["d"] / 3, s), stepUnset());
}
StepRef unequalAngle(SKRStepWriter& w, const QString& n, const Values& v, double s) {
    return ifc::LShapeProfileDef(w, n, centred(w), v["B"] * s, stepReal(v["b"] * s), v["d"] * s,
                                 radius(v.value("r"), s), radius(v["d"] / 3, s), stepUnset());
}
StepRef pipe(SKRStepWriter& w, const QString& n, const Values& v, double s) {
    const double d = v.contains(QStringLiteral("D")) ? v["D"] : v["d"];
    return ifc::CircleHollowProfileDef(w, n, centred(w), d / 2 * s, v["t"] * s);
}
StepRef roundBar(SKRStepWriter& w, const QString& n, const Values& v, double s) {
    return ifc::CircleProfileDef(w, n, centred(w), v["d"] / 2 * s);
}
StepRef rolledH(SKRStepWriter& w, const QString& n, const Values& v, double s) {
    return ifc::IShapeProfileDef(w, n, centred(w), v["b"] * s, v["h"] * s, v["tw"] * s, v["t"] * s,
                                 radius(v.value("r"), s), stepUnset(), stepUnset());
}
StepRef weldedH(SKRStepWriter& w, const QString& n, const Values& v, double s) {
    if (v["t1"] != v["t2"]) return {};
    return ifc::IShapeProfileDef(w, n, centred(w), v["b"] * s, v["h"] * s, v["tw"] * s, v["t1"] * s, stepUnset(),
                                 stepUnset(), stepUnset());
}
// Lipped channel: bends of inner radius r (twice the thickness unless given).
StepRef lippedChannel(SKRStepWriter& w, const QString& n, const Values& v, double s) {
    return ifc::CShapeProfileDef(w, n, centred(w), v["h"] * s, v["b"] * s, v["t"] * s, v["c"] * s,
                                 radius(v.value("r", 2 * v["t"]), s));
}
StepRef rolledTee(SKRStepWriter& w, const QString& n, const Values& v, double s) {
    return ifc::TShapeProfileDef(w, n, centred(w), v["h"] * s, v["b"] * s, v["tw"] * s, v["t"] * s,
                                 radius(v.value("r"), s), stepUnset(), stepUnset(), stepUnset(), stepUnset());
}
StepRef weldedTee(SKRStepWriter& w, const QString& n, const Values& v, double s) {
    return ifc::TShapeProfileDef(w, n, centred(w), v["h"] * s, v["b"] * s, v["t1"] * s, v["t2"] * s, stepUnset(),
                                 stepUnset(), stepUnset(), stepUnset(), stepUnset());
}
// Welded box: one wall thickness all round only.
StepRef weldedBox(SKRStepWriter& w, const QString& n, const Values& v, double s) {
    if (v["t1"] != v["t2"]) return {};
    return ifc::RectangleHollowProfileDef(w, n, centred(w), v["b2"] * s, v["b1"] * s, v["t1"] * s, stepUnset(),
                                          stepUnset());
}
// Cold-formed hollow section: inner corner radius r, outer r + t.
StepRef hollowSection(SKRStepWriter& w, const QString& n, const Values& v, double s) {
    const double t = v["t"];
    const double inner = v.value("r", hollowCornerRadius(t) - t);
    return ifc::RectangleHollowProfileDef(w, n, centred(w), v["b"] * s, v["h"] * s, t * s, radius(inner, s),
                                          radius(inner + t, s));
}

const SKRIfcProfileRow kRows[] = {
    {1, "IFCISHAPEPROFILEDEF", false, slopedI},
    {2, "IFCUSHAPEPROFILEDEF", false, slopedChannel},
    {3, "IFCLSHAPEPROFILEDEF", false, equalAngle},
    {4, "IFCLSHAPEPROFILEDEF", false, unequalAngle},
    {5, "IFCCIRCLEHOLLOWPROFILEDEF", true, pipe},
    {6, "IFCCIRCLEPROFILEDEF", true, roundBar},
    {7, "IFCISHAPEPROFILEDEF", false, rolledH},
    {8, "IFCCSHAPEPROFILEDEF", false, lippedChannel},
    {10, "IFCTSHAPEPROFILEDEF", false, rolledTee},
    {11, "IFCISHAPEPROFILEDEF", true, weldedH},
    {13, "IFCRECTANGLEHOLLOWPROFILEDEF", true, weldedBox},
    {14, "IFCCIRCLEHOLLOWPROFILEDEF", true, pipe},
    {16, "IFCTSHAPEPROFILEDEF", true, weldedTee},
    {1011, "IFCRECTANGLEHOLLOWPROFILEDEF", true, hollowSection},
};

}  // namespace

const SKRIfcProfileRow* ifcProfileRow(int sectionType) {
    for (const SKRIfcProfileRow& row : kRows)
        if (row.sectionType == sectionType) return &row;
    return nullptr;
}

}  // namespace exchange
}  // namespace skr
