// VMPElementDrawObj: the stand-in of the host's element drawing object: an id in a model, a head
// frame and a straight axis of given length, or an axis of the second curve kind by its extents.
#pragma once

#include "vmp/IVMPElementDrawObj.h"

class BXQPLATFORM_EXPORT VMPElementDrawObj : public IVMPElementDrawObj {
public:
    VMPElementDrawObj(std::int64_t id, IVMPModel* model, const ndp::CoordinateSystem3& headFrame, double length)
        : m_id(id), m_model(model), m_headFrame(headFrame), m_length(length) {}

    // Makes the axis one of the second curve kind with these two extents.
    void setAxisExtents(double first, double second) {
        m_kind = EnElementAxisKind::Extents;
        m_first = first;
        m_second = second;
    }

    std::int64_t getId() const override { return m_id; }
    IVMPModel* getModel() const override { return m_model; }
    ndp::CoordinateSystem3 getHeadFrame() const override { return m_headFrame; }
    EnElementAxisKind getAxisKind() const override { return m_kind; }
    double getAxisLength() const override { return m_length; }
    void getAxisExtents(double& first, double& second) const override {
        first = m_first;
        second = m_second;
    }

private:
    std::int64_t m_id;
    IVMPModel* m_model;
    ndp::CoordinateSystem3 m_headFrame;
    double m_length;
    EnElementAxisKind m_kind = EnElementAxisKind::Straight;
    double m_first = 0.0;
    double m_second = 0.0;
};
