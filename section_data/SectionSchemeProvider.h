// SectionSchemeProvider and SectionParamProvider: the section types ("SectionPoly") and their
// parameter definitions ("SectionPolyParam") of the section database.
#pragma once

#include "section_data/SKRRegistryInstance.h"

#include <QString>

#include <cstdint>
#include <utility>
#include <vector>

namespace ndp {
class CDBTable;
}

namespace skr {
namespace section {

struct SectionScheme {
    std::int32_t polyId = 0;
    std::int32_t groupId = 0;
    QString polyName, polyFileName, sectionPoly, insPointX, insPointY, hintMsg, polyPicName;
};

struct SectionParam {
    std::int32_t subClassId = 0;
    std::int32_t paramId = 0;
    QString paramCode;
    std::int32_t dataType = 0;
    std::int32_t editorPtX = 0;
    std::int32_t editorPtY = 0;
    QString defVal, unit, validExpr, invalidMsg;
};

class SectionSchemeProvider {
public:
    explicit SectionSchemeProvider(ndp::CDBTable* table) : m_pTable(table) {}
    std::pair<bool, SectionScheme> findScheme(int polyId) const;
    std::vector<SectionScheme> allSchemes() const;

private:
    ndp::CDBTable* m_pTable;
};

class SectionParamProvider {
public:
    explicit SectionParamProvider(ndp::CDBTable* table) : m_pTable(table) {}
    // The parameters of a section type in search order; subClassId -1 takes every sub-class.
    std::vector<SectionParam> paramsOf(int polyId, int subClassId = -1) const;

private:
    ndp::CDBTable* m_pTable;
};

}  // namespace section
}  // namespace skr

template <>
struct skr::util::RegistryKey<skr::section::SectionSchemeProvider> {
    static std::string name() { return "class skr::section::SectionSchemeProvider"; }
};
template <>
struct skr::util::RegistryKey<skr::section::SectionParamProvider> {
    static std::string name() { return "class skr::section::SectionParamProvider"; }
};
