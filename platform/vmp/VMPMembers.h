// The steel members of a project: the "Member" table (one straight member a row: id, section
// text, start and end points, roll about the axis), their element drawing objects and the local
// frame the host gives a member.
#pragma once

#include "PlatformGlobal.h"
#include "vmp/IVMPElementDrawObj.h"

#include <QString>

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace ndp {
class CDatabase;
}

struct VMPMember {
    std::int64_t id = 0;
    QString section;
    ndp::CVector3 start{0, 0, 0};
    ndp::CVector3 end{0, 0, 0};
    double roll = 0.0;  // degrees about the axis, from the upright position

    double length() const { return ndp::Length(ndp::operator-(end, start)); }
};

// The local frame of a member at its start: Z along the axis; upright (roll 0) the section's Y
// axis is the global Z projected across the axis, or the global Y for a vertical member; roll
// turns X and Y about Z. Right-handed and orthonormal.
BXQPLATFORM_EXPORT ndp::CoordinateSystem3 VMPMemberHeadFrame(const ndp::CVector3& start, const ndp::CVector3& end,
                                                             double rollDegrees);

// Every member in id order; false, with the reason naming the file, when the table cannot be read.
BXQPLATFORM_EXPORT bool VMPReadMembers(ndp::CDatabase* database, std::vector<VMPMember>& members, QString* error);
// The member of that id; false when there is none (error stays empty) or the read failed.
BXQPLATFORM_EXPORT bool VMPReadMember(ndp::CDatabase* database, std::int64_t id, VMPMember& member, QString* error);
// Stores a member under the next free id (one more than the largest) and sets member.id.
BXQPLATFORM_EXPORT bool VMPAddMember(ndp::CDatabase* database, VMPMember& member, QString* error);
// Removes the member and its "CuttingPlane" records; false when there is no such member.
BXQPLATFORM_EXPORT bool VMPRemoveMember(ndp::CDatabase* database, std::int64_t id, QString* error);

// Builds the solid shape of a member: its section's outline extruded from the head frame along
// Z by the length. The host supplies it, since building solids is the library's business.
using VMPSolidShapeFactory =
    std::function<std::unique_ptr<IVMPSolidShape>(const QString& section, double length, const ndp::CoordinateSystem3& head)>;

// The element drawing object of a stored member.
class BXQPLATFORM_EXPORT VMPMemberElement : public IVMPElementDrawObj {
public:
    VMPMemberElement(IVMPModel* model, const VMPSolidShapeFactory& factory) : m_model(model), m_factory(factory) {}

    // Takes the member's row; the shape is rebuilt when the geometry changed.
    void assign(const VMPMember& member);
    const VMPMember& member() const { return m_member; }

    std::int64_t getId() const override { return m_member.id; }
    IVMPModel* getModel() const override { return m_model; }
    ndp::CoordinateSystem3 getHeadFrame() const override { return m_head; }
    EnElementAxisKind getAxisKind() const override { return EnElementAxisKind::Straight; }
    double getAxisLength() const override { return m_member.length(); }
    void getAxisExtents(double& first, double& second) const override { first = second = 0.0; }
    IVMPSolidShape* getSolidShape() override;

private:
    IVMPModel* m_model;
    const VMPSolidShapeFactory& m_factory;
    VMPMember m_member;
    ndp::CoordinateSystem3 m_head;
    std::unique_ptr<IVMPSolidShape> m_shape;
    bool m_shapeBuilt = false;
};
