// The face-steel plate catalogue: plate classes, their thicknesses and weights per square
// metre, loaded from the system database into process-wide tables, and the quantity query.
#pragma once

#include "plugin/BXQExtendGlobal.h"

#include <QList>
#include <QMap>
#include <QSharedPointer>
#include <QString>

class IVMPService;

// The chosen plate: its class name and thickness (mm).
struct BXQEXTEND_EXPORT BXQFaceSteelInfo {
    QString className;
    double thickness = 0.0;
};

// One catalogue row of a class.
struct BXQFaceSteelInner {
    double thickness = 0.0;  // mm ("Thickness")
    double weight = 0.0;     // kg/m2 ("Weight")
};

class BXQFaceSteelData {
public:
    // Rebuilds both tables from "FaceSteelInfo" of "SysInfo.KDB"; the service is not used.
    static void loadData(IVMPService* service);
    // kg/m2 of the plate of that class and thickness (within 1e-12), or 0. Looking up an unknown
    // class leaves an empty entry for it, as the host's catalogue always has.
    static double getFaceSteelQty(const QString& className, double thickness);
    static BXQFaceSteelInfo defaultFaceInfo();

    static QMap<int, QString> m_oClassName;
    static QMap<int, QList<QSharedPointer<BXQFaceSteelInner>>> m_oData;
};
