// The section scheme and parameter providers, read through the by-name record view.
#include "section_data/SectionSchemeProvider.h"

#include "ndp/NDPDBTable.h"
#include "vmp/VMPDBRecord.h"

namespace skr {
namespace section {
namespace {

SectionScheme readScheme(ndp::CDBTable* table, ndp::CFileAddress address) {
    const VMPDBRecord row(table, address);
    SectionScheme scheme;
    scheme.polyId = row.getInteger("PolyID", 0);
    scheme.groupId = row.getInteger("GroupID", 0);
    scheme.polyName = row.getString("PolyName", QString());
    scheme.polyFileName = row.getString("PolyFileName", QString());
    scheme.sectionPoly = row.getString("SectionPoly", QString());
    scheme.insPointX = row.getString("InsPointX", QString());
    scheme.insPointY = row.getString("InsPointY", QString());
    scheme.hintMsg = row.getString("HintMsg", QString());
    scheme.polyPicName = row.getString("PolyPicName", QString());
    return scheme;
}

SectionParam readParam(const VMPDBRecord& row) {
    SectionParam param;
    param.subClassId = row.getInteger("SubClassID", 0);
    param.paramId = row.getInteger("ParamID", 0);
    param.paramCode = row.getString("ParamCode", QString());
    param.dataType = row.getInteger("DataType", 0);
    param.editorPtX = row.getInteger("EditorPtX", 0);
    param.editorPtY = row.getInteger("EditorPtY", 0);
    param.defVal = row.getString("DefVal", QString());
    param.unit = row.getString("Unit", QString());
    param.validExpr = row.getString("ValidExpr", QString());
    param.invalidMsg = row.getString("InvalidMsg", QString());
    return param;
}

}  // namespace

std::pair<bool, SectionScheme> SectionSchemeProvider::findScheme(int polyId) const {
    ndp::CFileAddress address = ndp::kNullAddress;
    if (!m_pTable || !m_pTable->Find(m_pTable->FindField(L"PolyID"), polyId, address)) return {false, SectionScheme()};
    return {true, readScheme(m_pTable, address)};
}

std::vector<SectionScheme> SectionSchemeProvider::allSchemes() const {
    std::vector<SectionScheme> schemes;
    ndp::CFileAddressList all;
    if (!m_pTable || !m_pTable->ListAll(all)) return schemes;
    for (int i = 0; i < all.GetCount(); ++i) schemes.push_back(readScheme(m_pTable, all.GetItem(i)));
    return schemes;
}

std::vector<SectionParam> SectionParamProvider::paramsOf(int polyId, int subClassId) const {
    std::vector<SectionParam> params;
    ndp::CFileAddressList found;
    if (!m_pTable || !m_pTable->Search(m_pTable->FindField(L"PolyID"), polyId, found)) return params;
    for (int i = 0; i < found.GetCount(); ++i) {
        const VMPDBRecord row(m_pTable, found.GetItem(i));
        if (subClassId != -1 && row.getInteger("SubClassID", -1) != subClassId) continue;
        params.push_back(readParam(row));
    }
    return params;
}

}  // namespace section
}  // namespace skr
