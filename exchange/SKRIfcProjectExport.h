// SKRIfcProjectExport: a project's members as an IFC4 file: each member an IfcBeam, IfcColumn or
// IfcMember (by the slope of its axis unless told), its section as the matching parametric
// profile or as its exact outline, extruded along the axis with its roll, clipped by each of its
// cutting planes, with its length, net weight and outer surface, and a material profile set of
// the steel grade and the section's parametric profile.
#pragma once

#include <QString>

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <vector>

class VMPProjectModel;

namespace skr {
namespace exchange {

enum class EnIfcElementKind { Auto, Beam, Column, Member };

struct SKRIfcExportOptions {
    QString projectName = QStringLiteral("Project");
    QString grade = QStringLiteral("Q235B");  // the steel grade, written as the members' material
    bool metres = false;                      // lengths in metres instead of millimetres
    std::map<std::int64_t, EnIfcElementKind> kinds;  // overrides of the element class by member id
    // Called after each member with the count done and the total; false cancels the export.
    std::function<bool(int done, int total)> progress;
    // Whether to build every member's solid for the report (volume and box), not only cut ones.
    bool measureAll = false;
};

// What was written for one member, with its solid as the library builds it (global mm).
struct SKRIfcMemberReport {
    std::int64_t id = 0;
    QString entity;         // IFCBEAM, IFCCOLUMN or IFCMEMBER
    QString profileEntity;         // the profile the solid is extruded from
    QString sectionProfileEntity;  // the profile of its material profile set (parametric where one fits)
    int clippings = 0;
    double volume = 0.0;  // mm3 after the cuts
    double weight = 0.0;  // kg
    std::array<double, 3> boxMin{0, 0, 0}, boxMax{0, 0, 0};  // when measured
    bool measured = false;
};

// The element class of an axis by its slope: a column within 5 degrees of vertical, a beam
// within 5 degrees of horizontal, a member (brace) between.
EnIfcElementKind ifcElementKindOfAxis(const std::array<double, 3>& start, const std::array<double, 3>& end);

// Writes the project's members to path (replaced only when the whole file is written). False with
// a one-line message naming the member, the section or the file otherwise, or when cancelled.
bool exportProjectIfc(VMPProjectModel* project, const QString& path, const SKRIfcExportOptions& options,
                      std::vector<SKRIfcMemberReport>* report, QString* error);

}  // namespace exchange
}  // namespace skr
