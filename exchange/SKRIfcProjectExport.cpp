// SKRIfcProjectExport: members, their profiles, clippings and quantities as IFC4 on SKRStepWriter.
#include "exchange/SKRIfcProjectExport.h"

#include "exchange/SKRIfcEntities.h"
#include "exchange/SKRIfcProfileTable.h"
#include "exchange/SKRStepWriter.h"

#include "body_builder/SKRMemberSolidShape.h"
#include "section_geometry/SKRSectionPolygonParser.h"
#include "section_geometry/SKRSectionProperties.h"
#include "section_geometry/SKRSectionOutline.h"
#include "section_geometry/SKRSpecificationOutline.h"
#include "solid_split/SKRCuttingPlaneStore.h"
#include "solid_split/SKRSolidSplit.h"

#include "ndp/NDPBody.h"
#include "ndp/NDPPolygon.h"
#include "ndp/NDPRef.h"
#include "ndp/NDPVector3.h"
#include "vmp/VMPMembers.h"
#include "vmp/VMPProjectModel.h"

#include <QFileInfo>
#include <QSaveFile>

#include <cmath>
#include <exception>
#include <memory>

namespace skr {
namespace exchange {
namespace {

using namespace ifc;

constexpr double kSteelDensity = 7.85e-6;  // kg/mm3
const double kFiveDegrees = 5.0 * 3.14159265358979323846 / 180.0;

struct Profile {
    StepRef ref;     // what the solid is extruded from
    QString entity;
    StepRef section;  // what names the section in the material profile set: parametric where it can
    QString sectionEntity;
    std::vector<StepRef> members;
    double area = 0.0;           // mm2
    double outerPerimeter = 0.0;  // mm
};

struct Kind {
    const char* entity;
    const char* predefined;
    const char* quantities;
    const char* word;
};

Kind kindOf(EnIfcElementKind kind) {
    switch (kind) {
    case EnIfcElementKind::Column: return {"IFCCOLUMN", "COLUMN", "Qto_ColumnBaseQuantities", "Column"};
    case EnIfcElementKind::Member: return {"IFCMEMBER", "MEMBER", "Qto_MemberBaseQuantities", "Member"};
    default: return {"IFCBEAM", "BEAM", "Qto_BeamBaseQuantities", "Beam"};
    }
}

class Writer {
public:
    explicit Writer(const SKRIfcExportOptions& options) : m_options(options), m_scale(options.metres ? 0.001 : 1.0) {}

    QString globalId(const QString& key) const {
        return stepGlobalId((m_options.projectName + QLatin1Char('/') + key).toUtf8());
    }
    StepRef point(const ndp::CVector3& p) { return CartesianPoint3(m_w, p[0] * m_scale, p[1] * m_scale, p[2] * m_scale); }
    StepRef direction(const ndp::CVector3& d) {
        const ndp::CVector3 u = ndp::Normalized(d);
        return Direction3(m_w, u[0], u[1], u[2]);
    }

    void begin() {
        const StepRef origin = CartesianPoint3(m_w, 0, 0, 0);
        m_zAxis = Direction3(m_w, 0, 0, 1);
        const StepRef world = Axis2Placement3D(m_w, origin, StepRef(), StepRef());
        const StepRef context = GeometricRepresentationContext(m_w, QStringLiteral("Model"), 3, 1e-5, world);
        m_body = GeometricRepresentationSubContext(m_w, QStringLiteral("Body"), QStringLiteral("Model"), context,
                                                   "MODEL_VIEW");
        const StepRef units = UnitAssignment(
            m_w, {SIUnit(m_w, "LENGTHUNIT", m_options.metres ? nullptr : "MILLI", "METRE"),
                  SIUnit(m_w, "AREAUNIT", nullptr, "SQUARE_METRE"), SIUnit(m_w, "VOLUMEUNIT", nullptr, "CUBIC_METRE"),
                  SIUnit(m_w, "MASSUNIT", "KILO", "GRAM"), SIUnit(m_w, "PLANEANGLEUNIT", nullptr, "RADIAN")});
        m_project = Project(m_w, globalId(QStringLiteral("project")), m_options.projectName, {context}, units);
        const StepRef sitePlacement = LocalPlacement(m_w, StepRef(), world);
        const StepRef buildingPlacement = LocalPlacement(m_w, sitePlacement, world);
        m_storeyPlacement = LocalPlacement(m_w, buildingPlacement, world);
        const StepRef site = Site(m_w, globalId(QStringLiteral("site")), QStringLiteral("Site"), sitePlacement);
        const StepRef building =
            Building(m_w, globalId(QStringLiteral("building")), QStringLiteral("Building"), buildingPlacement);
        m_storey = BuildingStorey(m_w, globalId(QStringLiteral("storey")), QStringLiteral("Storey"), m_storeyPlacement, 0);
        RelAggregates(m_w, globalId(QStringLiteral("project/site")), m_project, {site});
        RelAggregates(m_w, globalId(QStringLiteral("site/building")), site, {building});
        RelAggregates(m_w, globalId(QStringLiteral("building/storey")), building, {m_storey});
    }

