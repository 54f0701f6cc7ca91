// SKRMemberSolidShape: the solid shape of a straight member of a section specification: every body
// it is asked for is the specification's outline extruded along the head frame's Z axis.
#pragma once

#include "vmp/IVMPElementDrawObj.h"

#include <QString>

namespace skr {
namespace body {

class SKRMemberSolidShape : public IVMPSolidShape {
public:
    SKRMemberSolidShape(QString specification, double length, const ndp::CoordinateSystem3& headFrame)
        : m_specification(std::move(specification)), m_length(length), m_headFrame(headFrame) {}

    // A new body, or null with the reason in lastError().
    ndp::CBody* createBody() override;
    const QString& lastError() const { return m_lastError; }

private:
    QString m_specification;
    double m_length;
    ndp::CoordinateSystem3 m_headFrame;
    QString m_lastError;
};

}  // namespace body
}  // namespace skr
