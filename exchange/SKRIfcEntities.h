// SKRIfcEntities: the IFC4 entities the exports write, one function each with every attribute of
// the entity as a parameter in schema order, so that a missing or extra attribute does not compile.
// Optional attributes the exports never set are written as $ inside the function.
#pragma once

#include "exchange/SKRStepWriter.h"

#include <QString>

#include <vector>

namespace skr {
namespace exchange {
namespace ifc {

using W = SKRStepWriter;

// An optional label: $ when empty.
inline StepArg label(const QString& text) { return text.isEmpty() ? stepUnset() : stepString(text); }

// Geometry resource
inline StepRef CartesianPoint3(W& w, double x, double y, double z) {
    return w.add("IFCCARTESIANPOINT", {stepRealList({x, y, z})});
}
inline StepRef CartesianPoint2(W& w, double x, double y) { return w.add("IFCCARTESIANPOINT", {stepRealList({x, y})}); }
inline StepRef Direction3(W& w, double x, double y, double z) {
    return w.add("IFCDIRECTION", {stepRealList({x, y, z})});
}
inline StepRef Axis2Placement3D(W& w, StepRef location, StepRef axis, StepRef refDirection) {
    return w.add("IFCAXIS2PLACEMENT3D", {stepRef(location), stepRef(axis), stepRef(refDirection)});
}
inline StepRef Axis2Placement2D(W& w, StepRef location, StepRef refDirection) {
    return w.add("IFCAXIS2PLACEMENT2D", {stepRef(location), stepRef(refDirection)});
}
inline StepRef LocalPlacement(W& w, StepRef placementRelTo, StepRef relativePlacement) {
    return w.add("IFCLOCALPLACEMENT", {stepRef(placementRelTo), stepRef(relativePlacement)});
}
inline StepRef CartesianPointList2D(W& w, const std::vector<StepArg>& coordinates) {
    return w.add("IFCCARTESIANPOINTLIST2D", {stepList(coordinates)});
}
// segments: IFCLINEINDEX((i,j)) and IFCARCINDEX((i,j,k)) values, 1-based into the point list.
inline StepRef IndexedPolyCurve(W& w, StepRef points, const std::vector<StepArg>& segments) {
    return w.add("IFCINDEXEDPOLYCURVE", {stepRef(points), stepList(segments), stepBool(false)});
}
inline StepRef Plane(W& w, StepRef position) { return w.add("IFCPLANE", {stepRef(position)}); }

// Profiles: all areas, named after the section.
inline StepRef IShapeProfileDef(W& w, const QString& name, StepRef position, double overallWidth, double overallDepth,
                                double webThickness, double flangeThickness, StepArg filletRadius,
                                StepArg flangeEdgeRadius, StepArg flangeSlope) {
    return w.add("IFCISHAPEPROFILEDEF", {stepEnum("AREA"), label(name), stepRef(position), stepReal(overallWidth),
                                         stepReal(overallDepth), stepReal(webThickness), stepReal(flangeThickness),
                                         filletRadius, flangeEdgeRadius, flangeSlope});
}
inline StepRef UShapeProfileDef(W& w, const QString& name, StepRef position, double depth, double flangeWidth,
                                double webThickness, double flangeThickness, StepArg filletRadius, StepArg edgeRadius,
                                StepArg flangeSlope) {
    return w.add("IFCUSHAPEPROFILEDEF", {stepEnum("AREA"), label(name), stepRef(position), stepReal(depth),
                                         stepReal(flangeWidth), stepReal(webThickness), stepReal(flangeThickness),
                                         filletRadius, edgeRadius, flangeSlope});
}
inline StepRef LShapeProfileDef(W& w, const QString& name, StepRef position, double depth, StepArg width,
                                double thickness, StepArg filletRadius, StepArg edgeRadius, StepArg legSlope) {
    return w.add("IFCLSHAPEPROFILEDEF", {stepEnum("AREA"), label(name), stepRef(position), stepReal(depth), width,
                                         stepReal(thickness), filletRadius, edgeRadius, legSlope});
}
inline StepRef TShapeProfileDef(W& w, const QString& name, StepRef position, double depth, double flangeWidth,
                                double webThickness, double flangeThickness, StepArg filletRadius,
                                StepArg flangeEdgeRadius, StepArg webEdgeRadius, StepArg webSlope,
                                StepArg flangeSlope) {
    return w.add("IFCTSHAPEPROFILEDEF",
                 {stepEnum("AREA"), label(name), stepRef(position), stepReal(depth), stepReal(flangeWidth),
                  stepReal(webThickness), stepReal(flangeThickness), filletRadius, flangeEdgeRadius, webEdgeRadius,
                  webSlope, flangeSlope});
}
inline StepRef CShapeProfileDef(W& w, const QString& name, StepRef position, double depth, double width,
                                double wallThickness, double girth, StepArg internalFilletRadius) {
    return w.add("IFCCSHAPEPROFILEDEF", {stepEnum("AREA"), label(name), stepRef(position), stepReal(depth),
                                         stepReal(width), stepReal(wallThickness), stepReal(girth),
                                         internalFilletRadius});
}
inline StepRef CircleProfileDef(W& w, const QString& name, StepRef position, double radius) {
    return w.add("IFCCIRCLEPROFILEDEF", {stepEnum("AREA"), label(name), stepRef(position), stepReal(radius)});
}
inline StepRef CircleHollowProfileDef(W& w, const QString& name, StepRef position, double radius, double wallThickness) {
    return w.add("IFCCIRCLEHOLLOWPROFILEDEF",
                 {stepEnum("AREA"), label(name), stepRef(position), stepReal(radius), stepReal(wallThickness)});
}
inline StepRef RectangleHollowProfileDef(W& w, const QString& name, StepRef position, double xDim, double yDim,
                                         double wallThickness, StepArg innerFilletRadius, StepArg outerFilletRadius) {
    return w.add("IFCRECTANGLEHOLLOWPROFILEDEF",
                 {stepEnum("AREA"), label(name), stepRef(position), stepReal(xDim), stepReal(yDim),
                  stepReal(wallThickness), innerFilletRadius, outerFilletRadius});
}
inline StepRef ArbitraryClosedProfileDef(W& w, const QString& name, StepRef outerCurve) {
    return w.add("IFCARBITRARYCLOSEDPROFILEDEF", {stepEnum("AREA"), label(name), stepRef(outerCurve)});
}
inline StepRef ArbitraryProfileDefWithVoids(W& w, const QString& name, StepRef outerCurve,
                                            const std::vector<StepRef>& innerCurves) {
    return w.add("IFCARBITRARYPROFILEDEFWITHVOIDS",
                 {stepEnum("AREA"), label(name), stepRef(outerCurve), stepRefList(innerCurves)});
}

// Solids
inline StepRef ExtrudedAreaSolid(W& w, StepRef sweptArea, StepRef position, StepRef direction, double depth) {
    return w.add("IFCEXTRUDEDAREASOLID", {stepRef(sweptArea), stepRef(position), stepRef(direction), stepReal(depth)});
}
// agreementFlag true: the half space lies on the side the plane's normal points away from.
inline StepRef HalfSpaceSolid(W& w, StepRef baseSurface, bool agreementFlag) {
    return w.add("IFCHALFSPACESOLID", {stepRef(baseSurface), stepBool(agreementFlag)});
}
inline StepRef BooleanClippingResult(W& w, StepRef firstOperand, StepRef secondOperand) {
    return w.add("IFCBOOLEANCLIPPINGRESULT", {stepEnum("DIFFERENCE"), stepRef(firstOperand), stepRef(secondOperand)});
}

// Representation
inline StepRef GeometricRepresentationContext(W& w, const QString& contextType, int dimension, double precision,
                                              StepRef worldCoordinateSystem) {
    return w.add("IFCGEOMETRICREPRESENTATIONCONTEXT", {stepUnset(), stepString(contextType), stepInteger(dimension),
                                                       stepReal(precision), stepRef(worldCoordinateSystem), stepUnset()});
}
inline StepRef GeometricRepresentationSubContext(W& w, const QString& identifier, const QString& contextType,
                                                 StepRef parentContext, const char* targetView) {
    return w.add("IFCGEOMETRICREPRESENTATIONSUBCONTEXT",
                 {stepString(identifier), stepString(contextType), stepDerived(), stepDerived(), stepDerived(),
                  stepDerived(), stepRef(parentContext), stepUnset(), stepEnum(targetView), stepUnset()});
}
inline StepRef ShapeRepresentation(W& w, StepRef context, const QString& identifier, const QString& type,
                                   const std::vector<StepRef>& items) {
    return w.add("IFCSHAPEREPRESENTATION",
                 {stepRef(context), stepString(identifier), stepString(type), stepRefList(items)});
}
inline StepRef ProductDefinitionShape(W& w, const std::vector<StepRef>& representations) {
    return w.add("IFCPRODUCTDEFINITIONSHAPE", {stepUnset(), stepUnset(), stepRefList(representations)});
}

// Units
inline StepRef SIUnit(W& w, const char* unitType, const char* prefix, const char* name) {
    return w.add("IFCSIUNIT", {stepDerived(), stepEnum(unitType), prefix ? stepEnum(prefix) : stepUnset(), stepEnum(name)});
}
inline StepRef UnitAssignment(W& w, const std::vector<StepRef>& units) {
    return w.add("IFCUNITASSIGNMENT", {stepRefList(units)});
}

// Project structure and products
inline StepRef Project(W& w, const QString& globalId, const QString& name, const std::vector<StepRef>& contexts,
                       StepRef units) {
    return w.add("IFCPROJECT", {stepString(globalId), stepUnset(), label(name), stepUnset(), stepUnset(), stepUnset(),
                                stepUnset(), stepRefList(contexts), stepRef(units)});
}
inline StepRef Site(W& w, const QString& globalId, const QString& name, StepRef placement) {
    return w.add("IFCSITE", {stepString(globalId), stepUnset(), label(name), stepUnset(), stepUnset(), stepRef(placement),
                             stepUnset(), stepUnset(), stepEnum("ELEMENT"), stepUnset(), stepUnset(), stepUnset(),
                             stepUnset(), stepUnset()});
}
inline StepRef Building(W& w, const QString& globalId, const QString& name, StepRef placement) {
    return w.add("IFCBUILDING", {stepString(globalId), stepUnset(), label(name), stepUnset(), stepUnset(),
                                 stepRef(placement), stepUnset(), stepUnset(), stepEnum("ELEMENT"), stepUnset(),
                                 stepUnset(), stepUnset()});
}
inline StepRef BuildingStorey(W& w, const QString& globalId, const QString& name, StepRef placement, double elevation) {
    return w.add("IFCBUILDINGSTOREY", {stepString(globalId), stepUnset(), label(name), stepUnset(), stepUnset(),
                                       stepRef(placement), stepUnset(), stepUnset(), stepEnum("ELEMENT"),
                                       stepReal(elevation)});
}
// IfcBeam, IfcColumn and IfcMember share their attributes; entity and predefinedType say which.
inline StepRef StructuralElement(W& w, const char* entity, const QString& globalId, const QString& name,
                                 const QString& objectType, StepRef placement, StepRef representation,
                                 const QString& tag, const char* predefinedType) {
    return w.add(entity, {stepString(globalId), stepUnset(), label(name), stepUnset(), label(objectType),
                          stepRef(placement), stepRef(representation), label(tag), stepEnum(predefinedType)});
}
inline StepRef RelAggregates(W& w, const QString& globalId, StepRef relatingObject,
                             const std::vector<StepRef>& relatedObjects) {
    return w.add("IFCRELAGGREGATES", {stepString(globalId), stepUnset(), stepUnset(), stepUnset(),
                                      stepRef(relatingObject), stepRefList(relatedObjects)});
}
inline StepRef RelContainedInSpatialStructure(W& w, const QString& globalId, const std::vector<StepRef>& elements,
                                              StepRef structure) {
    return w.add("IFCRELCONTAINEDINSPATIALSTRUCTURE", {stepString(globalId), stepUnset(), stepUnset(), stepUnset(),
                                                       stepRefList(elements), stepRef(structure)});
}

// Materials and quantities
inline StepRef Material(W& w, const QString& name, const QString& category) {
    return w.add("IFCMATERIAL", {stepString(name), stepUnset(), label(category)});
}
inline StepRef MaterialProfile(W& w, const QString& name, StepRef material, StepRef profile) {
    return w.add("IFCMATERIALPROFILE",
                 {label(name), stepUnset(), stepRef(material), stepRef(profile), stepUnset(), stepUnset()});
}
inline StepRef MaterialProfileSet(W& w, const QString& name, const std::vector<StepRef>& profiles) {
    return w.add("IFCMATERIALPROFILESET", {label(name), stepUnset(), stepRefList(profiles), stepUnset()});
}
// cardinalPoint: where the member's axis meets the profile (5: the middle of the bounding box).
inline StepRef MaterialProfileSetUsage(W& w, StepRef profileSet, int cardinalPoint) {
    return w.add("IFCMATERIALPROFILESETUSAGE", {stepRef(profileSet), stepInteger(cardinalPoint), stepUnset()});
}
inline StepRef RelAssociatesMaterial(W& w, const QString& globalId, const std::vector<StepRef>& objects,
                                     StepRef material) {
    return w.add("IFCRELASSOCIATESMATERIAL", {stepString(globalId), stepUnset(), stepUnset(), stepUnset(),
                                              stepRefList(objects), stepRef(material)});
}
inline StepRef QuantityLength(W& w, const QString& name, double value) {
    return w.add("IFCQUANTITYLENGTH", {stepString(name), stepUnset(), stepUnset(), stepReal(value), stepUnset()});
}
inline StepRef QuantityArea(W& w, const QString& name, double value) {
    return w.add("IFCQUANTITYAREA", {stepString(name), stepUnset(), stepUnset(), stepReal(value), stepUnset()});
}
inline StepRef QuantityVolume(W& w, const QString& name, double value) {
    return w.add("IFCQUANTITYVOLUME", {stepString(name), stepUnset(), stepUnset(), stepReal(value), stepUnset()});
}
inline StepRef QuantityWeight(W& w, const QString& name, double value) {
    return w.add("IFCQUANTITYWEIGHT", {stepString(name), stepUnset(), stepUnset(), stepReal(value), stepUnset()});
}
inline StepRef ElementQuantity(W& w, const QString& globalId, const QString& name, const QString& method,
                               const std::vector<StepRef>& quantities) {
    return w.add("IFCELEMENTQUANTITY", {stepString(globalId), stepUnset(), stepString(name), stepUnset(),
                                        label(method), stepRefList(quantities)});
}
inline StepRef RelDefinesByProperties(W& w, const QString& globalId, const std::vector<StepRef>& objects,
                                      StepRef definition) {
    return w.add("IFCRELDEFINESBYPROPERTIES", {stepString(globalId), stepUnset(), stepUnset(), stepUnset(),
                                               stepRefList(objects), stepRef(definition)});
}

}  // namespace ifc
}  // namespace exchange
}  // namespace skr
