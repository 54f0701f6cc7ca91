// The face-steel plate catalogue and its quantity query.
#include "face_steel/BXQFaceSteelData.h"

#include "ndp/NDPDBTable.h"
#include "ndp/NDPDatabase.h"
#include "vmp/VMPDBRecord.h"
#include "vmp/VMPNDDBManager.h"

#include <cmath>

QMap<int, QString> BXQFaceSteelData::m_oClassName;
QMap<int, QList<QSharedPointer<BXQFaceSteelInner>>> BXQFaceSteelData::m_oData;

void BXQFaceSteelData::loadData(IVMPService*) {
    m_oClassName.clear();
    m_oData.clear();
    m_oClassName = {{1, QStringLiteral("热轧钢板")},
                    {2, QStringLiteral("冷轧钢板")},
                    {3, QStringLiteral("菱形花纹钢板")},
                    {4, QStringLiteral("扁豆形花纹钢板")},
                    {5, QStringLiteral("圆豆形花纹钢板")}};
    ndp::CDatabase* database = VMPNDDBManager::nddbMgr()->getNDDB(QStringLiteral("SysInfo.KDB"), false);
    ndp::CDBTable* table = database ? database->GetTable(L"FaceSteelInfo") : nullptr;
    ndp::CFileAddressList all;
    if (!table || !table->ListAll(all)) return;
    for (int i = 0; i < all.GetCount(); ++i) {
        const VMPDBRecord row(table, all.GetItem(i));
        auto inner = QSharedPointer<BXQFaceSteelInner>::create();
        inner->thickness = row.getDouble("Thickness", 0.0);
        inner->weight = row.getDouble("Weight", 0.0);
        m_oData[row.getInteger("Class", -1)].append(inner);
    }
}

double BXQFaceSteelData::getFaceSteelQty(const QString& className, double thickness) {
    int id = 0;
    for (auto it = m_oClassName.constBegin(); it != m_oClassName.constEnd(); ++it) {
        if (it.value() == className) {
            id = it.key();
            break;
        }
    }
    for (const auto& row : m_oData[id])
        if (std::fabs(row->thickness - thickness) < 1e-12) return row->weight;
    return 0.0;
}

BXQFaceSteelInfo BXQFaceSteelData::defaultFaceInfo() { return {QStringLiteral("热轧钢板"), 20.0}; }