    // The profile of a section, written once.
    Profile* profile(const QString& section, QString* error) {
        const auto found = m_profiles.find(section);
        if (found != m_profiles.end()) return &found->second;
        int type = -1;
        QMap<QString, double> values;
        QString outline;
        if (!geometry::specificationOutlineParams(section, type, values, error) ||
            !geometry::sectionOutlineText(type, values, outline, error))
            return nullptr;
        const std::unique_ptr<ndp::CPolygon> polygon = geometry::ParseSectionPolygon(outline);
        if (!polygon || polygon->IsEmpty()) {
            *error = QStringLiteral("the outline of '%1' gives no polygon").arg(section);
            return nullptr;
        }
        const geometry::SKRSectionProperties properties = geometry::SectionProperties(*polygon);
        Profile p;
        p.area = properties.area;
        p.outerPerimeter = properties.outerPerimeter;
        const SKRIfcProfileRow* row = ifcProfileRow(type);
        if (row) {
            p.section = row->write(m_w, section, values, m_scale);
            p.sectionEntity = QLatin1String(row->entity);
            if (p.section.isSet() && row->drawnExactly) {
                p.ref = p.section;
                p.entity = p.sectionEntity;
            }
        }
        if (!p.ref.isSet()) {
            p.ref = arbitraryProfile(section, *polygon);
            p.entity = polygon->GetLoopCount() > 1 ? QStringLiteral("IFCARBITRARYPROFILEDEFWITHVOIDS")
                                                   : QStringLiteral("IFCARBITRARYCLOSEDPROFILEDEF");
        }
        if (!p.section.isSet()) {
            p.section = p.ref;
            p.sectionEntity = p.entity;
        }
        return &m_profiles.emplace(section, p).first->second;
    }

    StepRef member(const VMPMember& member, Profile& profile, const std::vector<split::CuttingPlaneRecord>& cuts,
                   const Kind& kind) {
        const ndp::CoordinateSystem3 head = VMPMemberHeadFrame(member.start, member.end, member.roll);
        const double length = member.length();
        const StepRef placement = LocalPlacement(
            m_w, m_storeyPlacement,
            Axis2Placement3D(m_w, point(head.origin), direction(head.zAxis), direction(head.xAxis)));
        StepRef solid = ExtrudedAreaSolid(m_w, profile.ref, StepRef(), m_zAxis, length * m_scale);
        for (const split::CuttingPlaneRecord& cut : cuts) {
            // The plane in the member's own frame: a tail plane's frame starts at the member's end.
            ndp::CVector3 origin = cut.local.origin;
            if (cut.isTail) origin[2] += length;
            const StepRef plane = Plane(m_w, Axis2Placement3D(m_w, point(origin), direction(cut.local.zAxis), StepRef()));
            // The plane keeps what its normal points into: the half space taken away lies behind it.
            solid = BooleanClippingResult(m_w, solid, HalfSpaceSolid(m_w, plane, true));
        }
        const StepRef shape = ProductDefinitionShape(
            m_w, {ShapeRepresentation(m_w, m_body, QStringLiteral("Body"),
                                      cuts.empty() ? QStringLiteral("SweptSolid") : QStringLiteral("Clipping"), {solid})});
        const QString id = QString::number(member.id);
        const StepRef element =
            StructuralElement(m_w, kind.entity, globalId(QStringLiteral("member/") + id),
                              QStringLiteral("%1 %2").arg(QLatin1String(kind.word), id), member.section, placement, shape,
                              id, kind.predefined);
        m_elements.push_back(element);
        profile.members.push_back(element);
        return element;
    }

    void quantities(std::int64_t id, StepRef element, const Kind& kind, double length, double netVolume,
                    double outerSurface) {
        const QString key = QStringLiteral("member/%1/quantities").arg(id);
        const StepRef set = ElementQuantity(
            m_w, globalId(key), QLatin1String(kind.quantities), QStringLiteral("BXQExtend"),
            {QuantityLength(m_w, QStringLiteral("Length"), length * m_scale),
             QuantityVolume(m_w, QStringLiteral("NetVolume"), netVolume * 1e-9),
             QuantityWeight(m_w, QStringLiteral("NetWeight"), netVolume * kSteelDensity),
             QuantityArea(m_w, QStringLiteral("OuterSurfaceArea"), outerSurface)});
        RelDefinesByProperties(m_w, globalId(key + QStringLiteral("/rel")), {element}, set);
    }

