// SKRIfcProfileTable: the parametric IFC profiles of the section types, one row a type.
#include "exchange/SKRIfcProfileTable.h"

#include "exchange/SKRIfcEntities.h"
#include "section_geometry/SKRSectionOutline.h"
#include "section_spec/EnSKRSectionType.h"

#include <cmath>
#include <iterator>

namespace skr {
namespace exchange {
namespace {

using Values = QMap<QString, double>;

// The slopes of the inner flange faces of hot-rolled I-beams and channels, as angles.
const double kIBeamFlangeAngle = std::atan(geometry::kIBeamFlangeSlope);
const double kChannelFlangeAngle = std::atan(geometry::kChannelFlangeSlope);

// A radius: $ when there is none.
StepArg radius(double r, double scale) { return r > 0 ? stepReal(r * scale) : stepUnset(); }

// The profile's own placement: the origin, which is its bounding-box centre.
StepRef centred(SKRStepWriter& w) { return ifc::Axis2Placement2D(w, ifc::CartesianPoint2(w, 0, 0), StepRef()); }


StepRef slopedI(SKRStepWriter& w, const QString& n, const Values& v, double s) {
    return ifc::IShapeProfileDef(w, n, centred(w), v["b"] * s, v["h"] * s, v["d"] * s, v["t"] * s,
                                 radius(v.value("r"), s), radius(v.value("r1"), s), stepReal(kIBeamFlangeAngle));
}
StepRef slopedChannel(SKRStepWriter& w, const QString& n, const Values& v, double s) {
    return ifc::UShapeProfileDef(w, n, centred(w), v["h"] * s, v["b"] * s, v["d"] * s, v["t"] * s,
                                 radius(v.value("r"), s), radius(v.value("r1"), s), stepReal(kChannelFlangeAngle));
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
    const double inner = v.value("r", geometry::hollowCornerRadius(t) - t);
    return ifc::RectangleHollowProfileDef(w, n, centred(w), v["b"] * s, v["h"] * s, t * s, radius(inner, s),
                                          radius(inner + t, s));
}

const SKRIfcProfileRow kRows[] = {
    {stI, "IFCISHAPEPROFILEDEF", false, slopedI},
    {stChannel, "IFCUSHAPEPROFILEDEF", false, slopedChannel},
    {stEqualAngle, "IFCLSHAPEPROFILEDEF", false, equalAngle},
    {stUnequalAngle, "IFCLSHAPEPROFILEDEF", false, unequalAngle},
    {stPipe, "IFCCIRCLEHOLLOWPROFILEDEF", true, pipe},
    {stRoundBar, "IFCCIRCLEPROFILEDEF", true, roundBar},
    {stHotRolledH, "IFCISHAPEPROFILEDEF", false, rolledH},
    {stCSection, "IFCCSHAPEPROFILEDEF", false, lippedChannel},
    {stHotRolledT, "IFCTSHAPEPROFILEDEF", false, rolledTee},
    {stWeldedH, "IFCISHAPEPROFILEDEF", true, weldedH},
    {stWeldedBox, "IFCRECTANGLEHOLLOWPROFILEDEF", true, weldedBox},
    {stWeldedPipe, "IFCCIRCLEHOLLOWPROFILEDEF", true, pipe},
    {stWeldedT, "IFCTSHAPEPROFILEDEF", true, weldedTee},
    {stBoxTube, "IFCRECTANGLEHOLLOWPROFILEDEF", true, hollowSection},
};

}  // namespace

const SKRIfcProfileRow* ifcProfileRow(int sectionType) {
    for (const SKRIfcProfileRow& row : kRows)
        if (row.sectionType == sectionType) return &row;
    return nullptr;
}

}  // namespace exchange
}  // namespace skr
