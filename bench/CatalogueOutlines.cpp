// The outline texts of the shipped catalogue.
#include "bench/CatalogueOutlines.h"

#include "section_data/SKRHotRollingSectionDBProvider.h"
#include "section_geometry/SKRSectionOutline.h"

#include "ndp/NDPDBRecord.h"
#include "ndp/NDPDBTable.h"
#include "ndp/NDPDatabase.h"
#include "vmp/VMPAppInfo.h"
#include "vmp/VMPNDDBManager.h"

namespace bxq {
namespace bench {

std::vector<CatalogueOutline> catalogueOutlines() {
    std::vector<CatalogueOutline> outlines;
    const QString path = VMPAppInfo::gAppInfo()->appDataPath() + QStringLiteral("/SKRSectionPolyDB.KDB");
    if (!VMPAppInfo::gAppInfo()->fileExists(path)) return outlines;
    ndp::CDatabase* db = VMPNDDBManager::nddbMgr()->getNDDB(QStringLiteral("SKRSectionPolyDB.KDB"), false);
    ndp::CDBTable* table = db ? db->GetTable(L"SectionPolyInfor") : nullptr;
    ndp::CFileAddressList all;
    if (!table || !table->ListAll(all)) return outlines;
    skr::section::SKRHotRollingSectionDBProvider reader(table);
    for (int i = 0; i < all.GetCount(); ++i) {
        ndp::CDBRecord* record = table->GetRecord(all.GetItem(i));
        if (!record) continue;
        const skr::section::SKRHotRollingSection row = reader.fromRecord(record);
        record->Release();
        QMap<QString, double> dimensions;
        for (const auto& param : row.params) dimensions.insert(QString::fromStdWString(param.first), param.second);
        QString text;
        if (skr::geometry::sectionOutlineText(
                row.sectionType, skr::geometry::catalogueOutlineParams(row.sectionType, dimensions, row.weightMeter),
                text))
            outlines.push_back({QString::fromStdWString(row.standardName), text});
    }
    return outlines;
}

}  // namespace bench
}  // namespace bxq