    QByteArray finish(const QString& fileName) {
        if (!m_elements.empty()) {
            RelContainedInSpatialStructure(m_w, globalId(QStringLiteral("storey/elements")), m_elements, m_storey);
            // The grade and the section of each member: one material profile set per section.
            const StepRef material = Material(m_w, m_options.grade, QStringLiteral("Steel"));
            for (const auto& entry : m_profiles) {
                const Profile& p = entry.second;
                const StepRef set = MaterialProfileSet(
                    m_w, entry.first, {MaterialProfile(m_w, entry.first, material, p.section)});
                RelAssociatesMaterial(m_w, globalId(QStringLiteral("material/") + entry.first), p.members,
                                      MaterialProfileSetUsage(m_w, set, 5));
            }
        }
        return m_w.document(QStringLiteral("ViewDefinition [DesignTransferView]"), fileName,
                            QStringLiteral("BXQExtend bxq"), "IFC4");
    }

private:
    // The exact outline: an indexed poly-curve per loop, lines and arcs (each arc through its
    // middle point), centred on the bounding box as the member solid is.
    StepRef arbitraryProfile(const QString& name, const ndp::CPolygon& polygon) {
        const ndp::CBox2d box = polygon.BoundingBox();
        const double cx = 0.5 * (box.Min().x + box.Max().x), cy = 0.5 * (box.Min().y + box.Max().y);
        std::vector<StepRef> curves;
        for (int i = 0; i < polygon.GetLoopCount(); ++i) {
            const ndp::CLoop* loop = polygon.GetLoop(i);
            std::vector<StepArg> points, segments;
            const auto add = [&](const ndp::CPoint2d& p) {
                points.push_back(stepRealList({(p.x - cx) * m_scale, (p.y - cy) * m_scale}));
                return static_cast<long long>(points.size());
            };
            const long long first = add(loop->GetCurve(0)->StartPoint());
            long long at = first;
            for (int k = 0; k < loop->GetCount(); ++k) {
                const ndp::CCurve2d* curve = loop->GetCurve(k);
                const bool last = k + 1 == loop->GetCount();
                const auto next = [&](const ndp::CPoint2d& p) { return last ? first : add(p); };
                if (curve->GetType() != ndp::EnCurveType::Arc) {
                    const long long to = next(curve->EndPoint());
                    segments.push_back(stepTyped("IFCLINEINDEX", stepList({stepInteger(at), stepInteger(to)})));
                    at = to;
                    continue;
                }
                const auto* arc = static_cast<const ndp::CArc2d*>(curve);
                if (arc->IsFullCircle()) {
                    const long long q1 = add(arc->PointAt(0.25)), half = add(arc->PointAt(0.5)),
                                    q3 = add(arc->PointAt(0.75));
                    segments.push_back(
                        stepTyped("IFCARCINDEX", stepList({stepInteger(at), stepInteger(q1), stepInteger(half)})));
                    const long long to = next(arc->EndPoint());
                    segments.push_back(
                        stepTyped("IFCARCINDEX", stepList({stepInteger(half), stepInteger(q3), stepInteger(to)})));
                    at = to;
                    continue;
                }
                const long long middle = add(arc->PointAt(0.5));
                const long long to = next(arc->EndPoint());
                segments.push_back(
                    stepTyped("IFCARCINDEX", stepList({stepInteger(at), stepInteger(middle), stepInteger(to)})));
                at = to;
            }
            curves.push_back(IndexedPolyCurve(m_w, CartesianPointList2D(m_w, points), segments));
        }
        if (curves.size() == 1) return ArbitraryClosedProfileDef(m_w, name, curves.front());
        return ArbitraryProfileDefWithVoids(m_w, name, curves.front(),
                                            std::vector<StepRef>(curves.begin() + 1, curves.end()));
    }

    const SKRIfcExportOptions& m_options;
    const double m_scale;
    SKRStepWriter m_w;
    StepRef m_zAxis, m_body, m_project, m_storeyPlacement, m_storey;
    std::map<QString, Profile> m_profiles;
    std::vector<StepRef> m_elements;
};

// The member's solid after its cuts, as the library builds it; null with the reason otherwise.
ndp::CBody* memberSolid(VMPProjectModel* project, std::int64_t id, QString* error) {
    IVMPElementDrawObj* element = project->getElementDrawObj(id);
    IVMPSolidShape* shape = element ? element->getSolidShape() : nullptr;
    ndp::CBody* body = shape ? split::ApplyCuttingPlanes(*element, *shape) : nullptr;
    if (!body) {
        auto* member = dynamic_cast<body::SKRMemberSolidShape*>(shape);
        *error = member ? member->lastError() : QStringLiteral("no solid");
    }
    return body;
}

// Members of one section and length with the same cuts have the same volume.
QString volumeKey(const VMPMember& member, const std::vector<split::CuttingPlaneRecord>& cuts) {
    QString key = member.section + QLatin1Char('|') + QString::number(member.length(), 'g', 17);
    for (const split::CuttingPlaneRecord& cut : cuts) {
        key += cut.isTail ? QStringLiteral("|T") : QStringLiteral("|H");
        for (const auto& axis : {cut.local.origin, cut.local.zAxis})
            for (double v : axis) key += QLatin1Char(',') + QString::number(v, 'g', 17);
    }
    return key;
}

}  // namespace

EnIfcElementKind ifcElementKindOfAxis(const std::array<double, 3>& start, const std::array<double, 3>& end) {
    const ndp::CVector3 axis = ndp::Normalized(ndp::operator-(end, start));
    const double vertical = std::abs(axis[2]);
    if (vertical >= std::cos(kFiveDegrees)) return EnIfcElementKind::Column;
    if (vertical <= std::sin(kFiveDegrees)) return EnIfcElementKind::Beam;
    return EnIfcElementKind::Member;
}

bool exportProjectIfc(VMPProjectModel* project, const QString& path, const SKRIfcExportOptions& options,
                      std::vector<SKRIfcMemberReport>* report, QString* error) {
    const QString file = QFileInfo(path).fileName();
    std::vector<VMPMember> members;
    std::vector<split::CuttingPlaneRecord> planes;
    if (!VMPReadMembers(project->getProjectDB(), members, error) ||
        !split::ReadCuttingPlaneRecords(project->getProjectDB(), -1, planes, error))
        return false;
    std::map<std::int64_t, std::vector<split::CuttingPlaneRecord>> cutsOf;
    for (const split::CuttingPlaneRecord& plane : planes) cutsOf[plane.elementId].push_back(plane);

    Writer writer(options);
    std::map<QString, double> volumes;
    QByteArray text;
    try {
        writer.begin();
        int done = 0;
        for (const VMPMember& member : members) {
            const std::vector<split::CuttingPlaneRecord>& cuts = cutsOf[member.id];
            QString reason;
            Profile* profile = writer.profile(member.section, &reason);
            if (!profile) {
                *error = QStringLiteral("member %1: %2").arg(member.id).arg(reason);
                return false;
            }
            const auto chosen = options.kinds.find(member.id);
            const EnIfcElementKind kind = chosen != options.kinds.end() && chosen->second != EnIfcElementKind::Auto
                                              ? chosen->second
                                              : ifcElementKindOfAxis(member.start, member.end);
            const Kind k = kindOf(kind);
            const StepRef element = writer.member(member, *profile, cuts, k);

            SKRIfcMemberReport row;
            row.id = member.id;
            row.entity = QLatin1String(k.entity);
            row.profileEntity = profile->entity;
            row.sectionProfileEntity = profile->sectionEntity;
            row.clippings = static_cast<int>(cuts.size());
            double volume = profile->area * member.length();
            const QString key = volumeKey(member, cuts);
            const auto known = volumes.find(key);
            if (options.measureAll || (!cuts.empty() && known == volumes.end())) {
                const ndp::CRef<ndp::CBody> body(memberSolid(project, member.id, &reason));
                if (!body) {
                    *error = QStringLiteral("member %1: section '%2': %3").arg(member.id).arg(member.section, reason);
                    return false;
                }
                volume = body->Volume();
                const ndp::CBox3d box = body->BoundingBox();
                row.boxMin = box.min;
                row.boxMax = box.max;
                row.measured = true;
                volumes[key] = volume;
            } else if (!cuts.empty()) {
                volume = known->second;
            }
            row.volume = volume;
            row.weight = volume * kSteelDensity;
            writer.quantities(member.id, element, k, member.length(), volume,
                              profile->outerPerimeter * member.length() * 1e-6);
            if (report) report->push_back(row);
            ++done;
            if (options.progress && !options.progress(done, static_cast<int>(members.size()))) {
                *error = QStringLiteral("export to %1 cancelled").arg(path);
                return false;
            }
        }
        text = writer.finish(file);
    } catch (const std::exception& e) {
        *error = QStringLiteral("cannot export to %1: %2").arg(path, QString::fromUtf8(e.what()));
        return false;
    }
    QSaveFile out(path);
    if (!out.open(QIODevice::WriteOnly) || out.write(text) != text.size() || !out.commit()) {
        *error = QStringLiteral("cannot write %1: %2").arg(path, out.errorString());
        return false;
    }
    return true;
}

}  // namespace exchange
}  // namespace skr
